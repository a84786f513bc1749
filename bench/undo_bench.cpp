// The journal: taking back and repeating a merge, and what recording adds to the edits.
#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/timing.h"
#include "undo/undo_hist.h"

namespace {

enum class Journal { off, on };

// Runs an edit of the whole block, recorded or not; its opening and closing count.
template <class Edit>
Cost time_edit(trTriBlock& block, Journal journal, Edit edit) {
  trUndoHist history(&block);
  return cost_of([&] {
    if (journal == Journal::on) history.start("edit");
    edit(block);
    history.finish();
  });
}

void merge(trTriBlock& block) {
  require(block.unduplicate_nodes(exact_tolerance()) == 1, "unduplicate_nodes merged nothing");
}

Cost time_merge_journalled(const Model& model) {
  const Block block = loaded_block(model);
  const Cost cost = time_edit(*block, Journal::on, merge);
  check_merged(*block, model);
  return cost;
}

Cost time_undo(const Model& model) {
  const Block block = loaded_block(model);
  trUndoHist history(block.get());
  history.start("merge");
  merge(*block);
  history.finish();
  const Cost cost = cost_of([&] { history.undo(); });
  check_loaded(*block, model);
  return cost;
}

Cost time_redo(const Model& model) {
  const Block block = loaded_block(model);
  trUndoHist history(block.get());
  history.start("merge");
  merge(*block);
  history.finish();
  history.undo();
  const Cost cost = cost_of([&] { history.redo(); });
  check_merged(*block, model);
  return cost;
}

template <Journal journal>
Cost time_reverse(const Model& model) {
  const Block block = merged_block(model);
  const double volume = block->volume();
  const Cost cost = time_edit(*block, journal, [](trTriBlock& b) { b.reverse(); });
  require(block->volume() < 0.0 && volume > 0.0, "volume after reversing");
  return cost;
}

template <Journal journal>
Cost time_delete(const Model& model) {
  const Block block = merged_block(model);
  intcoPageArr list;
  for (int e = 1; e < block->element_count(); ++e) list[e - 1] = e;
  const Cost cost = time_edit(*block, journal, [&](trTriBlock& b) { b.delete_elements(list); });
  require(block->valid_elements() == 0, "elements after deleting all");
  return cost;
}

template <Journal journal>
Cost time_transform(const Model& model) {
  const Block block = merged_block(model);
  const double top = block->box().max().z;
  const Cost cost = time_edit(*block, journal, [](trTriBlock& b) {
    b.transform(giXform3::translation(giVector3(0.0, 0.0, 1.0)));
  });
  require(block->box().max().z > top, "height after moving up");
  return cost;
}

template <Journal journal>
Cost time_renumber(const Model& model) {
  const Block block = merged_block(model);
  const Cost cost = time_edit(*block, journal, [](trTriBlock& b) { b.renumber(); });
  check_merged(*block, model);
  return cost;
}

}  // namespace

void add_undo_measures(std::vector<Measure>& list) {
  list.push_back({"undo_merge", "flat_parse", time_undo});
  list.push_back({"redo_merge", "flat_parse", time_redo});
  list.push_back({"merge_journalled", "unduplicate_exact", time_merge_journalled});
  list.push_back({"reverse", "flat_parse", time_reverse<Journal::off>});
  list.push_back({"reverse_journalled", "reverse", time_reverse<Journal::on>});
  list.push_back({"delete_all", "flat_parse", time_delete<Journal::off>});
  list.push_back({"delete_all_journalled", "delete_all", time_delete<Journal::on>});
  list.push_back({"transform", "flat_parse", time_transform<Journal::off>});
  list.push_back({"transform_journalled", "transform", time_transform<Journal::on>});
  list.push_back({"renumber_journalled", "renumber", time_renumber<Journal::on>});
}
