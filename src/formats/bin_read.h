#pragma once

#include <cstdint>
#include <cstdio>

#include "platform/utilities/export.h"

/// Reads single values of a binary file, least significant byte first.
///
/// A read that comes up short yields 0 and sets `error`, which stays set; callers test it after each value or group of values.
/// The stream is not owned.
class MENDEX_EXPORT trBinRead {
 public:
  explicit trBinRead(std::FILE* stream) : file(stream) {}
  trBinRead(const trBinRead&) = delete;
  trBinRead& operator=(const trBinRead&) = delete;

  char read_char();
  unsigned short read_ushort();
  int read_int();
  std::uint32_t read_ulong();
  float read_float();
  double read_double();
  /// Moves n bytes; non-zero when fewer came. What came is stored.
  int b_read(char* bytes, int n);

  std::FILE* file;
  int error = 0;  ///< 1 once any read came up short
};
