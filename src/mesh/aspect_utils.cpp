#include "mesh/aspect_utils.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "mesh/measures.h"

namespace {

// Aspect below which a triangle counts as degenerate when diagonals are compared.
constexpr double degenerate_aspect = 1e-10;

int longest_edge(const double length[3]) {
  if (length[0] >= length[1]) return length[0] < length[2] ? 2 : 0;
  return length[1] < length[2] ? 2 : 1;
}

double aspect_value(const giPoint3& a, const giPoint3& b, const giPoint3& c) {
  return trAspectUtils::triangle_aspect(a, b, c).value();
}

}  // namespace

giLength trAspectUtils::triangle_height(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2, int& side, giLength* base) {
  giVector3 edge[3] = {p0 - p1, p1 - p2, p2 - p0};
  const double length[3] = {edge[0].length(), edge[1].length(), edge[2].length()};
  const int longest = longest_edge(length);
  side = (longest + 2) % 3;
  giVector3 direction = edge[longest];
  direction.make_unit();
  const double along = edge[side].dot(direction);
  if (base != nullptr) *base = giLength::from_length(length[longest]);
  return giLength::from_squared(std::fabs(length[side] * length[side] - along * along));
}

giLength trAspectUtils::triangle_height(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2) {
  int side = 0;
  return triangle_height(p0, p1, p2, side, nullptr);
}

giLength trAspectUtils::triangle_aspect(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2, int& side) {
  giLength base;  // no value
  const giLength height = triangle_height(p0, p1, p2, side, &base);
  if (base.value() == 0.0) return giLength();
  return height / base;
}

giLength trAspectUtils::triangle_aspect(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2) {
  int side = 0;
  return triangle_aspect(p0, p1, p2, side);
}

int trAspectUtils::check_dela(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2, const giPoint3& p3) {
  const double a1 = aspect_value(p3, p1, p2);
  const double a2 = aspect_value(p0, p2, p1);
  const double b1 = aspect_value(p0, p2, p3);
  const double b2 = aspect_value(p3, p1, p0);
  const bool a_degenerate = a1 < degenerate_aspect || a2 < degenerate_aspect;
  if (a_degenerate && b1 > degenerate_aspect && b2 > degenerate_aspect) return 1;
  giVector3 n1;
  giVector3 n2;
  tr_area_tri_sq(p0, p2, p3, n1);
  tr_area_tri_sq(p3, p1, p0, n2);
  return std::min(b1, b2) > std::min(a1, a2) && n1.dot(n2) > 0.0;
}
