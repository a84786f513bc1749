#pragma once

#include "platform/utilities/export.h"

/// How far automatic stitching goes.
enum trAutoMode {
  Single = 1,  ///< one pass at one tolerance
  Repeat = 2,  ///< several passes at one tolerance
  Multi = 3    ///< several passes at each of a range of tolerances
};

/// "Single", "Repeat" or "Multi"; null for any other value.
MENDEX_EXPORT const char* tr_automode_string(trAutoMode mode);
