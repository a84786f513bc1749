#include "oracles/shape_literal.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>

namespace {

using Vector = std::array<double, 3>;

Vector minus(const giPoint3& a, const giPoint3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
double dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double length(const Vector& a) { return std::sqrt(dot(a, a)); }

Vector cross(const giPoint3& a, const giPoint3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Vector normal(const giPoint3& a, const giPoint3& b, const giPoint3& c) {
  const Vector ab = cross(a, b);
  const Vector bc = cross(b, c);
  const Vector ca = cross(c, a);
  return {ab[0] + bc[0] + ca[0], ab[1] + bc[1] + ca[1], ab[2] + bc[2] + ca[2]};
}

}  // namespace

double aspect_literal(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2) {
  const std::array<Vector, 3> e = {minus(p0, p1), minus(p1, p2), minus(p2, p0)};
  const std::array<double, 3> l = {length(e[0]), length(e[1]), length(e[2])};
  std::size_t k = 0;
  if (l[0] >= l[1]) {
    k = l[0] < l[2] ? 2 : 0;
  } else {
    k = l[1] < l[2] ? 2 : 1;
  }
  if (l[k] == 0.0) return DBL_MAX;
  const std::size_t side = (k + 2) % 3;
  const Vector u = {e[k][0] / l[k], e[k][1] / l[k], e[k][2] / l[k]};
  const double d = dot(e[side], u);
  return std::sqrt(std::fabs(l[side] * l[side] - d * d) / (l[k] * l[k]));
}

int check_dela_literal(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2, const giPoint3& p3) {
  const double a1 = aspect_literal(p3, p1, p2);
  const double a2 = aspect_literal(p0, p2, p1);
  const double b1 = aspect_literal(p0, p2, p3);
  const double b2 = aspect_literal(p3, p1, p0);
  if ((a1 < 1e-10 || a2 < 1e-10) && b1 > 1e-10 && b2 > 1e-10) return 1;
  return std::min(b1, b2) > std::min(a1, a2) && dot(normal(p0, p2, p3), normal(p3, p1, p0)) > 0.0;
}
