#include "platform/kvx/kvx_file_read.h"

#include <sys/types.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <numeric>

#include "platform/kvx/kvx_layout.h"

namespace {

using kvx::ChunkLayout;

std::int64_t bytes_to_end(std::FILE* file) {
  if (file == nullptr) return 0;
  const off_t here = ftello(file);
  if (here < 0 || fseeko(file, 0, SEEK_END) != 0) return -1;
  const off_t end = ftello(file);
  return fseeko(file, here, SEEK_SET) != 0 || end < here ? -1 : end - here;
}

bool is_nodes(std::uint32_t layout) {
  return layout == static_cast<std::uint32_t>(ChunkLayout::single_nodes) || layout == static_cast<std::uint32_t>(ChunkLayout::double_nodes);
}

bool is_triangles(std::uint32_t layout) {
  return layout == static_cast<std::uint32_t>(ChunkLayout::plain_triangles) ||
         layout == static_cast<std::uint32_t>(ChunkLayout::listed_triangles);
}

}  // namespace

vrpKVXFileRead::vrpKVXFileRead(std::FILE* stream) : file_(stream), bytes_left_(bytes_to_end(stream)) {}

vrpKVXFileRead::~vrpKVXFileRead() = default;

int vrpKVXFileRead::get(void* bytes, std::size_t count) {
  if (has_failed_ || file_ == nullptr) return fail();
  const std::size_t got = std::fread(bytes, 1, count, file_);
  bytes_read_ += static_cast<std::int64_t>(got);
  if (got != count) return fail();
  if (bytes_left_ >= 0) bytes_left_ -= static_cast<std::int64_t>(count);
  return 0;
}

// Reads on and keeps what was read behind what is there.
int vrpKVXFileRead::get_more(std::vector<char>& bytes, std::size_t count) {
  const std::size_t at = bytes.size();
  bytes.resize(at + count);
  return get(bytes.data() + at, count);
}

int vrpKVXFileRead::read_header(const char*& text, int& blocks, int& version, int& flags) {
  const std::int64_t file_bytes = bytes_left_;
  std::vector<char> bytes;
  std::uint32_t text_bytes = 0;
  if (get_more(bytes, kvx::magic_bytes + 1 + sizeof text_bytes)) return fail();
  if (std::memcmp(bytes.data(), kvx::magic, kvx::magic_bytes) != 0 || bytes[kvx::magic_bytes] != kvx::version) return fail();
  const std::size_t text_at = bytes.size();
  std::memcpy(&text_bytes, bytes.data() + kvx::magic_bytes + 1, sizeof text_bytes);
  if (text_bytes > kvx::longest_text) return fail();
  int counts[2] = {0, 0};
  std::int64_t length = 0;
  std::uint32_t checksum = 0;
  if (get_more(bytes, text_bytes + sizeof counts + sizeof length) || get(&checksum, sizeof checksum)) return fail();
  if (kvx::checksum_of(bytes.data(), bytes.size()) != checksum) return fail();
  std::memcpy(counts, bytes.data() + text_at + text_bytes, sizeof counts);
  std::memcpy(&length, bytes.data() + text_at + text_bytes + sizeof counts, sizeof length);
  if (counts[0] < 0 || (file_bytes >= 0 && length > file_bytes)) return fail();
  text_.assign(bytes.data() + text_at, bytes.data() + text_at + text_bytes);
  text_.push_back('\0');
  text = text_.data();
  blocks = blocks_left_ = counts[0];
  version = kvx::version;
  flags = counts[1];
  return 0;
}

int vrpKVXFileRead::read_block(int& nodes, int& triangles, int& normals) {
  char tag[kvx::tag_bytes];
  std::uint32_t head[3];
  std::uint32_t checksum = 0;
  if (blocks_left_ == 0 || nodes_left_ != 0 || triangles_left_ != 0) return fail();
  if (get(tag, sizeof tag) || get(head, sizeof head) || get(&checksum, sizeof checksum)) return fail();
  if (std::memcmp(tag, kvx::block_tag, kvx::tag_bytes) != 0 || kvx::checksum_of(head, sizeof head) != checksum) return fail();
  if (head[0] > INT_MAX || head[1] > INT_MAX || head[2] > 1) return fail();
  values_a_node_ = head[2] ? 6 : 3;
  // A node takes 12 bytes or more; a triangle takes 12, or none where it has three nodes of its own.
  const std::int64_t least = std::int64_t{head[0]} * 4 * values_a_node_ + std::max<std::int64_t>(0, std::int64_t{head[1]} - head[0] / 3) * 12;
  if (bytes_left_ >= 0 && least > bytes_left_) return fail();
  --blocks_left_;
  nodes = node_count_ = nodes_left_ = static_cast<int>(head[0]);
  triangles = triangles_left_ = static_cast<int>(head[1]);
  normals = static_cast<int>(head[2]);
  triangles_read_ = 0;
  entries_ = 0;
  at_ = 0;
  return 0;
}

// Whether the block has the nodes that so many more plain triangles name.
bool vrpKVXFileRead::has_plain(std::uint32_t triangles) const {
  return 3 * (std::int64_t{triangles_read_} + triangles) <= node_count_;
}

int vrpKVXFileRead::read_chunk(int entries_left) {
  kvx::ChunkHead head;
  if (get(&head, sizeof head)) return fail();
  if (head.entries == 0 || head.entries > kvx::entries_a_chunk || head.entries > static_cast<std::uint32_t>(entries_left)) return fail();
  std::size_t entry_bytes = 0;
  switch (static_cast<ChunkLayout>(head.layout)) {
    case ChunkLayout::single_nodes: entry_bytes = sizeof(float) * static_cast<std::size_t>(values_a_node_); break;
    case ChunkLayout::double_nodes: entry_bytes = sizeof(double) * static_cast<std::size_t>(values_a_node_); break;
    case ChunkLayout::listed_triangles: entry_bytes = 3 * sizeof(int); break;
    case ChunkLayout::plain_triangles:
      if (!has_plain(head.entries)) return fail();
      break;
    default: return fail();
  }
  bytes_.resize(head.entries * entry_bytes);
  if (get(bytes_.data(), bytes_.size()) || kvx::chunk_checksum(head, bytes_) != head.checksum) return fail();
  layout_ = head.layout;
  entries_ = head.entries;
  at_ = 0;
  return 0;
}

int vrpKVXFileRead::load_nodes() {
  if (read_chunk(nodes_left_) || !is_nodes(layout_)) return fail();
  const std::size_t count = std::size_t{entries_} * static_cast<std::size_t>(values_a_node_);
  values_.resize(count);
  if (static_cast<ChunkLayout>(layout_) == ChunkLayout::double_nodes) {
    std::memcpy(values_.data(), bytes_.data(), count * sizeof(double));
    return 0;
  }
  const char* const bytes = bytes_.data();
  double* const values = values_.data();
  for (std::size_t k = 0; k < count; ++k) {
    float value = 0;
    std::memcpy(&value, bytes + k * sizeof value, sizeof value);
    values[k] = double{value};
  }
  return 0;
}

int vrpKVXFileRead::load_triangles() {
  if (read_chunk(triangles_left_) || !is_triangles(layout_)) return fail();
  corners_.resize(3 * std::size_t{entries_});
  if (static_cast<ChunkLayout>(layout_) == ChunkLayout::listed_triangles) {
    std::memcpy(corners_.data(), bytes_.data(), bytes_.size());
  } else {
    std::iota(corners_.begin(), corners_.end(), 3 * triangles_read_);
  }
  triangles_read_ += static_cast<int>(entries_);
  return 0;
}

int vrpKVXFileRead::read_node(double& x, double& y, double& z, double& nx, double& ny, double& nz) {
  const double* const values = values_a_node_ == 6 ? next_node() : lost<double>();
  if (values == nullptr) return 1;
  x = values[0];
  y = values[1];
  z = values[2];
  nx = values[3];
  ny = values[4];
  nz = values[5];
  return 0;
}
