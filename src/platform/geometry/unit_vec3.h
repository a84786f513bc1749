#pragma once

#include "platform/geometry/axis.h"
#include "platform/geometry/vector3.h"

/// A direction of length 1.
class giUnitVec3 {
 public:
  /// Along the z axis.
  constexpr giUnitVec3() : giUnitVec3(gi_z_axis) {}
  /// Along a world axis.
  constexpr explicit giUnitVec3(gi_Axis axis)
      : v_(axis == gi_x_axis ? 1.0 : 0.0, axis == gi_y_axis ? 1.0 : 0.0, axis == gi_z_axis ? 1.0 : 0.0) {}
  /// The vector's direction; a zero vector stays zero.
  explicit giUnitVec3(const giVector3& v) : v_(v) { v_.make_unit(); }

  double x() const { return v_.x(); }
  double y() const { return v_.y(); }
  double z() const { return v_.z(); }
  const giVector3& vector() const { return v_; }
  /// A unit vector at right angles to this one: along the cross vector with the world axis that this one leans on least.
  giUnitVec3 across() const {
    const double ax = std::fabs(x());
    const double ay = std::fabs(y());
    const double az = std::fabs(z());
    const gi_Axis least = ax <= ay && ax <= az ? gi_x_axis : (ay <= az ? gi_y_axis : gi_z_axis);
    return giUnitVec3(v_.cross(giUnitVec3(least).v_));
  }
  double dot(const giVector3& v) const { return v_.dot(v); }

  /// Exact, component by component.
  friend bool operator==(const giUnitVec3& a, const giUnitVec3& b) { return a.v_ == b.v_; }
  friend bool operator!=(const giUnitVec3& a, const giUnitVec3& b) { return !(a == b); }

 private:
  giVector3 v_;
};
