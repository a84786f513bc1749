// Merging of coincident nodes, beside a plain hash merge into flat arrays.
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/floors.h"
#include "support/timing.h"

namespace {

Cost time_hash_merge(const Model& model) {
  const Buffer<FlatPoint> points = corner_points(model.soup());
  FlatMesh mesh;
  const Cost cost = cost_of([&] { mesh = merge_flat(points.data(), model.facets()); });
  require(mesh.vertex_count == model.vertices(), "vertices of the hash merge");
  require(is_closed(mesh), "the hash merge leaves the surface open");
  return cost;
}

Cost time_merge(const Model& model, double tol) {
  const Block block = loaded_block(model);
  int merged = 0;
  const Cost cost = cost_of([&] { merged = block->unduplicate_nodes(tol); });
  require(merged == 1, "unduplicate_nodes merged nothing");
  check_merged(*block, model);
  return cost;
}

Cost time_merge_exact(const Model& model) { return time_merge(model, exact_tolerance()); }
Cost time_merge_millionth(const Model& model) { return time_merge(model, model.shortest_edge() * 1e-6); }
Cost time_merge_tenth(const Model& model) { return time_merge(model, model.shortest_edge() * 0.1); }

}  // namespace

void add_merge_measures(std::vector<Measure>& list) {
  list.push_back({"hash_merge", "", time_hash_merge});
  list.push_back({"unduplicate_exact", "hash_merge", time_merge_exact});
  list.push_back({"unduplicate_1e-6_edge", "hash_merge", time_merge_millionth});
  list.push_back({"unduplicate_0.1_edge", "hash_merge", time_merge_tenth});
}
