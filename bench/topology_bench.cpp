// What is derived from a merged mesh: edges, element lists, new numbers, mass properties.
#include <algorithm>
#include <cmath>

#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/timing.h"

namespace {

// Each element stands in the lists of its three nodes, once.
void check_lists(const trTriBlock& block, const Model& model) {
  std::size_t uses = 0;
  for (int i = 1; i < block.node_count(); ++i) {
    const trNode& node = block.node(i);
    if (!node.invalid) uses += static_cast<std::size_t>(node.elements.count());
  }
  require(uses == 3 * model.facets(), "entries of the element lists");
}

double time_build_edges(const Model& model) {
  const Block block = merged_block(model);
  const double seconds = seconds_of([&] { block->build_edges(); });
  require(block->edges_built == 1, "build_edges did not finish");
  for (int i = 1; i < block->node_count(); ++i) {
    require(block->node(i).a_edges.empty(), "a closed surface has a free edge");
  }
  return seconds;
}

// The lists are empty at first, as after renumbering or a change from outside.
double time_reference_elements(const Model& model) {
  const Block block = merged_block(model);
  for (int i = 1; i < block->node_count(); ++i) block->node(i).elements.clear();
  block->elements_referenced = 0;
  const double seconds = seconds_of([&] { block->reference_elements(); });
  require(block->elements_referenced == 1, "reference_elements did not finish");
  check_lists(*block, model);
  return seconds;
}

// The lists are there but no longer trusted: they are given up and made anew.
double time_reference_again(const Model& model) {
  const Block block = merged_block(model);
  block->elements_referenced = 0;
  const double seconds = seconds_of([&] { block->reference_elements(); });
  check_lists(*block, model);
  return seconds;
}

double time_renumber(const Model& model) {
  const Block block = merged_block(model);
  const double seconds = seconds_of([&] { block->renumber(); });
  require(static_cast<std::size_t>(block->node_count()) == model.vertices() + 1, "nodes after renumbering");
  check_merged(*block, model);
  return seconds;
}

double time_properties(const Model& model) {
  const Block block = merged_block(model);
  double area = 0.0, volume = 0.0, min_aspect = 0.0, mean_aspect = 0.0;
  giPoint3 centre;
  const double seconds = seconds_of([&] { block->properties(area, volume, centre, min_aspect, mean_aspect); });
  require(std::abs(volume - block->volume()) <= 1e-6 * volume, "volume");
  require(std::abs(area - block->surface_area()) <= 1e-6 * area, "area");
  return seconds;
}

}  // namespace

void add_topology_measures(std::vector<Measure>& list) {
  list.push_back({"build_edges", "flat_parse", time_build_edges});
  list.push_back({"reference_elements", "build_edges", time_reference_elements});
  list.push_back({"reference_again", "build_edges", time_reference_again});
  list.push_back({"renumber", "flat_parse", time_renumber});
  list.push_back({"properties", "flat_parse", time_properties});
}
