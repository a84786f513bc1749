#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

#include "platform/utilities/export.h"

/// Reads a KVX file front to back. Every operation returns 0 for success; once one failed, all others do.
///
/// A file that was cut short fails at its header, where the stream can tell its length. Nothing is handed out before its checksum was
/// compared, and no count is believed that the bytes of the file cannot hold.
/// Memory: that of a few thousand nodes, whatever the file declares.
class MENDEX_EXPORT vrpKVXFileRead {
 public:
  /// @param stream  not owned; open in binary mode, at the file's first byte
  explicit vrpKVXFileRead(std::FILE* stream);
  vrpKVXFileRead(const vrpKVXFileRead&) = delete;
  vrpKVXFileRead& operator=(const vrpKVXFileRead&) = delete;
  ~vrpKVXFileRead();

  /// @param text     receives the file's comment, which lives as long as the reader
  /// @param version  receives that of the format
  /// @param flags    receives 0
  int read_header(const char*& text, int& blocks, int& version, int& flags);
  /// To be called when all of the block before was read. @param normals  receives whether the nodes have normals
  int read_block(int& nodes, int& triangles, int& normals);
  /// The next node, of a block without normals and of one with.
  int read_node(double& x, double& y, double& z) {
    const double* const values = next_node();
    if (values == nullptr) return 1;
    x = values[0];
    y = values[1];
    z = values[2];
    return 0;
  }
  int read_node(double& x, double& y, double& z, double& nx, double& ny, double& nz);
  /// The next triangle; its nodes are counted from 0 in the block and are not checked.
  int read_tri(int& a, int& b, int& c) {
    const int* const corners = next_triangle();
    if (corners == nullptr) return 1;
    a = corners[0];
    b = corners[1];
    c = corners[2];
    return 0;
  }

  /// How many bytes of the stream were taken in.
  std::int64_t bytes_read() const { return bytes_read_; }

 private:
  int fail() { return has_failed_ = 1; }
  int get(void* bytes, std::size_t count);
  int get_more(std::vector<char>& bytes, std::size_t count);
  bool has_plain(std::uint32_t triangles) const;
  int read_chunk(int entries_left);
  int load_nodes();
  int load_triangles();
  // Null: failed.
  const double* next_node() {
    if (has_failed_ || nodes_left_ == 0 || (at_ == entries_ && load_nodes())) return lost<double>();
    --nodes_left_;
    return values_.data() + at_++ * static_cast<std::size_t>(values_a_node_);
  }
  const int* next_triangle() {
    if (has_failed_ || nodes_left_ != 0 || triangles_left_ == 0 || (at_ == entries_ && load_triangles())) return lost<int>();
    --triangles_left_;
    return corners_.data() + 3 * at_++;
  }
  template <class T>
  const T* lost() {
    has_failed_ = 1;
    return nullptr;
  }

  std::FILE* file_;
  std::int64_t bytes_left_ = -1;  // in the file, -1 when it cannot be told
  std::int64_t bytes_read_ = 0;
  int has_failed_ = 0;
  std::vector<char> text_;
  int blocks_left_ = 0;
  int nodes_left_ = 0;  // of the block, not handed out yet
  int triangles_left_ = 0;
  int triangles_read_ = 0;  // into chunks
  int node_count_ = 0;  // of the block
  int values_a_node_ = 3;
  std::vector<char> bytes_;     // of the chunk
  std::vector<double> values_;  // of the chunk of nodes
  std::vector<int> corners_;    // of the chunk of triangles
  std::size_t at_ = 0;          // entry of the chunk
  std::uint32_t entries_ = 0;
  std::uint32_t layout_ = 0;
};
