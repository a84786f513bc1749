#pragma once

#include "platform/surface/zrk_knots.h"

/// The four cubic B-splines that do not vanish on one span, and their derivatives up to the third, at one parameter.
struct CubicBasis {
  double d[4][4];  ///< d[order][k]: of the k-th control value of the span

  /// @param t     0 to 1 across the span
  /// @param step  length of the span
  CubicBasis(double t, double step) {
    const double s = 1.0 - t;
    const double r = 1.0 / step;
    set(0, 1.0 / 6.0, s * s * s, (3.0 * t - 6.0) * t * t + 4.0, (3.0 * s - 6.0) * s * s + 4.0, t * t * t);
    set(1, r / 2.0, -s * s, (3.0 * t - 4.0) * t, (4.0 - 3.0 * s) * s, t * t);
    set(2, r * r, s, 3.0 * t - 2.0, 3.0 * s - 2.0, t);
    set(3, r * r * r, -1.0, 3.0, -3.0, 1.0);
  }
  CubicBasis(const zrkKnots& knots, int span, double t) : CubicBasis((t - knots.start) / knots.step - span, knots.step) {}

 private:
  void set(int order, double factor, double a, double b, double c, double e) {
    d[order][0] = factor * a;
    d[order][1] = factor * b;
    d[order][2] = factor * c;
    d[order][3] = factor * e;
  }
};
