#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/geometry/point2.h"
#include "platform/geometry/xform3.h"
#include "support/shapes.h"

using Outline = std::vector<giPoint2>;

/// Corners on a circle about the origin, counter-clockwise.
inline Outline round_outline(int n, double radius = 1.0) {
  Outline outline;
  for (int k = 0; k < n; ++k) {
    const double angle = 2.0 * std::acos(-1.0) * k / n;
    outline.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
  }
  return outline;
}

/// Adds a part whose points and triangles are numbered behind those that are there.
inline void append(Shape& shape, const Shape& part) {
  const int n = static_cast<int>(shape.points.size());
  shape.points.insert(shape.points.end(), part.points.begin(), part.points.end());
  for (const auto& t : part.triangles) shape.triangles.push_back({t[0] + n, t[1] + n, t[2] + n});
}

/// A bowl that is open at the top, facing outward: a fan from the rim (points 0 to n - 1, in the plane z = 0, counter-
/// clockwise) to an apex below, all of it then placed by `frame`. Its cap faces along the frame's z axis.
inline Shape bowl(const Outline& rim, const giXform3& frame = {}) {
  Shape shape;
  double size = 0.0;
  for (const giPoint2& p : rim) {
    shape.points.push_back(frame.apply(giPoint3(p.x, p.y, 0.0)));
    size = std::max({size, std::fabs(p.x), std::fabs(p.y)});
  }
  const int n = static_cast<int>(rim.size());
  shape.points.push_back(frame.apply(giPoint3(rim[0].x, rim[0].y, -size)));
  for (int k = 0; k < n; ++k) shape.triangles.push_back({n, (k + 1) % n, k});
  return shape;
}

/// The frame whose z axis is `up` and whose origin is `at`.
inline giXform3 frame_of(const giVector3& up, const giPoint3& at = {}) {
  return giXform3::rotation(giVector3(0.0, 0.0, 1.0), up).then(giXform3::translation(at - giPoint3()));
}

inline giXform3 moved_to(double x) { return giXform3::translation(giVector3(x, 0.0, 0.0)); }

inline double area_of(const Outline& outline) {
  double doubled = 0.0;
  for (std::size_t k = 0; k < outline.size(); ++k) {
    const giPoint2& p = outline[k];
    const giPoint2& q = outline[(k + 1) % outline.size()];
    doubled += p.x * q.y - q.x * p.y;
  }
  return 0.5 * doubled;
}
