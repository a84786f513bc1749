// Stitching: a closed surface cut into strips, and the same surface as loose triangles. Boundaries are detected before.
#include "boundaries/cycle_array.h"
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/cut_torus.h"
#include "support/timing.h"

namespace {

Cost time_merge_strips(const Model& model) {
  const CutTorus cut = cut_torus(model);
  trCycleArray set(cut.block.get());
  require(set.num_edges() == 2 * cut.seam_nodes + cut.t_junctions, "free edges of the strips");
  const int nodes = cut.block->valid_nodes();
  int result = 0;
  const Cost cost = cost_of([&] { result = set.unduplicate_nodes(cut.tolerance); });
  require(result == 1 && cut.block->valid_nodes() == nodes - cut.seam_nodes, "merging of the strips");
  require(set.num_edges() == 3 * cut.t_junctions, "free edges of the merged strips");
  return cost;
}

Cost time_superstitch_strips(const Model& model) {
  const CutTorus cut = cut_torus(model);
  trCycleArray set(cut.block.get());
  require(set.unduplicate_nodes(cut.tolerance) == 1 && set.num_edges() == 3 * cut.t_junctions, "holes at the T-junctions");
  int result = 0;
  const Cost cost = cost_of([&] { result = set.superstitch(cut.tolerance); });
  require(result == 1 && set.num_boundaries() == 0, "the surface is closed");
  return cost;
}

Cost time_stitch_strips(const Model& model) {
  const CutTorus cut = cut_torus(model);
  trCycleArray set(cut.block.get());
  set.num_boundaries();
  int result = 0;
  const Cost cost = cost_of([&] { result = set.stitch(cut.tolerance); });
  require(result == 1 && set.num_edges() > 0, "stitching of the strips");
  return cost;
}

// From linked edges to a closed surface: boundaries are found, their nodes merged, and edges split where nodes of the other side lie.
template <Seams seams>
Cost time_close(const Model& model) {
  const CutTorus cut = cut_torus(model, Cuts::fixed, seams);
  cut.block->build_edges();
  trCycleArray set(cut.block.get());
  const Cost cost = cost_of([&] {
    set.unduplicate_nodes(cut.tolerance);
    if (seams == Seams::t_junctions) set.superstitch(cut.tolerance);
    cut.block->build_edges();
  });
  require(set.num_boundaries() == 0, "the surface is closed");
  return cost;
}

// Every place is met by six triangles.
Cost time_merge_soup(const Model& model) {
  const Block block = loaded_block(model);
  trCycleArray set(block.get());
  set.num_boundaries();
  int result = 0;
  const Cost cost = cost_of([&] { result = set.unduplicate_nodes(1e-6 * model.shortest_edge()); });
  require(result == 1, "merging of loose triangles");
  check_merged(*block, model);
  return cost;
}

// Corners meet corners, and none lies on an edge.
Cost time_superstitch_soup(const Model& model) {
  const Block block = loaded_block(model);
  trCycleArray set(block.get());
  set.num_boundaries();
  int result = 1;
  const Cost cost = cost_of([&] { result = set.superstitch(0.01 * model.shortest_edge()); });
  require(result == 0 && static_cast<std::size_t>(block->valid_elements()) == model.facets(), "superstitching of loose triangles");
  return cost;
}

Cost time_stitch_soup(const Model& model, double edges_wide, std::size_t facets_expected) {
  const Block block = loaded_block(model);
  trCycleArray set(block.get());
  set.num_boundaries();
  int result = 0;
  const Cost cost = cost_of([&] { result = set.stitch(edges_wide * model.shortest_edge()); });
  require(result == 1 && static_cast<std::size_t>(block->valid_elements()) > facets_expected, "stitching of loose triangles");
  return cost;
}

// Each node is in line with an edge that ends beside it.
Cost time_stitch_soup_narrow(const Model& model) { return time_stitch_soup(model, 0.01, 2 * model.facets()); }

// Each triangle meets hundreds of others, of which the first few use up its nodes.
Cost time_stitch_soup_wide(const Model& model) { return time_stitch_soup(model, 15.0, model.facets()); }

}  // namespace

void add_stitch_measures(std::vector<Measure>& list) {
  list.push_back({"merge_boundary_strips", "flat_parse", time_merge_strips});
  list.push_back({"superstitch_strips", "flat_parse", time_superstitch_strips});
  list.push_back({"stitch_strips", "flat_parse", time_stitch_strips});
  list.push_back({"close_cracks", "flat_parse", time_close<Seams::cracks>});
  list.push_back({"close_t_junctions", "flat_parse", time_close<Seams::t_junctions>});
  list.push_back({"merge_boundary_soup", "unduplicate_1e-6_edge", time_merge_soup});
  list.push_back({"superstitch_soup", "unduplicate_1e-6_edge", time_superstitch_soup});
  list.push_back({"stitch_soup", "unduplicate_1e-6_edge", time_stitch_soup_narrow});
  list.push_back({"stitch_soup_wide", "unduplicate_1e-6_edge", time_stitch_soup_wide});
}
