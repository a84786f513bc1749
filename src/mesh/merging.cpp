#include "mesh/survivor_map.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "platform/spatial/probe_window.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

constexpr int map_page_shift = 14;

// In a closed surface read from loose triangles about six nodes share a place.
constexpr int nodes_per_survivor = 6;

}  // namespace

// Walks the nodes in ascending number and deletes each that lies within tol of one kept before it, entering its survivor's slot.
// Returns the survivors' numbers by slot, slot 0 unused. The walk ends early when interrupted.
std::vector<int> trTriBlock::delete_duplicate_nodes(double tol, intcoPageArr& slots) {
  PointIndex kept(tol, PointIndex::Winner::lowest_number);
  const int n = node_count();
  kept.reserve(n / nodes_per_survivor);
  slots.expand(n);
  ProbeWindow window(kept, n, [this](int i) { return point(i); });
  window.advance(0);  // no node
  for (int i = 1; i < n && !tr_interrupt(); ++i) {
    if (i % 1000 == 0) {
      tr_report_progress(tr_brnknls("Unduplicating %3d nodes:   %3d"), n, i, static_cast<double>(i) / n * 100.0);
    }
    const PointIndex::Probe probe = window.advance(i);
    if (node(i).invalid) continue;
    const int position = kept.find_or_add_position(point(i), i, probe);
    if (position < 0) continue;
    average_node_data(kept.number(position), i);
    delete_node(i);
    slots[i] = position + 1;
  }
  return SurvivorMap::numbers_by_slot(kept);
}

void trTriBlock::average_node_data(int k, int n) {
  if (node_data_ == nullptr) return;
  report_node(k);
  node_data_->average(k, n);
}

int trTriBlock::unduplicate_nodes(double tol) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0, [&] { return unduplicate_nodes(tol); });
  if (!(tol > undup_tol)) return 0;
  intcoPageArr slots(map_page_shift, 5, 10);
  const std::int64_t edits_before = edit_count_;
  const std::vector<int> survivors = delete_duplicate_nodes(tol, slots);
  if (tr_interrupt()) return 0;
  const bool merged = edit_count_ != edits_before;
  if (merged) {
    replace_nodes(SurvivorMap(slots, &survivors));
    alter(0);
    if (tr_interrupt()) return 0;
    delete_collapsed_elements();
    if (tr_interrupt()) return 0;
  }
  undup_tol = tol;
  return merged;
}
