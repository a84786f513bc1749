#pragma once

#include "platform/geometry/point3.h"
#include "platform/utilities/export.h"

/// Formulas on single triangles.
class MENDEX_EXPORT ccMath {
 public:
  /// Signed volume between the triangle and the plane z = z0: positive when it runs counter-clockwise seen from +z and lies above.
  static double tri_vol(const giPoint3& p, const giPoint3& q, const giPoint3& r, double z0);
  /// Height over the longest edge divided by that edge: sqrt(3)/2 for an equilateral triangle, 0 for a degenerate one. From 0 to
  /// sqrt(3)/2, to within rounding, for every finite triangle, however large or small; not a number where a corner is not finite.
  static double tri_aspect_ratio(const giPoint3& p, const giPoint3& q, const giPoint3& r);
};
