#pragma once

#include <cfloat>

#include "platform/geometry/point2.h"

/// Axis-aligned rectangle; empty while its least x is the largest double.
class giBox2 {
 public:
  const giPoint2& min() const { return min_; }
  const giPoint2& max() const { return max_; }
  bool is_empty() const { return min_.x == DBL_MAX; }
  void reset() { *this = giBox2(); }

  void merge(const giPoint2& p) {
    if (is_empty()) {
      min_ = max_ = p;
      return;
    }
    if (p.x < min_.x) min_.x = p.x;
    if (p.y < min_.y) min_.y = p.y;
    if (p.x > max_.x) max_.x = p.x;
    if (p.y > max_.y) max_.y = p.y;
  }

 private:
  giPoint2 min_{DBL_MAX, DBL_MAX};
  giPoint2 max_{-DBL_MAX, -DBL_MAX};
};
