#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "platform/geometry/point3.h"
#include "platform/geometry/vector3.h"
#include "platform/kvx/kvx_api.h"
#include "platform/utilities/export.h"

namespace kvx {
enum class ChunkLayout : std::uint32_t;
}

/// Writes a KVX file: a header, then blocks of nodes and of triangles that name the block's nodes from 0.
///
/// Each block takes exactly the nodes and triangles that it announced, nodes first. The file is no KVX file before `write_end`, which
/// needs a stream that can seek. Every operation returns 0 for success; once one failed, all others do.
/// Memory: that of a few thousand nodes, whatever the size of the file.
class MENDEX_EXPORT vrpKVXFileWrite {
 public:
  /// @param stream  not owned; open in binary mode
  /// @param flags   reserved, 0
  vrpKVXFileWrite(std::FILE* stream, int flags);
  vrpKVXFileWrite(const vrpKVXFileWrite&) = delete;
  vrpKVXFileWrite& operator=(const vrpKVXFileWrite&) = delete;
  ~vrpKVXFileWrite();

  /// @param comment  at most 4096 bytes are kept
  int write_header(const char* comment);
  /// @param normals  non-zero: every node has a normal
  int new_block(int nodes, int triangles, int normals);
  int write_node(const giPoint3& point, vrpKVXApi25 layout) {
    if (values_a_node_ == 6) return write_node(point, giVector3(), layout);
    if (has_failed_ || nodes_left_ == 0) return fail();
    double* const values = values_.data() + 3 * entries_++;
    values[0] = point.x;
    values[1] = point.y;
    values[2] = point.z;
    return --nodes_left_ == 0 || entries_ == chunk_entries ? close_nodes() : 0;
  }
  int write_node(const giPoint3& point, const giVector3& normal, vrpKVXApi25 layout);
  int write_tri(int a, int b, int c) {
    if (has_failed_ || nodes_left_ != 0 || triangles_left_ == 0 || !is_node(a) || !is_node(b) || !is_node(c)) return fail();
    int* const corners = corners_.data() + 3 * entries_++;
    corners[0] = a;
    corners[1] = b;
    corners[2] = c;
    return --triangles_left_ == 0 || entries_ == chunk_entries ? close_triangles() : 0;
  }
  /// Closes the last block and the file's structure.
  int write_end();

 private:
  int fail() { return has_failed_ = 1; }
  int put(const void* bytes, std::size_t count);
  int put_header(int blocks, std::int64_t length);
  int close_nodes();
  int close_triangles();
  int put_chunk(kvx::ChunkLayout layout);
  bool is_node(int n) const { return n >= 0 && n < node_count_; }
  bool is_in_block() const { return nodes_left_ > 0 || triangles_left_ > 0; }

  static constexpr std::size_t chunk_entries = 4096;

  std::FILE* file_;
  int has_failed_ = 0;
  std::vector<char> comment_;
  std::int64_t header_place_ = -1;
  int blocks_ = 0;
  int nodes_left_ = 0;  // of the block, not given yet
  int triangles_left_ = 0;
  int node_count_ = 0;  // of the block
  int values_a_node_ = 3;
  std::size_t entries_ = 0;     // of the chunk so far
  std::vector<double> values_;  // room for a chunk of nodes
  std::vector<int> corners_;    // room for a chunk of triangles
  int first_of_chunk_ = 0;      // number of the chunk's first triangle
  std::vector<char> bytes_;     // a chunk as it is stored
};
