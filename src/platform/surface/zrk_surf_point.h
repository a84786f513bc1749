#pragma once

#include "platform/geometry/point3.h"
#include "platform/geometry/unit_vec3.h"
#include "platform/surface/zrk_uv.h"

/// A point of a surface with the derivatives of the position there.
struct zrkSurfPoint {
  zrkUV uv;
  giPoint3 position;
  giVector3 du;
  giVector3 dv;
  giVector3 duu;
  giVector3 duv;
  giVector3 dvv;

  giUnitVec3 normal() const { return giUnitVec3(giUnitVec3(du).vector().cross(giUnitVec3(dv).vector())); }
};
