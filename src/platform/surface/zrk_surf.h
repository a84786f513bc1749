#pragma once

#include <memory>

#include "platform/geometry/point3.h"
#include "platform/utilities/export.h"

/// A surface that new nodes can be placed on.
class MENDEX_EXPORT zrkSurf {
 public:
  virtual ~zrkSurf();
  /// q = the point of the surface closest to p; 0 for success.
  virtual int closest_point(const giPoint3& p, giPoint3& q) const = 0;
  /// q = where the line through p along `direction` meets the surface nearest to p; 0 for success.
  virtual int project(const giPoint3& p, const giVector3& direction, giPoint3& q) const = 0;
};

using zrkSurfPtr = std::shared_ptr<zrkSurf>;
