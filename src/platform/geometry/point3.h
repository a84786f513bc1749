#pragma once

#include <cfloat>
#include <cmath>
#include <type_traits>

#include "platform/geometry/vector3.h"

/// A point; the origin by default. Invalid when x is the lowest double or any coordinate the largest.
class giPoint3 {
 public:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  constexpr giPoint3() = default;
  constexpr giPoint3(double px, double py, double pz) : x(px), y(py), z(pz) {}

  /// True also where only y or z is the largest double; coordinates that are not finite do not make a point invalid.
  bool invalid() const { return x == -DBL_MAX || x == DBL_MAX || y == DBL_MAX || z == DBL_MAX; }
  /// Sets x to the lowest double and keeps y and z.
  void set_invalid() { x = -DBL_MAX; }

  /// The coordinate along an axis: 0 gives x, 1 gives y, anything else z.
  double operator[](int axis) const { return axis == 0 ? x : (axis == 1 ? y : z); }
  double& operator[](int axis) { return axis == 0 ? x : (axis == 1 ? y : z); }

  double distance_sq(const giPoint3& p) const {
    const double dx = x - p.x;
    const double dy = y - p.y;
    const double dz = z - p.z;
    return dx * dx + dy * dy + dz * dz;
  }
  double distance(const giPoint3& p) const { return std::sqrt(distance_sq(p)); }

  friend giVector3 operator-(const giPoint3& a, const giPoint3& b) { return giVector3(a.x - b.x, a.y - b.y, a.z - b.z); }
  friend giPoint3 operator+(const giPoint3& p, const giVector3& v) { return giPoint3(p.x + v.x(), p.y + v.y(), p.z + v.z()); }
  friend giPoint3 operator-(const giPoint3& p, const giVector3& v) { return giPoint3(p.x - v.x(), p.y - v.y(), p.z - v.z()); }
  friend bool operator==(const giPoint3& a, const giPoint3& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }
  friend bool operator!=(const giPoint3& a, const giPoint3& b) { return !(a == b); }
};

static_assert(sizeof(giPoint3) == 24 && std::is_trivially_copyable<giPoint3>::value, "coordinates lie side by side");

/// a + t (b - a), coordinate by coordinate; t is not bounded. Exactly a for t = 0, and b to within rounding for t = 1.
inline giPoint3 gi_interpolate(const giPoint3& a, const giPoint3& b, double t) {
  return giPoint3(a.x + t * (b.x - a.x), a.y + t * (b.y - a.y), a.z + t * (b.z - a.z));
}
