// Triangles on edges that more than two share: the search over a clean surface, which is the common case, and the worst
// ones.
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/timing.h"

namespace {

Cost time_search(const trTriBlock& block, int mode, int expected) {
  intcoPageArr sick;
  const Cost cost = cost_of([&] { block.find_sick(sick, mode); });
  require(sick.count() == expected, "number of sick triangles");
  return cost;
}

Cost time_clean(const Model& model) { return time_search(*merged_block(model), 0, 0); }

// Every triangle a second time and turned over: on every edge four triangles. The element lists are made anew, as for a
// mesh that was just read: lists that grew entry by entry lie scattered in memory, and the walk along them would be all
// that is seen.
Cost time_doubled(const Model& model) {
  const Block block = merged_block(model);
  const int n = block->element_count();
  for (int e = 1; e < n; ++e) {
    const trElement t = block->element(e);
    block->generate(t[0], t[2], t[1]);
  }
  block->elements_referenced = 0;
  block->reference_elements();
  return time_search(*block, 0, 2 * static_cast<int>(model.facets()));
}

// One apex, half as many spokes as triangles, and three triangles on each spoke.
Cost time_hub(const Model& model) {
  const Block block = std::make_unique<trTriBlock>();
  const int spokes = static_cast<int>(model.facets() / 2);
  const int apex = block->generate_node(giPoint3(0, 0, 0), tr_no_direction(), 0);
  const int top = block->generate_node(giPoint3(0, 0, 1), tr_no_direction(), 0);
  for (int k = 0; k < spokes; ++k) block->generate_node(giPoint3(k, 1, 0), tr_no_direction(), 0);
  for (int k = 0; k < spokes; ++k) {
    block->generate(apex, top + 1 + k, top + 1 + (k + 1) % spokes);
    block->generate(apex, top + 1 + k, top);
  }
  return time_search(*block, 0, 2 * spokes);
}

// A flap on every hundredth triangle.
Cost time_fins(const Model& model) {
  const Block block = merged_block(model);
  int fins = 0;
  for (int e = 1; e < static_cast<int>(model.facets()); e += 100, ++fins) {
    const trElement t = block->element(e);
    block->generate(t[0], t[1], block->generate_node(giPoint3(0, 0, fins), tr_no_direction(), 0));
  }
  int removed = 0;
  const Cost cost = cost_of([&] { removed = block->cure_sick_fins(); });
  require(removed == fins, "number of fins");
  return cost;
}

}  // namespace

void add_sick_measures(std::vector<Measure>& list) {
  list.push_back({"find_sick", "flat_parse", time_clean});
  list.push_back({"find_sick_doubled", "flat_parse", time_doubled});
  list.push_back({"find_sick_hub", "flat_parse", time_hub});
  list.push_back({"cure_sick_fins", "flat_parse", time_fins});
}
