#pragma once

#include "platform/geometry/length.h"
#include "platform/geometry/point3.h"
#include "platform/utilities/export.h"

/// Measures of the shape of single triangles, and the choice between the two ways of splitting a quadrilateral.
class MENDEX_EXPORT trAspectUtils {
 public:
  /// Height of the triangle over its longest edge, as a squared length.
  ///
  /// Edge 0 runs between p1 and p0, edge 1 between p2 and p1, edge 2 between p0 and p2. Of equal edges the lower number counts as
  /// the longest, save that edge 2 wins only when strictly longer. Coincident points give height 0.
  /// @param side  receives the number of the edge that ends where the longest edge starts
  /// @param base  when given, receives the length of the longest edge
  static giLength triangle_height(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2, int& side, giLength* base);
  static giLength triangle_height(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2);

  /// Height over longest edge, squared: 3/4 for an equilateral triangle, towards 0 for a sliver; no value when the longest edge is
  /// zero.
  static giLength triangle_aspect(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2, int& side);
  static giLength triangle_aspect(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2);

  /// 1 when, in the quadrilateral with the diagonals p0-p3 and p1-p2, p0-p3 is the better one, else 0.
  ///
  /// The better split is the one whose worse triangle has the larger aspect; a tie keeps p1-p2, and so does a p0-p3 split whose
  /// triangles face opposite ways. A split with a triangle of aspect below 1e-10 loses to one whose triangles are both above it,
  /// whichever way they face.
  static int check_dela(const giPoint3& p0, const giPoint3& p1, const giPoint3& p2, const giPoint3& p3);
};
