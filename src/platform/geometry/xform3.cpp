#include "platform/geometry/xform3.h"

#include <cmath>

#include "platform/geometry/unit_vec3.h"

namespace {

// The axis of the turn from u to v, at right angles to both to within rounding. The cross vector of (anti)parallel vectors loses its
// direction; what it keeps is still across their small difference, so clearing its part along v suffices. Where nothing but rounding
// is left, any axis across v serves.
giVector3 turn_axis(const giUnitVec3& u, const giUnitVec3& v) {
  giVector3 axis = u.vector().cross(v.vector());
  axis.make_unit();
  axis -= v.dot(axis) * v.vector();
  if (!(axis.length() > 0.5)) return v.across().vector();
  axis.make_unit();
  return axis;
}

}  // namespace

giXform3 giXform3::from_rows(const double (&rows)[3][4]) {
  giXform3 x;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) x.a_[i][j] = rows[i][j];
    x.b_[i] = rows[i][3];
  }
  return x;
}

giXform3 giXform3::translation(const giVector3& by) {
  giXform3 x;
  for (int k = 0; k < 3; ++k) x.b_[k] = by[k];
  return x;
}

giXform3 giXform3::scaling(double x, double y, double z) {
  giXform3 map;
  map.a_[0][0] = x;
  map.a_[1][1] = y;
  map.a_[2][2] = z;
  return map;
}

// O. Rodrigues' formula; quarter and half turns are exact.
giXform3 giXform3::turn(const giVector3& axis, double radians) {
  const giVector3 u = giUnitVec3(axis).vector();
  giXform3 x;
  if (u.length_sq() == 0.0) return x;
  const double quarters = radians / (0.5 * std::acos(-1.0));
  const bool is_exact = quarters == std::floor(quarters);
  const double s = is_exact && std::fmod(quarters, 2.0) == 0.0 ? 0.0 : is_exact ? std::round(std::sin(radians)) : std::sin(radians);
  const double c = is_exact ? std::round(std::cos(radians)) : std::cos(radians);
  const double cross[3][3] = {{0.0, -u.z(), u.y()}, {u.z(), 0.0, -u.x()}, {-u.y(), u.x(), 0.0}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) x.a_[i][j] = (i == j ? c : 0.0) + s * cross[i][j] + (1.0 - c) * u[i] * u[j];
  }
  return x;
}

giXform3 giXform3::half_turn_x() {
  giXform3 x;
  x.a_[1][1] = x.a_[2][2] = -1.0;
  return x;
}

// Takes the frame (u, axis x u, axis) to (v, axis x v, axis), so no angle is ever taken: R = v u' + (axis x v)(axis x u)' + axis axis'.
giXform3 giXform3::rotation(const giVector3& from, const giVector3& to) {
  const giUnitVec3 u(from);
  const giUnitVec3 v(to);
  giXform3 x;
  if (u == v || u.vector().length_sq() == 0.0 || v.vector().length_sq() == 0.0) return x;
  const giVector3 axis = turn_axis(u, v);
  const giVector3 beside_u = axis.cross(u.vector());
  const giVector3 beside_v = axis.cross(v.vector());
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) x.a_[i][j] = v.vector()[i] * u.vector()[j] + beside_v[i] * beside_u[j] + axis[i] * axis[j];
  }
  return x;
}

giPoint3 giXform3::apply(const giPoint3& p) const {
  giPoint3 q;
  for (int i = 0; i < 3; ++i) q[i] = a_[i][0] * p.x + a_[i][1] * p.y + a_[i][2] * p.z + b_[i];
  return q;
}

giVector3 giXform3::apply(const giVector3& v) const {
  double w[3];
  for (int i = 0; i < 3; ++i) w[i] = a_[i][0] * v.x() + a_[i][1] * v.y() + a_[i][2] * v.z();
  return giVector3(w[0], w[1], w[2]);
}

giXform3 giXform3::then(const giXform3& next) const {
  giXform3 x;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      x.a_[i][j] = next.a_[i][0] * a_[0][j] + next.a_[i][1] * a_[1][j] + next.a_[i][2] * a_[2][j];
    }
    x.b_[i] = next.a_[i][0] * b_[0] + next.a_[i][1] * b_[1] + next.a_[i][2] * b_[2] + next.b_[i];
  }
  return x;
}

double giXform3::cofactor(int i, int j) const {
  const int r0 = (i + 1) % 3;
  const int r1 = (i + 2) % 3;
  const int c0 = (j + 1) % 3;
  const int c1 = (j + 2) % 3;
  return a_[r0][c0] * a_[r1][c1] - a_[r0][c1] * a_[r1][c0];
}

double giXform3::determinant() const { return a_[0][0] * cofactor(0, 0) + a_[0][1] * cofactor(0, 1) + a_[0][2] * cofactor(0, 2); }

giXform3 giXform3::inverse() const {
  giXform3 x;
  const double determinant = this->determinant();
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) x.a_[i][j] = cofactor(j, i) / determinant;
  }
  const giPoint3 moved = giPoint3() - x.apply(giVector3(b_[0], b_[1], b_[2]));
  for (int k = 0; k < 3; ++k) x.b_[k] = moved[k];
  return x;
}
