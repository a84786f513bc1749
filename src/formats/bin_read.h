#pragma once

#include <cstdint>
#include <cstdio>

#include "platform/utilities/export.h"

/// Reads little-endian values from a stream. A short read yields 0 and sets `error`, which stays set.
class MENDEX_EXPORT trBinRead {
 public:
  explicit trBinRead(std::FILE* stream) : file(stream) {}
  trBinRead(const trBinRead&) = delete;
  trBinRead& operator=(const trBinRead&) = delete;

  char read_char();
  std::uint16_t read_ushort();
  std::int32_t read_int();
  std::uint32_t read_ulong();
  float read_float();
  double read_double();
  /// Reads n bytes; returns non-zero when there were fewer.
  int b_read(char* bytes, int n);

  std::FILE* file;  ///< not owned
  std::int32_t error = 0;

 private:
  template <class T>
  T read_value();
};
