#pragma once

#include <cstdint>
#include <cstdio>

#include "platform/utilities/export.h"

/// Writes single values of a binary file, least significant byte first.
///
/// A write that comes up short sets `error`, which stays set; callers test it after each value or group of values. As the stream is
/// buffered, a full disk shows when the buffer is emptied, not always at the value that found no room. The stream is not owned.
class MENDEX_EXPORT trBinWrite {
 public:
  explicit trBinWrite(std::FILE* stream) : file(stream) {}
  trBinWrite(const trBinWrite&) = delete;
  trBinWrite& operator=(const trBinWrite&) = delete;

  void write_char(char value);
  void write_ushort(unsigned short value);
  void write_int(int value);
  void write_ulong(std::uint32_t value);
  void write_float(float value);
  void write_double(double value);
  /// Moves n bytes; non-zero when fewer went.
  int b_write(const char* bytes, int n);

  std::FILE* file;
  int error = 0;  ///< 1 once any write came up short

 private:
  template <int size>
  void write_bytes(const unsigned char (&bytes)[size]) {
    b_write(reinterpret_cast<const char*>(bytes), size);
  }
};
