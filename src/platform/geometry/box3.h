#pragma once

#include <cfloat>

#include "platform/geometry/point3.h"
#include "platform/geometry/vector3.h"
#include "platform/utilities/export.h"

/// Axis-aligned box; empty while its least x is the largest double. Corners that are not numbers make comparisons false, no more.
class MENDEX_EXPORT giBox3 {
 public:
  giBox3() = default;
  giBox3(const giPoint3& min, const giPoint3& max) : min_(min), max_(max) {}

  const giPoint3& min() const { return min_; }
  const giPoint3& max() const { return max_; }
  bool is_empty() const { return min_.x == DBL_MAX; }
  void reset() { *this = giBox3(); }

  void merge(const giPoint3& p) {
    if (is_empty()) {
      min_ = max_ = p;
      return;
    }
    for (int k = 0; k < 3; ++k) {
      if (p[k] < min_[k]) min_[k] = p[k];
      if (p[k] > max_[k]) max_[k] = p[k];
    }
  }
  /// An empty box merges as nothing.
  void merge(const giBox3& other) {
    if (other.is_empty()) return;
    merge(other.min_);
    merge(other.max_);
  }

  /// Edge lengths; zero for an empty box.
  giVector3 lengths() const { return is_empty() ? giVector3() : max_ - min_; }
  /// The point at fractions of the edge lengths from the least corner.
  giPoint3 point_at(double fx, double fy, double fz) const;
  /// Moves every side outward by d; an empty box stays empty.
  void grow(double d);
  /// Whether p lies in the box grown by tol, inclusive.
  bool contains(const giPoint3& p, double tol) const;
  /// Whether the boxes overlap when each is grown by tol, inclusive.
  bool crosses(const giBox3& other, double tol) const;
  /// Whether the infinite line through `point` along `direction` meets the box, inclusive.
  bool crosses_line(const giPoint3& point, const giVector3& direction) const;

 private:
  giPoint3 min_{DBL_MAX, DBL_MAX, DBL_MAX};
  giPoint3 max_{-DBL_MAX, -DBL_MAX, -DBL_MAX};
};
