// Filling: a thousand holes of eight edges in a merged surface, whose boundaries are detected and lists built.
#include "boundaries/cycle_array.h"
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/punched.h"
#include "support/timing.h"
#include "undo/undo_hist.h"

namespace {

enum class Journal { off, on };

template <Journal journal>
Cost time_fill(const Model& model) {
  const Block block = punched_block(model);
  const int holes = holes_in(model);
  trCycleArray set(block.get());
  require(set.num_boundaries() == holes && set.num_edges() == hole_rim * holes, "boundaries of the holes");
  for (int id = 0; id < holes; ++id) set.selection.add(id);
  const int elements = block->element_count();
  trUndoHist history(block.get());
  int filled = 0;
  const Cost cost = cost_of([&] {
    if (journal == Journal::on) history.start("fill");
    filled = set.fill_holes(0);
    history.finish();
  });
  require(filled == 1 && block->element_count() == elements + hole_rim * holes, "triangles that fill the holes");
  require(set.num_edges() == 0, "free edges after filling");
  return cost;
}

}  // namespace

void add_fill_measures(std::vector<Measure>& list) {
  list.push_back({"fill_1000_holes", "flat_parse", time_fill<Journal::off>});
  list.push_back({"fill_1000_holes_journalled", "fill_1000_holes", time_fill<Journal::on>});
}
