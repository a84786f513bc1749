#pragma once

#include "boundaries/cycle.h"

/// Walks the edges of a cycle: `while (++it) use(it.s_node(), it.e_node());`. Stepping a finished iterator starts
/// again.
///
/// Without an arc it yields the edges in order, cancelled ones included. With an arc it yields a closed loop:
/// - forward: from the first entry of `arc_start` along the cycle to that of `arc_end`, through the nodes of the
/// sub-range, and back
///   to `arc_start`; nothing when `arc_start` is not on the cycle, and no farther than the cycle when `arc_end` does
///   not follow;
/// - else: from the cycle's first node to `arc_start`, through the sub-range, on from the next entry of `arc_end` to
/// the cycle's end;
///   without `arc_start` it begins at `arc_end`.
class MENDEX_EXPORT trCycleIT {
 public:
  explicit trCycleIT(const trCycle* of);

  const trCycle* cycle;
  int first_node;      ///< node of the cycle's first entry; -1 for a removed cycle
  int cur = -1;        ///< index in `trCycle::rep` of the current entry; -1 before the first step and after the last
  int arc_index = -1;  ///< index into the sub-range while the iterator is on it, else -1

  /// Moves to the next edge, at first to the first; returns whether there is one.
  int operator++() {
    if (in_arc_mode()) return step_arc();
    return cur < 0 ? enter(cycle->start) : advance();
  }

  /// Ends of the current edge; 0 when there is none.
  int s_node() const { return arc_index >= 0 ? cycle->subrange_nodes[arc_index] : (cur < 0 ? 0 : node(cur)); }
  int e_node() const { return in_arc_mode() ? arc_e_node() : (cur < 0 ? 0 : node(cur + 1)); }

  /// Whether the edge that leaves the current entry was cancelled.
  int edge_cancelled() const { return cur >= 0 && !trCycle::rep.at(cur).active; }
  void cancel_edge() {
    if (cur >= 0) trCycle::rep.at(cur).active = 0;
  }

  /// Whether the boundary mark of the start node is 0.
  int node_cancelled() const { return has_node() && cycle->block->node(s_node()).side == 0; }
  void cancel_node() {
    if (has_node()) cycle->block->node(s_node()).side = 0;
  }

 private:
  static int node(int i) { return trCycle::rep.at(i).node; }
  bool in_arc_mode() const { return cycle->arc_start != -1 || cycle->arc_end != -1; }
  bool has_node() const;

  // Steps onto entry i, which has to have an end.
  int enter(int i) {
    if (!trCycle::holds_entry(i) || !trCycle::holds_entry(i + 1)) return end();
    cur = i;
    return 1;
  }
  int advance() { return trCycle::holds_entry(cur + 1) && node(cur + 1) != first_node ? enter(cur + 1) : end(); }
  int end() {
    cur = -1;
    arc_index = -1;
    return 0;
  }

  int step_arc();
  int begin_arc();
  int advance_to_arc_end();
  int step_subrange();
  int resume();
  bool at_turn() const;
  int closing_node() const;
  int arc_e_node() const;
  int find_entry(int from, int wanted) const;

  int exit_entry_ = -1;  // where the walk leaves the cycle, when it does not go forward: the first entry of arc_start
};
