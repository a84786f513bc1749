#include "support/blocks.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "formats/tri_read.h"
#include "support/check.h"
#include "support/files.h"
#include "support/stl_bytes.h"

double exact_tolerance() { return std::numeric_limits<double>::denorm_min(); }

Block loaded_block(const Model& model) {
  auto block = std::make_unique<trTriBlock>();
  trTriRead reader(block.get(), open_file(model.binary_file(), "rb").release(), 0, 0);
  require(reader.read_stl(1, 0) == 1, "read_stl failed");
  return block;
}

Block merged_block(const Model& model) {
  Block block = loaded_block(model);
  require(block->unduplicate_nodes(exact_tolerance()) == 1, "unduplicate_nodes merged nothing");
  return block;
}

void check_loaded(const trTriBlock& block, const Model& model) {
  require(static_cast<std::size_t>(block.valid_elements()) == model.facets(), "elements after reading");
  require(static_cast<std::size_t>(block.valid_nodes()) == 3 * model.facets(), "nodes after reading");
}

void check_merged(const trTriBlock& block, const Model& model) {
  require(static_cast<std::size_t>(block.valid_elements()) == model.facets(), "elements after merging");
  require(static_cast<std::size_t>(block.valid_nodes()) == model.vertices(), "nodes after merging");
}

void check_written(const std::filesystem::path& file, const Model& model) {
  const Buffer<char> bytes = load_file(file);
  require(bytes.size() == stl_file_bytes(model.facets()), "size of the written file");
  require(stl_facet_count(bytes.data()) == model.facets(), "facet count of the written file");
  for (std::size_t f = 0; f < model.facets(); ++f) {
    const char* record = bytes.data() + stl_preamble_bytes + f * stl_record_bytes;
    float expected[9], written[9];
    std::memcpy(expected, &model.soup().corners[9 * f], sizeof expected);
    std::memcpy(written, record + stl_normal_bytes, sizeof written);
    for (int turn = 0; turn < 2 && std::memcmp(expected, written, sizeof written) != 0; ++turn) std::rotate(written, written + 3, written + 9);
    require(std::memcmp(expected, written, sizeof written) == 0, "a facet of the written file");
  }
}
