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
  /// Any other t, and what is no number, gets the first or the last.
  int span(double t) const {
    const double s = (t - start) / step;
    if (!(s > 0.0)) return 0;
    return s < spans - 1 ? static_cast<int>(s) : spans - 1;
  }
};
