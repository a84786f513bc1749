// What is derived from a merged mesh: edges, element lists, new numbers, mass properties.
#include <algorithm>
#include <cmath>

#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/floors.h"
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

Cost time_flat_link(const Model& model) {
  const Buffer<FlatPoint> points = corner_points(model.soup());
  const FlatMesh mesh = merge_flat(points.data(), model.facets());
  Buffer<std::uint32_t> links;
  const Cost cost = cost_of([&] { links = link_flat(mesh); });
  require(std::count(links.data(), links.data() + links.size(), empty_link) == 0, "a closed surface has a half-edge without its opposite");
  return cost;
}

// From loose facets to linked edges.
Cost time_merge_and_link(const Model& model) {
  const Block block = loaded_block(model);
  const Cost cost = cost_of([&] {
    block->unduplicate_nodes(exact_tolerance());
    block->build_edges();
  });
  require(block->edges_built == 1, "build_edges did not finish");
  check_merged(*block, model);
  return cost;
}

Cost time_build_edges(const Model& model) {
  const Block block = merged_block(model);
  const Cost cost = cost_of([&] { block->build_edges(); });
  require(block->edges_built == 1, "build_edges did not finish");
  for (int i = 1; i < block->node_count(); ++i) {
    require(block->node(i).a_edges.empty(), "a closed surface has a free edge");
  }
  return cost;
}

// The lists are empty at first, as after renumbering or a change from outside.
Cost time_reference_elements(const Model& model) {
  const Block block = merged_block(model);
  for (int i = 1; i < block->node_count(); ++i) block->node(i).elements.clear();
  block->elements_referenced = 0;
  const Cost cost = cost_of([&] { block->reference_elements(); });
  require(block->elements_referenced == 1, "reference_elements did not finish");
  check_lists(*block, model);
  return cost;
}

// The lists are there but no longer trusted: they are given up and made anew.
Cost time_reference_again(const Model& model) {
  const Block block = merged_block(model);
  block->elements_referenced = 0;
  const Cost cost = cost_of([&] { block->reference_elements(); });
  check_lists(*block, model);
  return cost;
}

Cost time_renumber(const Model& model) {
  const Block block = merged_block(model);
  const Cost cost = cost_of([&] { block->renumber(); });
  require(static_cast<std::size_t>(block->node_count()) == model.vertices() + 1, "nodes after renumbering");
  check_merged(*block, model);
  return cost;
}

Cost time_properties(const Model& model) {
  const Block block = merged_block(model);
  double area = 0.0, volume = 0.0, min_aspect = 0.0, mean_aspect = 0.0;
  giPoint3 centre;
  const Cost cost = cost_of([&] { block->properties(area, volume, centre, min_aspect, mean_aspect); });
  require(std::abs(volume - block->volume()) <= 1e-6 * volume, "volume");
  require(std::abs(area - block->surface_area()) <= 1e-6 * area, "area");
  return cost;
}

}  // namespace

void add_topology_measures(std::vector<Measure>& list) {
  list.push_back({"flat_link", "", time_flat_link});
  list.push_back({"build_edges", "flat_link", time_build_edges});
  list.push_back({"merge_and_link", "hash_merge", time_merge_and_link});
  list.push_back({"reference_elements", "build_edges", time_reference_elements});
  list.push_back({"reference_again", "build_edges", time_reference_again});
  list.push_back({"renumber", "flat_parse", time_renumber});
  list.push_back({"properties", "flat_parse", time_properties});
}
