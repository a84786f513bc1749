#pragma once

#include "platform/geometry/point3.h"
#include "platform/geometry/unit_vec3.h"

/// A coordinate system: an origin, which may be invalid, and three unit axes at right angles.
class giWorkplane3 {
 public:
  /// Origin invalid, axes those of the world.
  constexpr giWorkplane3() : origin_(-DBL_MAX, 0.0, 0.0) {}
  /// The y axis is made to complete a right-handed system with x and z. The z axis is kept as given; an x axis that is not at right
  /// angles to it loses its part along z, and one that lies along it is replaced by some axis across z.
  giWorkplane3(const giPoint3& origin, const giUnitVec3& x, const giUnitVec3& z)
      : origin_(origin), x_(squared(x, z)), y_(z.vector().cross(x_.vector())), z_(z) {}

  const giPoint3& origin() const { return origin_; }
  const giUnitVec3& x_axis() const { return x_; }
  const giUnitVec3& y_axis() const { return y_; }
  const giUnitVec3& z_axis() const { return z_; }

  /// World to workplane coordinates. Meaningless while the origin is invalid, like the ways back: ask first.
  giPoint3 to_work(const giPoint3& p) const {
    const giVector3 v = p - origin_;
    return giPoint3(x_.dot(v), y_.dot(v), z_.dot(v));
  }
  /// A vector only turns.
  giVector3 to_work(const giVector3& v) const { return giVector3(x_.dot(v), y_.dot(v), z_.dot(v)); }
  giPoint3 to_world(const giPoint3& p) const { return origin_ + to_world(giVector3(p.x, p.y, p.z)); }
  giVector3 to_world(const giVector3& v) const { return x_.vector() * v.x() + y_.vector() * v.y() + z_.vector() * v.z(); }

 private:
  // An x axis as good as square is kept to the last bit.
  static giUnitVec3 squared(const giUnitVec3& x, const giUnitVec3& z) {
    const double along = z.dot(x.vector());
    if (along >= -1e-15 && along <= 1e-15) return x;
    const giUnitVec3 y(z.vector().cross(x.vector()));
    return y.vector().length_sq() == 0.0 ? z.across() : giUnitVec3(y.vector().cross(z.vector()));
  }

  giPoint3 origin_;
  giUnitVec3 x_{gi_x_axis};
  giUnitVec3 y_{gi_y_axis};
  giUnitVec3 z_{gi_z_axis};
};
