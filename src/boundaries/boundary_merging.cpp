// Merging boundary nodes that lie near each other.

#include <vector>

#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "boundaries/free_edge.h"
#include "mesh/memory_guard.h"
#include "mesh/survivor_map.h"
#include "platform/spatial/probe_window.h"
#include "progress/progress.h"

namespace {

constexpr int map_page_shift = 14;

// The nodes of all cycles in the order of the walk.
std::vector<int> nodes_of(const trTriBlock& block, const trCyclecoPageArr& cycles) {
  std::vector<int> nodes;
  for (int i = 0; i < cycles.count(); ++i) {
    for (trCycleIT it(&cycles.at(i)); ++it;) {
      if (has_boundary_node(block, it.s_node())) nodes.push_back(it.s_node());
    }
  }
  return nodes;
}

}  // namespace

int trCycleArray::unduplicate_nodes(double tol) {
  if (!coMemoryScope::is_open()) return tr_guarded(block, 0, [&] { return unduplicate_nodes(tol); });
  if (block == nullptr) return 0;
  detect();
  if (tr_interrupt()) return 0;
  intcoPageArr slots(map_page_shift, 5, 10);
  const std::vector<int> survivors = merge_boundary_nodes(tol, slots);
  if (tr_interrupt() || slots.count() == 0) return 0;
  block->replace_nodes(SurvivorMap(slots, &survivors));
  block->alter(0);
  if (tr_interrupt()) return 0;
  block->delete_collapsed_elements();
  return !tr_interrupt();
}

// Deletes each node that lies within tol of one kept before it, entering its survivor's slot. Of several such the one that a search
// tree grown in the same order meets first takes the node in. Returns the survivors' numbers by slot, slot 0 unused.
std::vector<int> trCycleArray::merge_boundary_nodes(double tol, intcoPageArr& slots) {
  PointIndex kept(tol, PointIndex::Winner::tree_order);
  const std::vector<int> nodes = nodes_of(*block, cycles);
  const int count = static_cast<int>(nodes.size());
  ProbeWindow window(kept, count, [&](int k) { return block->point(nodes[static_cast<std::size_t>(k)]); });
  for (int k = 0; k < count && !tr_interrupt(); ++k) {
    const PointIndex::Probe probe = window.advance(k);
    const int n = nodes[static_cast<std::size_t>(k)];
    if (block->node(n).invalid) continue;
    const int position = kept.find_or_add_position(block->point(n), n, probe);
    if (position < 0 || kept.number(position) == n) continue;
    block->average_node_data(kept.number(position), n);
    block->delete_node(n);
    slots[n] = position + 1;
  }
  return SurvivorMap::numbers_by_slot(kept);
}
