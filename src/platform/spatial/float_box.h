#pragma once

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <vector>

#include "platform/geometry/point3.h"

/// A box in single precision, for searches that check what they find.
struct FloatBox {
  // Overlaps nothing: the coordinates of all others are finite.
  float low[3] = {HUGE_VALF, HUGE_VALF, HUGE_VALF};
  float high[3] = {-HUGE_VALF, -HUGE_VALF, -HUGE_VALF};

  void merge(const FloatBox& other) {
    for (int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], other.low[k]);
      high[k] = std::max(high[k], other.high[k]);
    }
  }
  bool overlaps(const FloatBox& other) const {
    for (int k = 0; k < 3; ++k) {
      if (!(low[k] <= other.high[k] && other.low[k] <= high[k])) return false;
    }
    return true;
  }
};

/// Maps coordinates to single precision, measured from an origin so that small boxes far from zero stay apart.
///
/// The map never decreases as a coordinate grows. So boxes that overlap are mapped to boxes that overlap, without any
/// widening; the reverse holds but for rounding.
class FloatFrame {
 public:
  FloatFrame() = default;
  explicit FloatFrame(const giPoint3& origin) : origin_{origin.x, origin.y, origin.z} {}
  /// The origin is, along each axis, the middle one of the finite coordinates: a few stray points do not draw it away.
  static FloatFrame about_middle(const std::vector<giPoint3>& sample);

  float map(double x, int axis) const {
    const double limit = FLT_MAX;
    return static_cast<float>(std::max(-limit, std::min(limit, x - origin_[axis])));
  }
  /// Boxes with a coordinate that is not a number overlap nothing, nor do those whose least exceeds the greatest along
  /// an axis.
  FloatBox map(const giPoint3& low, const giPoint3& high) const {
    FloatBox box;
    if (!(low.x <= high.x && low.y <= high.y && low.z <= high.z)) return box;
    for (int k = 0; k < 3; ++k) {
      box.low[k] = map(low[k], k);
      box.high[k] = map(high[k], k);
    }
    return box;
  }

 private:
  double origin_[3] = {0.0, 0.0, 0.0};
};
