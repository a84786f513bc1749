#pragma once

#include "platform/common/workplane.h"

/// Workplanes that everyone shares.
class MENDEX_EXPORT ccWorkplaneList {
 public:
  /// Stands for no workplane: its origin is invalid. Usable from a host's global objects, before and after main.
  static const ccWorkplane& g_invalid_workplane;
};
