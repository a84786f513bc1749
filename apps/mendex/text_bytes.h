#pragma once

#include <charconv>
#include <cstring>
#include <string>

// Numbers put behind a text.

/// In the shortest digits that read back to the same value, in any locale.
template <class T>
void append_number(std::string& text, T value) {
  char digits[40];
  const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value);
  text.append(digits, end.ptr);
}

/// As bytes in the machine's own order, which is little-endian.
template <class T>
void append_raw(std::string& bytes, T value) {
  char copy[sizeof value];
  std::memcpy(copy, &value, sizeof value);
  bytes.append(copy, sizeof copy);
}
