#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// What reader and writer of KVX files agree on; docs/formats.md has the layout byte by byte. All values are little-endian.

namespace kvx {

constexpr char magic[] = "KVX\r\n\x1a\n";  // seven bytes, the version follows as the eighth
constexpr int magic_bytes = 7;
constexpr int version = 1;
constexpr int longest_text = 4096;
constexpr int unfinished = -1;  // block count of a file whose writer did not come to its end

constexpr char block_tag[] = "BLOK";
constexpr int tag_bytes = 4;
constexpr int entries_a_chunk = 4096;

// How the entries of a chunk are stored.
enum class ChunkLayout : std::uint32_t {
  single_nodes = 1,   // three floats, and three for the normal where the block has normals
  double_nodes = 2,   // the same as doubles
  plain_triangles = 3,  // nothing: triangle k of the block names the nodes 3k, 3k + 1, 3k + 2
  listed_triangles = 4,  // three node numbers, from 0
};

struct ChunkHead {
  std::uint32_t layout = 0;
  std::uint32_t entries = 0;
  std::uint32_t checksum = 0;  // of the chunk's entries
};

/// Sum of the bytes that tells every changed word and every exchange of two.
class Checksum {
 public:
  void add(const char* bytes, std::size_t count) {
    for (; count >= sizeof(std::uint32_t); bytes += sizeof(std::uint32_t), count -= sizeof(std::uint32_t)) {
      std::uint32_t word = 0;
      std::memcpy(&word, bytes, sizeof word);
      add_word(word);
    }
    std::uint32_t rest = 0;
    std::memcpy(&rest, bytes, count);
    if (count != 0) add_word(rest);
  }
  std::uint32_t value() const {
    const std::uint64_t mixed = (sum_ ^ (sum_of_sums_ << 1) ^ (sum_of_sums_ >> 63)) * 0x9e3779b97f4a7c15u;
    return static_cast<std::uint32_t>(mixed >> 32);
  }

 private:
  void add_word(std::uint32_t word) {
    sum_ += word;
    sum_of_sums_ += sum_;
  }

  std::uint64_t sum_ = 1;
  std::uint64_t sum_of_sums_ = 0;
};

inline std::uint32_t checksum_of(const char* bytes, std::size_t count) {
  Checksum sum;
  sum.add(bytes, count);
  return sum.value();
}

}  // namespace kvx
