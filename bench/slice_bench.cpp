// Slicing, and sections with their tracing.
#include <algorithm>
#include <cmath>

#include "boundaries/cycle_array.h"
#include "boundaries/section.h"
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/timing.h"

namespace {

constexpr double slice_tolerance = 1e-10;

// The middle of the torus, off all its nodes, across its axis: two circles are cut.
constexpr double middle = 0.0123;

Cost time_slice(const Model& model) {
  const Block block = merged_block(model);
  const int elements = block->valid_elements();
  int result = 0;
  const Cost cost = cost_of([&] { result = block->slice(gi_x_axis, 0, middle, slice_tolerance); });
  const double share = static_cast<double>(block->valid_elements()) / elements;
  require(result == 1 && share > 0.4 && share < 0.6, "elements of the kept half");
  trCycleArray cycles(block.get());
  require(cycles.num_boundaries() == 2 && block->box().min().x > middle - 1e-9, "boundaries of the cut");
  return cost;
}

Cost time_section(const Model& model) {
  const Block block = merged_block(model);
  trSection section(block.get());
  const Cost cost = cost_of([&] { section.section(gi_x_axis, middle); });
  require(section.n_boundaries() == 2, "outlines of a torus");
  return cost;
}

// Teeth, every one of which crosses the plane: as many segments as triangles. They hang together in one line where `joined`, and
// come in another order than along it.
Block comb(std::size_t teeth, bool joined) {
  Block block = std::make_unique<trTriBlock>();
  const int n = static_cast<int>(teeth);
  for (int k = 0; k < n + 2 && joined; ++k) block->set_node(k + 1, giPoint3(k * 0.01, 0.0, k % 2 == 0 ? -1.0 : 1.0));
  for (int k = 0; k < n && !joined; ++k) {
    const double x = k * 0.01;
    block->set_node(3 * k + 1, giPoint3(x, 0, -1));
    block->set_node(3 * k + 2, giPoint3(x, 1, 1));
    block->set_node(3 * k + 3, giPoint3(x, 0, 1));
  }
  const int stride = 611953;  // a prime: every tooth comes once
  for (int i = 0; i < n; ++i) {
    const int k = static_cast<int>(static_cast<long long>(i) * stride % n);
    if (!joined) {
      block->generate(3 * k + 1, 3 * k + 2, 3 * k + 3);
    } else if (k % 2 == 0) {
      block->generate(k + 1, k + 2, k + 3);
    } else {
      block->generate(k + 2, k + 1, k + 3);
    }
  }
  return block;
}

Cost time_comb(const Model& model, bool joined) {
  const Block block = comb(model.facets(), joined);
  const int teeth = static_cast<int>(model.facets());
  trSection section(block.get());
  const Cost cost = cost_of([&] { section.section(gi_z_axis, 0.0); });
  require(section.edge_start.count() == teeth && section.n_boundaries() == (joined ? 1 : teeth), "outlines of a comb");
  require(section.n_boundary_points(0) == (joined ? teeth + 1 : 2), "points of an outline");
  return cost;
}

Cost time_joined_comb(const Model& model) { return time_comb(model, true); }
Cost time_loose_comb(const Model& model) { return time_comb(model, false); }

}  // namespace

void add_slice_measures(std::vector<Measure>& list) {
  list.push_back({"slice", "flat_parse", time_slice});
  list.push_back({"section", "flat_parse", time_section});
  list.push_back({"section_joined_comb", "flat_parse", time_joined_comb, "", true});
  list.push_back({"section_loose_comb", "flat_parse", time_loose_comb, "", true});
}
