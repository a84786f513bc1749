// Capping: a hole that needs as many new nodes as the model has facets, and one with a long rim.
#include <algorithm>
#include <cmath>

#include "boundaries/cycle_array.h"
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/timing.h"

namespace {

constexpr double pi = 3.141592653589793;
constexpr std::size_t most_nodes = 1'000'000;  // larger models do with as many

// A cone that is open at the top: its rim has radius 1 and lies in a tilted plane.
Block open_cone(int edges) {
  Block block = std::make_unique<trTriBlock>();
  const giXform3 frame = giXform3::rotation(giVector3(0, 0, 1), giVector3(1, 2, 3));
  for (int k = 0; k < edges; ++k) {
    const double angle = 2.0 * pi * k / edges;
    block->set_node(k + 1, frame.apply(giPoint3(std::cos(angle), std::sin(angle), 0.0)));
  }
  block->set_node(edges + 1, frame.apply(giPoint3(0.0, 0.0, -1.0)));
  for (int k = 1; k <= edges; ++k) block->generate(edges + 1, k % edges + 1, k);
  return block;
}

Cost time_cap(trTriBlock& block, double spacing) {
  trCycleArray set(&block);
  require(set.num_boundaries() == 1, "boundaries of a cone");
  set.selection.add(0);
  at2PlaneError error = at2_success;
  const Cost cost = cost_of([&] { set.cap_holes(spacing, 1e-7, error, 0); });
  require(error == at2_success && set.num_boundaries() == 0, "cap of a cone");
  return cost;
}

// A net of equilateral triangles has one node to each sqrt(3) / 2 of the squared spacing.
Cost time_cap_round(const Model& model) {
  const double nodes = static_cast<double>(std::min(model.facets(), most_nodes));
  const double spacing = std::sqrt(pi / (std::sqrt(0.75) * nodes));
  const Block block = open_cone(static_cast<int>(2.0 * pi / spacing));
  const int before = block->node_count();
  const Cost cost = time_cap(*block, spacing);
  const double made = block->node_count() - before;
  require(made > 0.8 * nodes && made < 1.25 * nodes, "number of nodes in a cap");
  return cost;
}

// An edge for every ten facets, 10^4 for 10^5, and a spacing far above their length: the nodes thin out towards the middle.
Cost time_cap_rim(const Model& model) {
  const int edges = static_cast<int>(std::min(model.facets(), most_nodes) / 10);
  const Block block = open_cone(edges);
  return time_cap(*block, 0.125);
}

}  // namespace

void add_cap_measures(std::vector<Measure>& list) {
  list.push_back({"cap_round", "flat_parse", time_cap_round});
  list.push_back({"cap_rim", "flat_parse", time_cap_rim});
}
