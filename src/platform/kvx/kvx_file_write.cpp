#include "platform/kvx/kvx_file_write.h"

#include <sys/types.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
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
  const double size = std::fabs(value);
  const double in_range = size <= double{std::numeric_limits<float>::max()} ? value : 0.0;
  return static_cast<double>(static_cast<float>(in_range)) == value || size == std::numeric_limits<double>::infinity();
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
  values_.resize((normals ? 6 : 3) * chunk_entries);
  corners_.resize(3 * chunk_entries);
  nodes_left_ = node_count_ = nodes;
  triangles_left_ = triangles;
  values_a_node_ = normals ? 6 : 3;
  first_of_chunk_ = 0;
  ++blocks_;
  return put(kvx::block_tag, kvx::tag_bytes) || put(head, sizeof head) || put(&checksum, sizeof checksum);
}

int vrpKVXFileWrite::write_node(const giPoint3& point, const giVector3& normal, vrpKVXApi25) {
  if (has_failed_ || nodes_left_ == 0 || values_a_node_ != 6) return fail();
  const double values[] = {point.x, point.y, point.z, normal.x(), normal.y(), normal.z()};
  std::copy(std::begin(values), std::end(values), values_.data() + 6 * entries_++);
  return --nodes_left_ == 0 || entries_ == chunk_entries ? close_nodes() : 0;
}

int vrpKVXFileWrite::close_nodes() {
  const std::size_t count = entries_ * static_cast<std::size_t>(values_a_node_);
  const double* const values = values_.data();
  bool is_single = true;
  for (std::size_t k = 0; k < count; ++k) is_single &= fits_single(values[k]);
  if (!is_single) {
    bytes_.resize(count * sizeof(double));
    std::memcpy(bytes_.data(), values, bytes_.size());
    return put_chunk(kvx::ChunkLayout::double_nodes);
  }
  bytes_.resize(count * sizeof(float));
  char* const bytes = bytes_.data();
  for (std::size_t k = 0; k < count; ++k) {
    const auto single = static_cast<float>(values[k]);
    std::memcpy(bytes + k * sizeof single, &single, sizeof single);
  }
  return put_chunk(kvx::ChunkLayout::single_nodes);
}

int vrpKVXFileWrite::close_triangles() {
  const std::size_t count = 3 * entries_;
  const int* const corners = corners_.data();
  const std::int64_t first_corner = 3 * std::int64_t{first_of_chunk_};
  bool is_plain = true;
  for (std::size_t k = 0; k < count; ++k) is_plain &= corners[k] == first_corner + static_cast<std::int64_t>(k);
  first_of_chunk_ += static_cast<int>(entries_);
  bytes_.resize(is_plain ? 0 : count * sizeof(int));
  if (!is_plain) std::memcpy(bytes_.data(), corners, bytes_.size());
  return put_chunk(is_plain ? kvx::ChunkLayout::plain_triangles : kvx::ChunkLayout::listed_triangles);
}

int vrpKVXFileWrite::put_chunk(kvx::ChunkLayout layout) {
  static_assert(chunk_entries == kvx::entries_a_chunk, "readers refuse larger chunks");
  kvx::ChunkHead head{static_cast<std::uint32_t>(layout), static_cast<std::uint32_t>(entries_), 0};
  head.checksum = kvx::chunk_checksum(head, bytes_);
  entries_ = 0;
  return put(&head, sizeof head) || put(bytes_.data(), bytes_.size());
}

int vrpKVXFileWrite::write_end() {
  if (has_failed_ || header_place_ < 0 || is_in_block()) return fail();
  const off_t end = ftello(file_);
  if (end < 0 || fseeko(file_, header_place_, SEEK_SET) != 0) return fail();
  if (put_header(blocks_, end - header_place_) || fseeko(file_, end, SEEK_SET) != 0) return fail();
  header_place_ = -1;
  return std::fflush(file_) == 0 ? 0 : fail();
}
