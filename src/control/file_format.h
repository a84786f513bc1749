#pragma once

#include "control/file_type.h"

/// What the controller knows of a file format.
struct trFileFormat {
  const char* extension;  ///< without the dot

  /// By trFileType; there is none for tr_unknown_file.
  static const trFileFormat table[tr_unknown_file];
};
