#pragma once

#include "platform/geometry/arrays.h"
#include "platform/surface/zrk_surf.h"

class FairingProblem;

/// Fits a smooth surface to scattered points round a hole, so that the hole can be closed with it.
class MENDEX_EXPORT gcmSurfFitter {
 public:
  enum Result {
    success = 0,
    interrupted = 4,
    not_finite = 7,        ///< a coordinate, or the extent of the points, is not a finite number
    too_few_points = 8,    ///< seen from their best-fit plane the points stand in fewer than six places, or in one line
    no_height_field = 9,   ///< the surface turns away from the plane by more than about 80 degrees
    bad_fit = 10,          ///< the boundary points scatter about the smooth surface by more than 2 % of their extent
    no_memory = 11
  };

  virtual ~gcmSurfFitter();

  /// Fits a bicubic B-spline height field over the best-fit plane of all points; over the plane that faces the hole where the
  /// best-fit plane sees it from the edge.
  ///
  /// The surface passes the points closely; where there are none its curvature changes as little as it can. A hole in a plane, a
  /// sphere or a circular cylinder is filled with the same shape. Knots are about as far apart as the boundary points, with at most
  /// 40 spans each way; the stiffness is the greatest that leaves the boundary points in place. Neither the unit of length nor the
  /// distance from the origin matters.
  /// @param ring      points of the mesh round the hole; may be empty; of points far away only the direction counts
  /// @param boundary  points of the hole's boundary, in their order along it; where there are none, those of the ring are
  /// @param surface   the fitted surface, a `zrkNurbSurf`; left alone unless the result is 0
  /// @return          0 for success
  /// Cost: O(n) for n points, and at most about half a second for the surface.
  int fit(const giPoint3coPageArr& ring, const giPoint3coPageArr& boundary, zrkSurfPtr& surface);

 protected:
  /// Called now and then with how much is done, 0 to 100; anything but 0 gives up.
  virtual int progress_feedback(int percent);

 private:
  /// Root mean square of what is left at the boundary points.
  struct Limits {
    double close_enough;
    double greatest;
  };
  Result soften(FairingProblem& problem, const Limits& limits);
};
