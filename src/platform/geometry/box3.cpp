#include "platform/geometry/box3.h"

#include <algorithm>
#include <cmath>

giPoint3 giBox3::point_at(double fx, double fy, double fz) const {
  const giVector3 l = lengths();
  return giPoint3(min_.x + fx * l.x(), min_.y + fy * l.y(), min_.z + fz * l.z());
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

// The slab method (T. Kay, J. Kajiya, "Ray tracing complex scenes", 1986), for a line unbounded at both ends.
bool giBox3::crosses_line(const giPoint3& point, const giVector3& direction) const {
  if (is_empty()) return false;
  double enter = -HUGE_VAL;
  double leave = HUGE_VAL;
  for (int k = 0; k < 3; ++k) {
    if (direction[k] == 0.0) {
      if (!(point[k] >= min_[k] && point[k] <= max_[k])) return false;
      continue;
    }
    const double a = (min_[k] - point[k]) / direction[k];
    const double b = (max_[k] - point[k]) / direction[k];
    enter = std::max(enter, std::min(a, b));
    leave = std::min(leave, std::max(a, b));
  }
  return enter <= leave;
}
