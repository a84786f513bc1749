#pragma once

#include <vector>

#include "platform/geometry/arrays.h"
#include "platform/geometry/workplane3.h"

/// A point in the coordinates of the fit: over the plane at (u, v), at height z, in units of half the points' extent.
struct FitSample {
  double u;
  double v;
  double z;
};

/// The points that a surface is fitted to, seen from their best-fit plane.
struct FitSamples {
  enum class State {
    ready,
    not_finite,    ///< a point, or the distance between two of them, is not a finite number
    too_few,       ///< fewer than six places in the plane, or all on one line
  };

  State state = State::too_few;
  /// Through the middle of the points; z across them, x along their greatest extent. Where the hole is seen from the edge that way,
  /// z is across the hole.
  giWorkplane3 plane;
  double scale = 1.0;            ///< model units in one unit of the samples
  std::vector<FitSample> points; ///< those of the ring, then those of the boundary in their order
  int boundary_start = 0;        ///< number of the first boundary point

  int count() const { return static_cast<int>(points.size()); }
};

/// Ring points farther away from the boundary than about its own extent are drawn near.
FitSamples make_fit_samples(const giPoint3coPageArr& ring, const giPoint3coPageArr& boundary);

/// The corners of the convex hull of the samples' places in the plane, counter-clockwise.
std::vector<FitSample> convex_hull(std::vector<FitSample> points);
/// Where the line at v crosses the hull, from `low` to `high`; `low` > `high` where it misses it.
struct HullRow {
  double low;
  double high;
};
HullRow hull_row(const std::vector<FitSample>& hull, double v);

/// Whether the surface turns away from the plane at the boundary: more than a quarter of the ring's points stand steeper than
/// `slope` above or below the nearest place of the boundary, or inside the boundary, under or over the hole.
bool turns_away(const FitSamples& samples, double slope);
