#include "support/blocks.h"

#include <limits>

#include "formats/tri_read.h"
#include "support/check.h"
#include "support/files.h"

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
