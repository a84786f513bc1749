#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// What reader and writer of KVX files agree on; docs/formats.md has the layout byte by byte. All values are little-endian.

namespace kvx {

constexpr char magic[] = "KVX\r\n\x1a\n";  // seven bytes, the version follows as the eighth
constexpr int magic_bytes = 7;
constexpr int version = 1;
constexpr int longest_text = 4096;
constexpr int unfinished = -1;  // block count of a file whose writer did not come to its end; its length is 0

constexpr char block_tag[] = "BLOK";
constexpr int tag_bytes = 4;
constexpr int entries_a_chunk = 4096;

// How the entries of a chunk are stored.
enum class ChunkLayout : std::uint32_t {
  single_nodes = 1,      // three floats, and three for the normal where the block has normals
  double_nodes = 2,      // the same as doubles
  plain_triangles = 3,   // nothing: triangle k of the block names its nodes 3k, 3k + 1, 3k + 2
  listed_triangles = 4,  // three node numbers, from 0
};

struct ChunkHead {
  std::uint32_t layout = 0;
  std::uint32_t entries = 0;
  std::uint32_t checksum = 0;  // of layout, number and entries
};

/// CRC-32 as in zip and PNG files (polynomial 0x04C11DB7, reflected, all bits inverted before and after): tells every damage that lies
/// within 32 successive bits, and misses one in four thousand million others. `before` is the checksum of what stands before the bytes.
std::uint32_t checksum_of(const void* bytes, std::size_t count, std::uint32_t before = 0);

/// The checksum of a chunk with that head and those entries.
inline std::uint32_t chunk_checksum(const ChunkHead& head, const std::vector<char>& entries) {
  const std::uint32_t fields[] = {head.layout, head.entries};
  return checksum_of(entries.data(), entries.size(), checksum_of(fields, sizeof fields));
}

}  // namespace kvx
