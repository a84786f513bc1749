#include "boundaries/edge_cone_tree.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double right_angle = 1.5707963267948966;
// What rounding can take from a bound: angles and their sines, and the squared height that comes out of a difference of squares.
constexpr double angle_slack = 1e-7;
constexpr double height_slack = 1e-14;
constexpr double place_slack = 1e-15;  // of a centre, relative to its coordinates
// Squares below lose digits, or are 0.
constexpr double least_square = 1e-290;

bool is_finite(const giPoint3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

double rounding_at(const giPoint3& p) { return place_slack * std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)}); }

// Angle between the lines along two unit vectors, 0 to a right angle.
double line_angle(const giVector3& u, const giVector3& v) { return std::atan2(u.cross(v).length(), std::fabs(u.dot(v))); }

}  // namespace

// What is not finite makes no height: such an edge bounds the place of its finite end alone, and limits no height.
EdgeConeTree::Cone EdgeConeTree::cone_of(const giPoint3& a, const giPoint3& b) {
  Cone cone;
  const bool has_start = is_finite(a), has_end = is_finite(b);
  if (!has_start && !has_end) return cone;
  cone.shortest = has_start && has_end ? a.distance(b) : HUGE_VAL;
  cone.centre = has_start && has_end ? gi_interpolate(a, b, 0.5) : has_start ? a : b;
  cone.radius = rounding_at(cone.centre);
  if (!has_start || !has_end) return cone;
  cone.radius = (cone.radius + 0.5 * cone.shortest) * (1.0 + 1e-9);
  cone.axis = b - a;
  cone.axis.make_unit();
  return cone;
}

EdgeConeTree::Cone EdgeConeTree::joined(const Cone& a, const Cone& b) {
  if (a.is_empty() || b.is_empty()) return a.is_empty() ? b : a;
  Cone cone;
  cone.centre = gi_interpolate(a.centre, b.centre, 0.5);
  const double reach = std::max(cone.centre.distance(a.centre) + a.radius, cone.centre.distance(b.centre) + b.radius);
  cone.radius = (reach + rounding_at(cone.centre)) * (1.0 + 1e-9);
  cone.axis = a.axis.dot(b.axis) < 0.0 ? a.axis - b.axis : a.axis + b.axis;
  cone.axis.make_unit();
  cone.spread = std::max(line_angle(cone.axis, a.axis) + a.spread, line_angle(cone.axis, b.axis) + b.spread);
  cone.cos_spread = std::cos(cone.spread);
  cone.sin_spread = std::sin(cone.spread);
  cone.shortest = std::min(a.shortest, b.shortest);
  return cone;
}

// The sine of the angle by which the direction leaves the cone comes from those of its parts. Every comparison is false where something is
// not a number, and then nothing is passed over.
bool EdgeConeTree::is_beyond(const Cone& cone, const giPoint3& p, double reach, double tol) {
  if (cone.is_empty()) return true;
  const double d = p.distance(cone.centre);
  const double r = cone.radius + reach;
  if (!(d > r) || !std::isfinite(d) || !(cone.spread < right_angle)) return false;
  giVector3 towards = p - cone.centre;
  towards.make_unit();
  const double sin_sphere = r / d, cos_sphere = std::sqrt((1.0 - sin_sphere) * (1.0 + sin_sphere));
  const double sin_within = cone.sin_spread * cos_sphere + cone.cos_spread * sin_sphere;
  const double cos_within = cone.cos_spread * cos_sphere - cone.sin_spread * sin_sphere;
  const double sin_outside = towards.cross(cone.axis).length() * cos_within - std::fabs(towards.dot(cone.axis)) * sin_within - angle_slack;
  if (!(sin_outside > 0.0)) return false;
  const double longest = std::max(2.0 * cone.radius, d + r);
  const double least = cone.shortest * (d - r) * sin_outside / longest;
  return least * least * (1.0 - 1e-9) - height_slack * longest * longest - least_square > tol * tol;
}

void EdgeConeTree::build(std::vector<Cone> leaves) {
  while (leaf_count_ < leaves.size()) leaf_count_ *= 2;
  cones_.resize(2 * leaf_count_);
  active_.assign(2 * leaf_count_, 0);
  for (std::size_t k = 0; k < leaves.size(); ++k) {
    cones_[leaf_count_ + k] = leaves[k];
    active_[leaf_count_ + k] = static_cast<int>(std::min(edges_a_leaf, edges_.size() - k * edges_a_leaf));
  }
  for (std::size_t n = leaf_count_ - 1; n >= 1; --n) {
    active_[n] = active_[2 * n] + active_[2 * n + 1];
    cones_[n] = active_[2 * n + 1] == 0 ? cones_[2 * n] : joined(cones_[2 * n], cones_[2 * n + 1]);
  }
}

void EdgeConeTree::deactivate(int k) {
  const auto at = static_cast<std::size_t>(k);
  if (!is_active_[at]) return;
  is_active_[at] = 0;
  for (std::size_t n = leaf_count_ + at / edges_a_leaf; n >= 1; n /= 2) --active_[n];
}
