#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>

#include "mesh/tri_block.h"

// Readers make no node or element beyond this number, so that sums of a few numbers never overflow.
constexpr int last_entity_number = INT_MAX / 4;

inline bool has_room_for_facet(const trTriBlock& mesh) {
  return mesh.node_count() <= last_entity_number - 2 && mesh.element_count() <= last_entity_number;
}

/// Bytes from the stream's place to its end; -1 when the stream cannot tell. Its place stays as it is.
std::int64_t bytes_left(std::FILE* file);

/// Bounds the numbers that a file gives its nodes and elements: gaps between numbers cost memory. Files may leave gaps of 64 numbers for
/// each record that they can hold, and small ones number up to 2^24.
class NumberLimit {
 public:
  /// @param record_bytes  the least that a record takes in the file
  NumberLimit(std::FILE* file, int record_bytes) : left_(bytes_left(file)), record_bytes_(record_bytes) {}

  /// Whether the file may use the number.
  bool allows(int number) const { return number >= 1 && (number <= always_allowed || number <= highest()); }
  /// The same for the number of one more record, which counts for a stream without known end.
  bool allows_next(int number) {
    ++records_;
    return allows(number);
  }

 private:
  std::int64_t highest() const {
    const std::int64_t records = left_ < 0 ? records_ : std::max(records_, left_ / record_bytes_);
    return std::min<std::int64_t>(std::max<std::int64_t>(always_allowed, 64 * records), last_entity_number);
  }

  static constexpr int always_allowed = 1 << 24;

  std::int64_t left_;
  int record_bytes_;
  std::int64_t records_ = 0;
};
