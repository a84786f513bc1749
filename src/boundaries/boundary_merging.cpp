// Merging boundary nodes that lie near each other.

#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "boundaries/free_edge.h"
#include "platform/spatial/point_index.h"
#include "progress/progress.h"

int trCycleArray::unduplicate_nodes(double tol) {
  if (block == nullptr) return 0;
  detect();
  intcoPageArr map;
  const bool has_merged = merge_boundary_nodes(tol, map);
  if (tr_interrupt() || !has_merged) return 0;
  block->reference_new_nodes(map);
  block->alter(0);
  if (tr_interrupt()) return 0;
  block->delete_collapsed_elements();
  return !tr_interrupt();
}

// Of several nodes kept within the tolerance, the one that a search tree grown in the same order meets first takes the node in.
bool trCycleArray::merge_boundary_nodes(double tol, intcoPageArr& map) {
  PointIndex kept(tol, PointIndex::Winner::tree_order);
  bool has_merged = false;
  for (int i = 0; i < cycles.count(); ++i) {
    for (trCycleIT it(&cycles.at(i)); ++it;) {
      if (tr_interrupt()) return has_merged;
      const int n = it.s_node();
      if (!has_boundary_node(*block, n) || block->node(n).invalid) continue;
      const int k = kept.find_or_add(block->point(n), n);
      if (k == -1 || k == n) continue;
      block->average_node_data(k, n);
      block->delete_node(n);
      map[n] = k;
      has_merged = true;
    }
  }
  return has_merged;
}
