#pragma once

#include <cstdint>
#include <cstdio>

#include "platform/utilities/export.h"

/// Writes little-endian values to a stream. A short write sets `error`, which stays set.
class MENDEX_EXPORT trBinWrite {
 public:
  explicit trBinWrite(std::FILE* stream) : file(stream) {}
  trBinWrite(const trBinWrite&) = delete;
  trBinWrite& operator=(const trBinWrite&) = delete;

  void write_char(char value);
  void write_ushort(std::uint16_t value);
  void write_int(std::int32_t value);
  void write_ulong(std::uint32_t value);
  void write_float(float value);
  void write_double(double value);
  /// Writes n bytes; returns non-zero when fewer were written.
  int b_write(const char* bytes, int n);

  std::FILE* file;  ///< not owned
  std::int32_t error = 0;

 private:
  template <class T>
  void write_value(T value);
};
