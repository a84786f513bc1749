#pragma once

#include <algorithm>
#include <cmath>

/// Evenly spaced knots of a cubic B-spline in one parameter: `spans` intervals of length `step` from `start` on.
struct zrkKnots {
  double start = 0.0;
  double step = 1.0;
  int spans = 1;

  double end() const { return start + step * spans; }
  /// Number of control values: each span is ruled by four, of which it shares three with the next.
  int controls() const { return spans + 3; }
  double clamped(double t) const { return std::min(std::max(t, start), end()); }
  /// The span that holds t, which must lie between `start` and `end()`; its number is that of its first control value.
  int span(double t) const { return std::min(std::max(static_cast<int>((t - start) / step), 0), spans - 1); }
};
