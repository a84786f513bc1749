#pragma once

#include <cmath>

#include "platform/geometry/arrays.h"
#include "platform/geometry/workplane3.h"

/// A surface that is known exactly, with a hole in it: the round hole of radius 1 in its parameters (a, b).
struct KnownSurface {
  const char* name;
  giPoint3 (*point)(double a, double b);
  double (*distance)(const giPoint3& p);  ///< from the surface
};

/// Points that a mesh would have round the hole: `count` on its boundary, in order, and the next row outside.
struct HolePoints {
  giPoint3coPageArr ring;
  giPoint3coPageArr boundary;
};

template <class Move>
HolePoints hole_points(giPoint3 (*surface)(double, double), int count, Move&& move) {
  HolePoints points;
  const double step = 2.0 * std::acos(-1.0) / count;
  const double outside = 1.0 + 0.866 * step;
  for (int k = 0; k < count; ++k) {
    points.boundary[k] = move(surface(std::cos(k * step), std::sin(k * step)));
    const double between = (k + 0.5) * step;
    points.ring[k] = move(surface(outside * std::cos(between), outside * std::sin(between)));
  }
  return points;
}
inline HolePoints hole_points(giPoint3 (*surface)(double, double), int count) {
  return hole_points(surface, count, [](const giPoint3& p) { return p; });
}
