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
  int read_node(double& x, double& y, double& z);
  int read_node(double& x, double& y, double& z, double& nx, double& ny, double& nz);
  /// The next triangle; its nodes are counted from 0 in the block and are not checked.
  int read_tri(int& a, int& b, int& c);

  /// How many bytes of the stream were taken in.
  std::int64_t bytes_read() const { return bytes_read_; }

 private:
  int fail() { return has_failed_ = 1; }
  int get(void* bytes, std::size_t count);
  int get_more(std::vector<char>& bytes, std::size_t count);
  bool has_plain(std::uint32_t triangles) const;
  int read_chunk(int entries_left);
  int load_nodes(std::uint32_t layout);
  int next_node(const double*& values);

  std::FILE* file_;
  std::int64_t bytes_left_ = -1;  // in the file, -1 when it cannot be told
  std::int64_t bytes_read_ = 0;
  int has_failed_ = 0;
  std::vector<char> text_;
  int blocks_left_ = 0;
  int nodes_left_ = 0;  // of the block, not handed out yet
  int triangles_left_ = 0;
  int triangles_read_ = 0;
  int node_count_ = 0;  // of the block
  int values_a_node_ = 3;
  std::vector<char> bytes_;     // of the chunk
  std::vector<double> values_;  // of the chunk of nodes
  std::size_t at_ = 0;          // entry of the chunk
  std::uint32_t entries_ = 0;
  std::uint32_t layout_ = 0;
};
