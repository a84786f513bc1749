#include "platform/geometry/box3.h"

#include <algorithm>
#include <cmath>

namespace {

// Both ends are exact, so that parts of a divided box reach just as far as the whole, and a flat box has flat parts.
double between(double low, double high, double fraction) {
  if (fraction == 0.0) return low;
  return fraction == 1.0 ? high : low + fraction * (high - low);
}

}  // namespace

giPoint3 giBox3::point_at(double fx, double fy, double fz) const {
  if (is_empty()) return min_;
  return giPoint3(between(min_.x, max_.x, fx), between(min_.y, max_.y, fy), between(min_.z, max_.z, fz));
}

void giBox3::grow(double d) {
  if (is_empty()) return;
  for (int k = 0; k < 3; ++k) {
    min_[k] -= d;
    max_[k] += d;
  }
}

bool giBox3::contains(const giPoint3& p, double tol) const {
  if (is_empty()) return false;
  for (int k = 0; k < 3; ++k) {
    if (!(p[k] >= min_[k] - tol && p[k] <= max_[k] + tol)) return false;
  }
  return true;
}

bool giBox3::crosses(const giBox3& other, double tol) const {
  if (is_empty() || other.is_empty()) return false;
  for (int k = 0; k < 3; ++k) {
    if (!(min_[k] - tol <= other.max_[k] + tol && other.min_[k] - tol <= max_[k] + tol)) return false;
  }
  return true;
}

// The slab method (T. Kay, J. Kajiya, "Ray tracing complex scenes", 1986), for a line unbounded at both ends. Each parameter is off
// by one subtraction and one division, so by at most DBL_EPSILON of itself; twice that much overlap may be lost between two of them.
bool giBox3::crosses_line(const giPoint3& point, const giVector3& direction) const {
  if (is_empty()) return false;
  double enter = -HUGE_VAL;
  double leave = HUGE_VAL;
  for (int k = 0; k < 3; ++k) {
    if (direction[k] == 0.0) {
      if (!(point[k] >= min_[k] && point[k] <= max_[k])) return false;
      continue;
    }
    if (!(min_[k] <= max_[k])) return false;
    const double a = (min_[k] - point[k]) / direction[k];
    const double b = (max_[k] - point[k]) / direction[k];
    if (std::isnan(a) || std::isnan(b)) return false;
    enter = std::max(enter, std::min(a, b));
    leave = std::min(leave, std::max(a, b));
  }
  if (enter <= leave) return true;
  const double slack = 2.0 * DBL_EPSILON * std::max(std::fabs(enter), std::fabs(leave));
  return std::isfinite(slack) && enter - leave <= slack;
}
