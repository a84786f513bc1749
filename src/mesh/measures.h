#pragma once

#include "platform/geometry/point3.h"
#include "platform/geometry/vector3.h"
#include "platform/utilities/export.h"

/// Full-length normal n = a x b + b x c + c x a of the triangle and its squared length, which is four times the squared area.
MENDEX_EXPORT double tr_area_tri_sq(const giPoint3& a, const giPoint3& b, const giPoint3& c, giVector3& n);

/// Unit normal of the triangle, by the right-hand rule.
///
/// n = (b - a) x (c - b). When its length is greater than tol it is made a unit vector and 1 is returned; otherwise n keeps the raw
/// cross vector and 0 is returned.
inline int tr_compute_normal(const giPoint3& a, const giPoint3& b, const giPoint3& c, double tol, giVector3& n) {
  n = (b - a).cross(c - b);
  if (!(n.length() > tol)) return 0;
  n.make_unit();
  return 1;
}
