#include "mesh/survivor_map.h"
#include "mesh/tri_block.h"
#include "platform/spatial/point_index.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

constexpr int map_page_shift = 14;

// In a closed surface read from loose triangles about six nodes share a place.
constexpr int nodes_per_survivor = 6;

// Fetches ahead what the index will read for the nodes to come: first the slots, later the kept points that they name.
class MergeWindow {
 public:
  MergeWindow(const trTriBlock& block, const PointIndex& index) : block_(block), index_(index), n_(block.node_count()) {
    for (int i = 1; i < 1 + ahead && i < n_; ++i) look_up(i);
  }

  PointIndex::Probe advance(int i) {
    const PointIndex::Probe probe = ring_[i & ring_mask];
    if (i + ahead < n_) look_up(i + ahead);
    if (i + ahead / 2 < n_) index_.prefetch_record(ring_[(i + ahead / 2) & ring_mask]);
    return probe;
  }

 private:
  static constexpr int ahead = 32;
  static constexpr int ring_mask = ahead - 1;

  void look_up(int i) {
    PointIndex::Probe& probe = ring_[i & ring_mask];
    probe = index_.probe(block_.point(i));
    index_.prefetch(probe);
  }

  const trTriBlock& block_;
  const PointIndex& index_;
  int n_;
  PointIndex::Probe ring_[ahead];
};

std::vector<int> numbers_by_slot(const PointIndex& kept) {
  std::vector<int> numbers{0};
  numbers.reserve(static_cast<std::size_t>(kept.count()) + 1);
  for (int position = 0; position < kept.count(); ++position) numbers.push_back(kept.number(position));
  return numbers;
}

}  // namespace

// Walks the nodes in ascending number and deletes each that lies within tol of one kept before it, entering its survivor's slot.
// Returns the survivors' numbers by slot, slot 0 unused. The walk ends early when interrupted.
std::vector<int> trTriBlock::delete_duplicate_nodes(double tol, intcoPageArr& slots) {
  PointIndex kept(tol, PointIndex::Winner::lowest_number);
  const int n = node_count();
  kept.reserve(n / nodes_per_survivor);
  slots.expand(n);
  MergeWindow window(*this, kept);
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
  return numbers_by_slot(kept);
}

void trTriBlock::average_node_data(int k, int n) {
  if (node_data_ == nullptr) return;
  report_node(k);
  node_data_->average(k, n);
}

int trTriBlock::unduplicate_nodes(double tol) {
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
