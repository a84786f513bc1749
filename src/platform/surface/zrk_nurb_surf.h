#pragma once

#include <vector>

#include "platform/geometry/workplane3.h"
#include "platform/surface/zrk_knots.h"
#include "platform/surface/zrk_surf.h"
#include "platform/surface/zrk_surf_point.h"

/// A bicubic tensor-product B-spline surface whose weights are all one and which is a height field over a plane: the point at
/// (u, v) is origin + scale * (u x + v y + height(u, v) z), with the origin and the axes of a workplane. Twice continuously
/// differentiable. Its extent is the rectangle of the knots.
class MENDEX_EXPORT zrkNurbSurf : public zrkSurf {
 public:
  /// The plane with its unit of length, and the knots.
  struct Frame {
    giWorkplane3 plane;
    double scale = 1.0;
    zrkKnots u;
    zrkKnots v;
  };

  /// @param heights  control values, those of one v in a row: (i, j) at j * u.controls() + i; u.controls() * v.controls() of them,
  ///                 missing ones are 0
  zrkNurbSurf(const Frame& frame, std::vector<double> heights);
  ~zrkNurbSurf() override;

  const Frame& frame() const { return frame_; }
  /// Foot of p in the plane; may lie outside the knots.
  zrkUV foot(const giPoint3& p) const;
  /// The point at (u, v), each moved into the knots first.
  zrkSurfPoint evaluate(const zrkUV& uv) const;

  /// q = the point of the surface closest to p. The search starts at the better of p's foot and the best point of a coarse grid,
  /// never leaves the knots and never moves away from p; it may end in a closest point of the neighbourhood only.
  /// @return 0; -1 where p is not finite or its distance squared is not, and then q is left alone. Cost: bounded, typically a microsecond.
  int closest_point(const giPoint3& p, giPoint3& q) const override;
  /// q = where the line through p along `direction` (either way, any length but 0) meets the surface nearest to p. Two meetings
  /// closer together than a quarter of a knot span may be missed.
  /// @return 0; -1 where p or the direction is not usable, -2 where the line misses the surface, and then q is left alone.
  /// Cost: bounded by the spans that the line crosses.
  int project(const giPoint3& p, const giVector3& direction, giPoint3& q) const override;

 private:
  struct Local;     // coordinates in the frame, divided by the scale
  struct Height;    // the height at one (u, v) with its derivatives
  struct Distance;  // from the surface to a point, as a function of (u, v)
  struct Line;      // a line in local coordinates, cut to the box of the surface

  Local to_local(const giPoint3& p) const;
  giPoint3 to_world(const Local& p) const;
  double height(double u, double v) const;
  Height height_with_derivatives(double u, double v) const;
  zrkUV closest_start(const Local& p) const;
  Distance distance(const Local& p, const zrkUV& uv) const;
  zrkUV newton_step(const Distance& at) const;
  bool cut_to_surface(Line& line) const;
  double above(const Line& line, double t) const;
  double crossing(const Line& line, double low, double high) const;

  Frame frame_;
  std::vector<double> heights_;
  double lowest_;   // no height lies below
  double highest_;  // or above
  std::vector<double> coarse_;  // heights at the nodes of the coarse grid, row by row
};
