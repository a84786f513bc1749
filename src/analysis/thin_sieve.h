#pragma once

#include <algorithm>
#include <cmath>

#include "mesh/aspect_utils.h"

/// What a search for badly shaped triangles measures.
enum class ThinMeasure { height, aspect };

/// Tells without a root or a division that a triangle is not below a bound in height or aspect; the few that it cannot tell must be
/// measured. It only ever speaks where the measured value, with all its rounding, is at or above the bound as well.
class ThinSieve {
 public:
  /// Nothing passes until a bound is set.
  explicit ThinSieve(ThinMeasure measure) : measure_(measure) {}

  /// @param squared  the bound, squared
  void set_bound(double squared) { bound_ = squared * (1.0 + slack); }

  /// Whether the measure of the triangle is certainly not below the bound.
  ///
  /// The squared height is |u x v|^2 / longest^2. As measured it is off by some 20 units in the last place of longest^2; the slack is
  /// 90 of them. Coordinates at which the products could leave the range of a double are left to be measured.
  bool clears(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2) const {
    const giVector3 u = p1 - p0;
    const giVector3 v = p2 - p0;
    const double longest_sq = std::max(std::max(u.length_sq(), v.length_sq()), (p2 - p1).length_sq());
    if (!(longest_sq > 1e-70 && longest_sq < 1e70)) return false;
    const double bound = measure_ == ThinMeasure::height ? bound_ + slack * longest_sq : (bound_ + slack) * longest_sq;
    return u.cross(v).length_sq() > bound * longest_sq;
  }

 private:
  static constexpr double slack = 1e-14;
  ThinMeasure measure_;
  double bound_ = HUGE_VAL;
};
