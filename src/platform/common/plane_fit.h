#pragma once

#include "platform/geometry/point3.h"
#include "platform/geometry/vector3.h"
#include "platform/utilities/export.h"

/// The plane of least squares through points that a derived class hands out.
class MENDEX_EXPORT ccPlaneFit {
 public:
  /// The number of points; asked once by each fit.
  virtual int size() const = 0;
  /// Point i, asked once each in the order 0, 1, ..., size() - 1; the reference need only live until the next call.
  virtual const giPoint3& data_point(int i) const = 0;
  virtual ~ccPlaneFit();

  /// Finds the plane for which the sum of the squared distances of the points is least.
  ///
  /// Neither the unit nor the distance of the points from the world's origin matters, but for the rounding of the
  /// coordinates themselves. Where all directions across the points fit equally well, as for the corners of a cube, one
  /// of them is given, the same on every machine.
  /// @param origin    the average of the points
  /// @param normal    of length 1; the component largest in size is positive, or of several within a thousandth of it the last
  /// @param residual  the root mean square distance of the points from the plane
  /// @return          0; without a change of the three arguments 1 for fewer than three points, 2 for a coordinate that is not finite,
  ///                  3 for points on one line or in one place to within rounding, 4 where memory runs out
  /// Method: singular values by one-sided Jacobi rotations (M. R. Hestenes, Inversion of Matrices by
  /// Biorthogonalization and Related Results, 1958). Cost: O(n) time, 24 bytes a point.
  int fit(giPoint3& origin, giVector3& normal, double& residual) const;
};
