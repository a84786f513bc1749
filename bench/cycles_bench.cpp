// Boundaries: detection on a closed surface and on loose triangles, the gap between loose triangles, a section.
#include "boundaries/cycle_array.h"
#include "boundaries/section.h"
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/timing.h"

namespace {

enum class Edges { built, stale };

template <Edges edges>
Cost time_detect(const Model& model) {
  const Block block = merged_block(model);
  if (edges == Edges::built) block->build_edges();
  const trCycleArray set(block.get());
  int boundaries = -1;
  const Cost cost = cost_of([&] { boundaries = set.num_boundaries(); });
  require(boundaries == 0 && set.detected(), "boundaries of a closed surface");
  return cost;
}

Cost time_detect_soup(const Model& model) {
  const Block block = loaded_block(model);
  const trCycleArray set(block.get());
  int boundaries = -1;
  const Cost cost = cost_of([&] { boundaries = set.num_boundaries(); });
  require(static_cast<std::size_t>(boundaries) == model.facets(), "boundaries of loose triangles");
  require(static_cast<std::size_t>(set.num_edges()) == 3 * model.facets(), "free edges of loose triangles");
  return cost;
}

// Every triangle coincides with its neighbours' edges: the gap is 0, and most of the time goes into the tree.
Cost time_measure_distance(const Model& model) {
  const Block block = loaded_block(model);
  trCycleArray set(block.get());
  set.num_boundaries();
  giPoint3 from, to;
  giLength gap;
  const Cost cost = cost_of([&] { gap = set.measure_distance(from, to); });
  require(gap.is_set() && gap.value() < model.shortest_edge(), "gap between loose triangles");
  return cost;
}

Cost time_section(const Model& model) {
  const Block block = merged_block(model);
  trSection section(block.get());
  const giBox3& box = block->box();
  const Cost cost = cost_of([&] { section.section(gi_z_axis, 0.5 * (box.min().z + box.max().z)); });
  require(section.n_boundaries() >= 2, "section of a torus");
  for (int b = 0; b < section.n_boundaries(); ++b) {
    require(section.boundary_point(b, 0) == section.boundary_point(b, section.n_boundary_points(b) - 1),
            "open section");
  }
  return cost;
}

}  // namespace

void add_cycles_measures(std::vector<Measure>& list) {
  list.push_back({"detect_cycles", "flat_parse", time_detect<Edges::built>});
  list.push_back({"detect_cycles_unbuilt", "build_edges", time_detect<Edges::stale>});
  list.push_back({"detect_cycles_soup", "flat_parse", time_detect_soup});
  list.push_back({"measure_distance", "flat_parse", time_measure_distance});
  list.push_back({"section", "flat_parse", time_section});
}
