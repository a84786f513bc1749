#include "platform/geometry/xform3.h"

#include <cmath>

namespace {

// A unit vector across u, along the cross vector with the axis that u leans on least.
giVector3 across(const giVector3& u) {
  const double ax = std::fabs(u.x());
  const double ay = std::fabs(u.y());
  const double az = std::fabs(u.z());
  const giVector3 axis = ax <= ay && ax <= az ? giVector3(1, 0, 0) : (ay <= az ? giVector3(0, 1, 0) : giVector3(0, 0, 1));
  giVector3 v = u.cross(axis);
  v.make_unit();
  return v;
}

}  // namespace

giXform3 giXform3::translation(const giVector3& by) {
  giXform3 x;
  for (int k = 0; k < 3; ++k) x.b_[k] = by[k];
  return x;
}

giXform3 giXform3::half_turn_x() {
  giXform3 x;
  x.a_[1][1] = x.a_[2][2] = -1.0;
  return x;
}

// Two reflections make a rotation, R = (1 - 2 s s')(1 - 2 f f'), and no angle is ever taken. With f half-way between u and v, the
// first takes u to -v and the second, s = v, takes that to v. For opposite vectors f = u takes u to v, and s across u keeps it there.
giXform3 giXform3::rotation(const giVector3& from, const giVector3& to) {
  giVector3 u = from;
  giVector3 v = to;
  u.make_unit();
  v.make_unit();
  giXform3 x;
  if (u.length_sq() == 0.0 || v.length_sq() == 0.0) return x;
  giVector3 half = u + v;
  const bool opposite = half.length() < 1e-8;
  half.make_unit();
  const giVector3 first = opposite ? u : half;
  const giVector3 second = opposite ? across(u) : v;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const double identity = i == j ? 1.0 : 0.0;
      x.a_[i][j] = identity - 2.0 * first[i] * first[j] - 2.0 * second[i] * second[j] + 4.0 * second.dot(first) * second[i] * first[j];
    }
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

giXform3 giXform3::inverse() const {
  giXform3 x;
  const auto cofactor = [this](int i, int j) {
    const int r0 = (i + 1) % 3;
    const int r1 = (i + 2) % 3;
    const int c0 = (j + 1) % 3;
    const int c1 = (j + 2) % 3;
    return a_[r0][c0] * a_[r1][c1] - a_[r0][c1] * a_[r1][c0];
  };
  const double determinant = a_[0][0] * cofactor(0, 0) + a_[0][1] * cofactor(0, 1) + a_[0][2] * cofactor(0, 2);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) x.a_[i][j] = cofactor(j, i) / determinant;
  }
  const giPoint3 moved = giPoint3() - x.apply(giVector3(b_[0], b_[1], b_[2]));
  for (int k = 0; k < 3; ++k) x.b_[k] = moved[k];
  return x;
}
