#include "platform/common/binary_flags.h"

#include <algorithm>
#include <climits>

void ccBinaryFlags::set_length(int n) {
  length_ = std::max(n, 0);
  const unsigned used = static_cast<unsigned>(length_) % 64;
  words_.resize((static_cast<std::size_t>(length_) + 63) / 64, 0);
  if (used != 0) words_.back() &= (std::uint64_t{1} << used) - 1;
}

void ccBinaryFlags::set(int i, bool value) {
  if (i < 0 || i == INT_MAX || (!value && i >= length_)) return;
  if (i >= length_) set_length(i + 1);
  const std::uint64_t bit = std::uint64_t{1} << (static_cast<unsigned>(i) % 64);
  std::uint64_t& word = words_[static_cast<std::size_t>(i) / 64];
  word = value ? word | bit : word & ~bit;
}

void ccBinaryFlags::clear_all() { std::fill(words_.begin(), words_.end(), 0); }

int ccBinaryFlags::count() const {
  int n = 0;
  for (std::uint64_t word : words_) {
    for (; word != 0; word &= word - 1) ++n;
  }
  return n;
}
