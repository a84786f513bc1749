#pragma once

/// The parameters of a point of a surface.
struct zrkUV {
  double u = 0.0;
  double v = 0.0;

  friend bool operator==(const zrkUV& a, const zrkUV& b) { return a.u == b.u && a.v == b.v; }
  friend bool operator!=(const zrkUV& a, const zrkUV& b) { return !(a == b); }
};
