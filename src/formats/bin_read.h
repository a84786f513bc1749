#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

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

  /// Tells that the next `bytes` bytes of the stream are for this object, which then fetches them in larger pieces.
  void expect(std::int64_t bytes) { expected_ = bytes > 0 ? bytes : 0; }
  /// Reads up to n bytes and returns how many there were; sets `error` when there were fewer.
  int read_bytes(char* bytes, int n) {
    const auto count = static_cast<std::size_t>(n);
    const char* const from = ahead(0, count);
    if (n < 0 || from == nullptr) return read_on(bytes, n);
    std::memcpy(bytes, from, count);
    at_ += count;
    passed_ += n;
    return n;
  }
  /// The `count` bytes that follow behind the next `offset` ones; null where they were not fetched yet.
  const char* ahead(std::size_t offset, std::size_t count) const {
    return at_ + offset + count <= fetched_.size() ? fetched_.data() + at_ + offset : nullptr;
  }
  /// How many bytes were handed out.
  std::int64_t passed() const { return passed_; }

  std::FILE* file;  ///< not owned
  std::int32_t error = 0;

 private:
  template <class T>
  T read_value();
  void fetch();
  int read_on(char* bytes, int n);

  std::int64_t passed_ = 0;
  std::int64_t expected_ = 0;  // bytes that may be fetched ahead
  std::vector<char> fetched_;
  std::size_t at_ = 0;  // in what was fetched
};
