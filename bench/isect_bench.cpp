// The search for intersecting elements: closed surfaces, and meshes that search structures find hard.
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/floors.h"
#include "support/meshes.h"
#include "support/timing.h"

namespace {

constexpr int limit = 1000;  // that of the controller's list

Cost time_search(const trTriBlock& block, bool expect_some) {
  block.box();
  intcoPageArr found;
  const Cost cost = cost_of([&] { block.find_intersecting(found, limit); });
  require((found.count() > 0) == expect_some, "number of intersecting elements");
  return cost;
}

Cost time_clean(const Model& model) { return time_search(*merged_block(model), false); }

Cost time_overlapping(const Model& model) {
  const Buffer<FlatPoint> points = two_surfaces(model);
  const FlatMesh flat = merge_flat(points.data(), points.size() / 3);
  return time_search(*block_of(mesh_of(flat), FacetOrder::ordered), true);
}

Cost time_sheet(const Model& model) {
  return time_search(*block_of(flat_sheet(model.facets()), model.order()), false);
}
Cost time_graded(const Model& model) {
  return time_search(*block_of(graded_ring(model.facets()), model.order()), false);
}
Cost time_fan(const Model& model) { return time_search(*block_of(fan(model.facets() / 10), model.order()), false); }

}  // namespace

void add_isect_measures(std::vector<Measure>& list) {
  list.push_back({"isect_clean", "flat_parse", time_clean});
  list.push_back({"isect_overlapping", "flat_parse", time_overlapping});
  list.push_back({"isect_sheet", "flat_parse", time_sheet});
  list.push_back({"isect_graded", "flat_parse", time_graded});
  list.push_back({"isect_fan", "flat_parse", time_fan});
}
