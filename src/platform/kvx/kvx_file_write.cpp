#include "platform/kvx/kvx_file_write.h"

#include <sys/types.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/kvx/kvx_layout.h"

namespace {

template <class T>
void append(std::vector<char>& bytes, T value) {
  const std::size_t at = bytes.size();
  bytes.resize(at + sizeof value);
  std::memcpy(bytes.data() + at, &value, sizeof value);
}

// Whether the value survives single precision to the bit. What is not a number keeps its payload in double precision only, and values
// beyond the range of float must not be converted at all.
bool fits_single(double value) {
  if (std::isinf(value)) return true;
  if (!(std::fabs(value) <= double{std::numeric_limits<float>::max()})) return false;
  const double back = static_cast<double>(static_cast<float>(value));
  return std::memcmp(&back, &value, sizeof value) == 0;
}

}  // namespace

vrpKVXFileWrite::vrpKVXFileWrite(std::FILE* stream, int) : file_(stream) {}

vrpKVXFileWrite::~vrpKVXFileWrite() = default;

int vrpKVXFileWrite::put(const void* bytes, std::size_t count) {
  if (has_failed_ || file_ == nullptr || std::fwrite(bytes, 1, count, file_) != count) return fail();
  return 0;
}

// The header is written twice: at first with the mark of an unfinished file, at the end with the number of blocks and the file's length.
int vrpKVXFileWrite::put_header(int blocks, std::int64_t length) {
  std::vector<char> bytes(kvx::magic, kvx::magic + kvx::magic_bytes);
  bytes.push_back(static_cast<char>(kvx::version));
  append(bytes, static_cast<std::uint32_t>(comment_.size()));
  bytes.insert(bytes.end(), comment_.begin(), comment_.end());
  append(bytes, blocks);
  append(bytes, 0);  // flags, none so far
  append(bytes, length);
  append(bytes, kvx::checksum_of(bytes.data(), bytes.size()));
  return put(bytes.data(), bytes.size());
}

int vrpKVXFileWrite::write_header(const char* comment) {
  if (has_failed_ || file_ == nullptr || header_place_ >= 0) return fail();
  if (comment != nullptr) comment_.assign(comment, comment + std::min<std::size_t>(std::strlen(comment), kvx::longest_text));
  header_place_ = ftello(file_);
  return header_place_ < 0 ? fail() : put_header(kvx::unfinished, 0);
}

int vrpKVXFileWrite::new_block(int nodes, int triangles, int normals) {
  if (has_failed_ || header_place_ < 0 || is_in_block() || nodes < 0 || triangles < 0) return fail();
  const std::uint32_t head[3] = {static_cast<std::uint32_t>(nodes), static_cast<std::uint32_t>(triangles), normals != 0};
  const std::uint32_t checksum = kvx::checksum_of(head, sizeof head);
  nodes_left_ = node_count_ = nodes;
  triangles_left_ = triangles;
  values_a_node_ = normals ? 6 : 3;
  first_of_chunk_ = 0;
  ++blocks_;
  return put(kvx::block_tag, kvx::tag_bytes) || put(head, sizeof head) || put(&checksum, sizeof checksum);
}

int vrpKVXFileWrite::write_node(const giPoint3& point, vrpKVXApi25 layout) {
  if (values_a_node_ == 6) return write_node(point, giVector3(), layout);
  if (has_failed_ || nodes_left_ == 0) return fail();
  --nodes_left_;
  values_.insert(values_.end(), {point.x, point.y, point.z});
  return nodes_left_ == 0 || values_.size() == 3u * kvx::entries_a_chunk ? close_nodes() : 0;
}

int vrpKVXFileWrite::write_node(const giPoint3& point, const giVector3& normal, vrpKVXApi25) {
  if (has_failed_ || nodes_left_ == 0 || values_a_node_ != 6) return fail();
  --nodes_left_;
  values_.insert(values_.end(), {point.x, point.y, point.z, normal.x(), normal.y(), normal.z()});
  return nodes_left_ == 0 || values_.size() == 6u * kvx::entries_a_chunk ? close_nodes() : 0;
}

int vrpKVXFileWrite::close_nodes() {
  const bool is_single = std::all_of(values_.begin(), values_.end(), fits_single);
  bytes_.clear();
  for (const double value : values_) is_single ? append(bytes_, static_cast<float>(value)) : append(bytes_, value);
  const std::uint32_t entries = static_cast<std::uint32_t>(values_.size()) / static_cast<std::uint32_t>(values_a_node_);
  values_.clear();
  const auto layout = is_single ? kvx::ChunkLayout::single_nodes : kvx::ChunkLayout::double_nodes;
  return put_chunk(static_cast<std::uint32_t>(layout), entries, bytes_);
}

int vrpKVXFileWrite::write_tri(int a, int b, int c) {
  if (has_failed_ || nodes_left_ != 0 || triangles_left_ == 0) return fail();
  for (const int node : {a, b, c}) {
    if (node < 0 || node >= node_count_) return fail();
  }
  --triangles_left_;
  corners_.insert(corners_.end(), {a, b, c});
  return triangles_left_ == 0 || corners_.size() == 3u * kvx::entries_a_chunk ? close_triangles() : 0;
}

int vrpKVXFileWrite::close_triangles() {
  bool is_plain = true;
  const std::int64_t first_corner = 3 * std::int64_t{first_of_chunk_};
  for (std::size_t k = 0; k < corners_.size(); ++k) is_plain = is_plain && corners_[k] == first_corner + static_cast<std::int64_t>(k);
  bytes_.clear();
  if (!is_plain) {
    for (const int corner : corners_) append(bytes_, corner);
  }
  const std::uint32_t entries = static_cast<std::uint32_t>(corners_.size() / 3);
  corners_.clear();
  first_of_chunk_ += static_cast<int>(entries);
  const auto layout = is_plain ? kvx::ChunkLayout::plain_triangles : kvx::ChunkLayout::listed_triangles;
  return put_chunk(static_cast<std::uint32_t>(layout), entries, bytes_);
}

int vrpKVXFileWrite::put_chunk(std::uint32_t layout, std::uint32_t entries, const std::vector<char>& bytes) {
  kvx::ChunkHead head{layout, entries, 0};
  head.checksum = kvx::chunk_checksum(head, bytes);
  return put(&head, sizeof head) || put(bytes.data(), bytes.size());
}

int vrpKVXFileWrite::write_end() {
  if (has_failed_ || header_place_ < 0 || is_in_block()) return fail();
  const off_t end = ftello(file_);
  if (end < 0 || fseeko(file_, header_place_, SEEK_SET) != 0) return fail();
  if (put_header(blocks_, end - header_place_) || fseeko(file_, end, SEEK_SET) != 0) return fail();
  header_place_ = -1;
  return std::fflush(file_) == 0 ? 0 : fail();
}
