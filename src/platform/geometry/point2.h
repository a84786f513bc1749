#pragma once

/// A point of the plane; the origin by default.
class giPoint2 {
 public:
  double x = 0.0;
  double y = 0.0;

  giPoint2() = default;
  giPoint2(double px, double py) : x(px), y(py) {}

  friend bool operator==(const giPoint2& a, const giPoint2& b) { return a.x == b.x && a.y == b.y; }
  friend bool operator!=(const giPoint2& a, const giPoint2& b) { return !(a == b); }
};
