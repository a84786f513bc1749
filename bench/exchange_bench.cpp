// Meshes that pass to and from a host's own arrays.
#include "control/control.h"
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/timing.h"

namespace {

// The merged model in a host's pool, with a colour a triangle.
void give_to_host(const Model& model, giTriBlock& pool) {
  const Block block = merged_block(model);
  block->get_giTriBlock(pool);
  giTriCols colours;
  pool.check_out(colours);
  const auto count = static_cast<int>(model.facets());
  for (int k = 0; k < count; ++k) (*colours.data())[k] = tr_decode_colour(k);
}

Cost time_fill(const Model& model) {
  giTriBlock pool;
  give_to_host(model, pool);
  trControl control;
  const Cost cost = cost_of([&] { control.action_fill_triblock(pool); });
  check_merged(control.triblock(), model);
  require(control.triblock().get_element_colour(1000) == 999, "colours of the host");
  return cost;
}

Cost time_give(const Model& model) {
  giTriBlock pool;
  give_to_host(model, pool);
  trControl control;
  control.action_fill_triblock(pool);
  giTriBlock out;
  const Cost cost = cost_of([&] { control.triblock().get_giTriBlock(out); });
  giTriArrcoFeature triangles;
  require(out.find(triangles) != 0, "triangles for the host");
  require(static_cast<std::size_t>(triangles.data()->triangles.count()) == model.facets(), "number of triangles for the host");
  return cost;
}

}  // namespace

void add_exchange_measures(std::vector<Measure>& list) {
  list.push_back({"fill_triblock", "flat_parse", time_fill});
  list.push_back({"give_triblock", "flat_parse", time_give});
}
