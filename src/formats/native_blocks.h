#pragma once

#include <cstdint>
#include <functional>
#include <utility>

class trBinRead;
class trTriBlock;

/// The version of a native file, from the first two runs of digits in its header; numbers beyond any that matters are cut.
struct NativeVersion {
  int major = 0;
  int minor = 0;

  bool has_blocks() const { return major != 0 || minor != 0; }
  /// From version 1.3 on a reader passes over blocks that it does not know.
  bool allows_unknown_blocks() const { return major > 1 || (major == 1 && minor >= 3); }
};
NativeVersion native_version_of(const char* header);

/// Reads the tagged blocks behind the elements of a native file: node attributes, colours, texts.
class NativeBlocks {
 public:
  /// @param set_node_data_size  reconciles the mesh's attributes with those of the file; returns how many the mesh then has
  NativeBlocks(trTriBlock& mesh, trBinRead& in, NativeVersion version, std::function<int(int)> set_node_data_size)
      : mesh_(mesh), in_(in), version_(version), set_node_data_size_(std::move(set_node_data_size)) {}

  /// Reads up to the terminator, or to where the file is damaged, which is told. False when interrupted: that is asked before each block.
  bool read();
  /// Whether a block of attributes found a mesh that keeps them.
  bool has_node_data() const { return has_node_data_; }

 private:
  enum class Next { block, end };

  Next read_block();
  Next read_text(std::int64_t bytes);
  Next read_node_data(bool has_numbers, std::int64_t bytes);
  Next read_node_tuples(bool has_numbers, int size, std::int64_t records);
  Next read_colours(std::int64_t bytes);
  Next read_coloured_elements(const class NativeColours& colours);
  bool has_left(std::int64_t bytes) const;
  Next skip_unknown(const char* tag, std::int64_t bytes);
  Next corrupt(const char* warning) const;

  trTriBlock& mesh_;
  trBinRead& in_;
  NativeVersion version_;
  std::function<int(int)> set_node_data_size_;
  bool has_node_data_ = false;
};
