#pragma once

#include <cfloat>

#include "platform/geometry/point3.h"
#include "platform/geometry/vector3.h"
#include "platform/utilities/export.h"

/// Axis-aligned box; empty while its least x is the largest double.
///
/// Coordinates that are not numbers are left out of a box as long as any number has been merged along their axis. Corners that are
/// not numbers, or whose least exceeds the greatest, make `contains`, `crosses` and `crosses_line` false, and do nothing more.
class MENDEX_EXPORT giBox3 {
 public:
  giBox3() = default;
  giBox3(const giPoint3& min, const giPoint3& max) : min_(min), max_(max) {}

  const giPoint3& min() const { return min_; }
  const giPoint3& max() const { return max_; }
  bool is_empty() const { return min_.x == DBL_MAX; }
  void reset() { *this = giBox3(); }

  /// Extends the box to hold p.
  void merge(const giPoint3& p) { merge_corners(p, p); }
  /// Extends the box to hold another; an empty box merges as nothing.
  void merge(const giBox3& other) {
    if (!other.is_empty()) merge_corners(other.min_, other.max_);
  }

  /// Edge lengths; zero for an empty box.
  giVector3 lengths() const { return is_empty() ? giVector3() : max_ - min_; }
  /// The point at fractions of the edge lengths from the least corner: exactly the corner's coordinate for 0 and 1. An invalid
  /// point for an empty box.
  giPoint3 point_at(double fx, double fy, double fz) const;
  /// Moves every side outward by d, or inward for a negative d; an empty box stays empty.
  void grow(double d);
  /// Whether p lies in the box grown by tol, inclusive.
  bool contains(const giPoint3& p, double tol) const;
  /// Whether the boxes overlap when each is grown by tol, inclusive.
  bool crosses(const giBox3& other, double tol) const;
  /// Whether the infinite line through `point` along `direction` (of any length but zero) meets the box, inclusive: a line that
  /// touches the box is never missed through rounding. A zero direction asks whether the box holds the point.
  bool crosses_line(const giPoint3& point, const giVector3& direction) const;

 private:
  void merge_corners(const giPoint3& low, const giPoint3& high) {
    if (is_empty()) {
      min_ = low;
      max_ = high;
      return;
    }
    for (int k = 0; k < 3; ++k) {
      if (low[k] < min_[k] || min_[k] != min_[k]) min_[k] = low[k];
      if (high[k] > max_[k] || max_[k] != max_[k]) max_[k] = high[k];
    }
  }

  giPoint3 min_{DBL_MAX, DBL_MAX, DBL_MAX};
  giPoint3 max_{-DBL_MAX, -DBL_MAX, -DBL_MAX};
};
