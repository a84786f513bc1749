#pragma once

#include <cstdint>
#include <vector>

#include "platform/utilities/export.h"

/// A row of bits that grows when a bit beyond its end is set; bits beyond the length read clear.
class MENDEX_EXPORT ccBinaryFlags {
 public:
  ccBinaryFlags() = default;
  /// n clear bits.
  explicit ccBinaryFlags(int n) { set_length(n); }

  int length() const { return length_; }
  /// Cuts the row or extends it with clear bits; a negative n counts as 0.
  void set_length(int n);

  bool test(int i) const {
    return i >= 0 && i < length_ && ((words_[static_cast<std::size_t>(i) / 64] >> (static_cast<unsigned>(i) % 64)) & 1) != 0;
  }
  /// Sets or clears bit i; a negative i, and INT_MAX, which no length can reach, are ignored. Clearing never extends the row.
  void set(int i, bool value = true);
  void clear_all();
  /// Number of set bits.
  int count() const;

 private:
  std::vector<std::uint64_t> words_;
  int length_ = 0;
};
