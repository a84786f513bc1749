#include "formats/line_stream.h"

#include <climits>
#include <cstdint>
#include <cstring>

#include "formats/number_scan.h"

bool LineStream::next() {
  const std::size_t seen = in_.look_ahead(most_characters);
  if (seen == 0) return false;
  const std::size_t most = seen < most_characters ? seen : most_characters;
  const void* const line_end = std::memchr(in_.begin(), '\n', most);
  const std::size_t length = line_end == nullptr ? most : static_cast<std::size_t>(static_cast<const char*>(line_end) - in_.begin()) + 1;
  is_cut_ = line_end == nullptr;
  std::memcpy(line_, in_.begin(), length);
  in_.skip(length);
  const void* const zero = std::memchr(line_, '\0', length);
  length_ = zero == nullptr ? length : static_cast<std::size_t>(static_cast<const char*>(zero) - line_);
  return true;
}

bool LineStream::next_whole() {
  if (!next()) return false;
  while (is_cut_) {
    const std::size_t seen = in_.look_ahead(1);
    if (seen == 0) break;
    const void* const line_end = std::memchr(in_.begin(), '\n', seen);
    is_cut_ = line_end == nullptr;
    in_.skip(is_cut_ ? seen : static_cast<std::size_t>(static_cast<const char*>(line_end) - in_.begin()) + 1);
  }
  return true;
}

LineScan& LineScan::integer(int& value) {
  if (has_failed_) return *this;
  skip_space(in_);
  const bool is_negative = in_.peek() == '-';
  if (is_negative || in_.peek() == '+') in_.skip(1);
  std::int64_t magnitude = 0;
  int digits = 0;
  for (; in_.peek() >= '0' && in_.peek() <= '9'; in_.skip(1), ++digits) {
    if (magnitude <= INT_MAX) magnitude = 10 * magnitude + (in_.peek() - '0');
  }
  has_failed_ = digits == 0;
  if (has_failed_) return *this;
  const std::int64_t limited = magnitude > INT_MAX ? std::int64_t{INT_MAX} + (is_negative ? 1 : 0) : magnitude;
  value = static_cast<int>(is_negative ? -limited : limited);
  ++count_;
  return *this;
}

LineScan& LineScan::real(double& value) {
  if (has_failed_) return *this;
  has_failed_ = !scan_number(in_, value);
  count_ += !has_failed_;
  return *this;
}
