#pragma once

#include <cfloat>

#include "platform/geometry/point2.h"

/// Axis-aligned rectangle; empty while its least x is the largest double. Treats what is not a number as giBox3 does.
class giBox2 {
 public:
  giBox2() = default;
  giBox2(const giPoint2& min, const giPoint2& max) : min_(min), max_(max) {}

  const giPoint2& min() const { return min_; }
  const giPoint2& max() const { return max_; }
  bool is_empty() const { return min_.x == DBL_MAX; }
  void reset() { *this = giBox2(); }

  /// Extends the rectangle to hold p.
  void merge(const giPoint2& p) { merge_corners(p, p); }
  /// Extends the rectangle to hold another; an empty one merges as nothing.
  void merge(const giBox2& other) {
    if (!other.is_empty()) merge_corners(other.min_, other.max_);
  }

 private:
  void merge_corners(const giPoint2& low, const giPoint2& high) {
    if (is_empty()) {
      min_ = low;
      max_ = high;
      return;
    }
    if (low.x < min_.x || min_.x != min_.x) min_.x = low.x;
    if (low.y < min_.y || min_.y != min_.y) min_.y = low.y;
    if (high.x > max_.x || max_.x != max_.x) max_.x = high.x;
    if (high.y > max_.y || max_.y != max_.y) max_.y = high.y;
  }

  giPoint2 min_{DBL_MAX, DBL_MAX};
  giPoint2 max_{-DBL_MAX, -DBL_MAX};
};
