#pragma once

#include <cmath>

#include "platform/geometry/point2.h"

// Signs of determinants that are right for all points whose coordinates are multiples of 2^-90 not above 16 in size,
// which leaves no product that overflows or underflows. A rounded value is returned where its error bound proves the
// sign; else the exact value is worked out (J. R. Shewchuk, Adaptive Precision Floating-Point Arithmetic and Fast
// Robust Geometric Predicates, 1997).

/// The nearest point with such coordinates; only coordinates below 2^-37 in size change.
inline giPoint2 snapped(const giPoint2& p) {
  const auto snap = [](double v) { return std::fabs(v) < 0x1p-37 ? std::nearbyint(v * 0x1p90) * 0x1p-90 : v; };
  return giPoint2(snap(p.x), snap(p.y));
}

/// The exact determinants, rounded; their sign is always right. About a hundred times slower than the filter.
double exact_orientation(const giPoint2& a, const giPoint2& b, const giPoint2& c);
double exact_in_circle(const giPoint2& a, const giPoint2& b, const giPoint2& c, const giPoint2& d);

/// Twice the area of the triangle: positive when it turns counter-clockwise, exactly 0 when the points are on one line.
inline double orientation(const giPoint2& a, const giPoint2& b, const giPoint2& c) {
  constexpr double error_bound = 3.3306690738754716e-16;  // (3 + 16 u) u, u = 2^-53
  const double left = (a.x - c.x) * (b.y - c.y);
  const double right = (a.y - c.y) * (b.x - c.x);
  const double determinant = left - right;
  const double size = std::fabs(left) + std::fabs(right);
  if (std::fabs(determinant) > error_bound * size || size == 0.0) return determinant;
  return exact_orientation(a, b, c);
}

/// Positive when d lies inside the circle through a, b and c, which turn counter-clockwise; exactly 0 on the circle.
inline double in_circle(const giPoint2& a, const giPoint2& b, const giPoint2& c, const giPoint2& d) {
  constexpr double error_bound = 1.1102230246251577e-15;  // (10 + 96 u) u
  const double ax = a.x - d.x, ay = a.y - d.y;
  const double bx = b.x - d.x, by = b.y - d.y;
  const double cx = c.x - d.x, cy = c.y - d.y;
  const double bxcy = bx * cy, cxby = cx * by, cxay = cx * ay, axcy = ax * cy, axby = ax * by, bxay = bx * ay;
  const double a_sq = ax * ax + ay * ay, b_sq = bx * bx + by * by, c_sq = cx * cx + cy * cy;
  const double determinant = a_sq * (bxcy - cxby) + b_sq * (cxay - axcy) + c_sq * (axby - bxay);
  const double size = (std::fabs(bxcy) + std::fabs(cxby)) * a_sq + (std::fabs(cxay) + std::fabs(axcy)) * b_sq +
                      (std::fabs(axby) + std::fabs(bxay)) * c_sq;
  if (std::fabs(determinant) > error_bound * size) return determinant;
  return exact_in_circle(a, b, c, d);
}
