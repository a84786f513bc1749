#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

#include "platform/geometry/point3.h"
#include "platform/geometry/vector3.h"
#include "platform/kvx/kvx_api.h"
#include "platform/utilities/export.h"

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
  int write_node(const giPoint3& point, vrpKVXApi25 layout);
  int write_node(const giPoint3& point, const giVector3& normal, vrpKVXApi25 layout);
  int write_tri(int a, int b, int c);
  /// Closes the last block and the file's structure.
  int write_end();

 private:
  int fail() { return has_failed_ = 1; }
  int put(const void* bytes, std::size_t count);
  int put_header(int blocks, std::int64_t length);
  int close_nodes();
  int close_triangles();
  int put_chunk(std::uint32_t layout, std::uint32_t entries, const std::vector<char>& bytes);
  bool is_in_block() const { return nodes_left_ > 0 || triangles_left_ > 0; }

  std::FILE* file_;
  int has_failed_ = 0;
  std::vector<char> comment_;
  std::int64_t header_place_ = -1;
  int blocks_ = 0;
  int nodes_left_ = 0;  // of the block, not given yet
  int triangles_left_ = 0;
  int node_count_ = 0;  // of the block
  int values_a_node_ = 3;
  std::vector<double> values_;  // of the chunk of nodes
  std::vector<int> corners_;    // of the chunk of triangles
  int first_of_chunk_ = 0;      // number of the chunk's first triangle
  std::vector<char> bytes_;     // a chunk as it is stored
};
