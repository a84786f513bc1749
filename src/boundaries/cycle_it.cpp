#include "boundaries/cycle_it.h"

trCycleIT::trCycleIT(const trCycle* of) : cycle(of), first_node(of->get_start_node()) {}

bool trCycleIT::has_node() const {
  return cycle->block != nullptr && s_node() > 0 && s_node() < cycle->block->node_count();
}

// The first entry of a node at or after `from`, the one that closes the cycle excepted; -1 when there is none.
int trCycleIT::find_entry(int from, int wanted) const {
  for (int i = from; trCycle::holds_entry(i); ++i) {
    if (i > cycle->start && node(i) == first_node) return -1;
    if (node(i) == wanted) return i;
  }
  return -1;
}

int trCycleIT::step_arc() {
  if (arc_index >= 0) return step_subrange();
  if (cur < 0) return begin_arc();
  if (at_turn()) return step_subrange();
  return cycle->arc_forward ? advance_to_arc_end() : advance();
}

int trCycleIT::begin_arc() {
  if (cycle->start < 0) return end();
  exit_entry_ = cycle->arc_forward ? -1 : find_entry(cycle->start, cycle->arc_start);
  if (cycle->arc_forward) return enter(find_entry(cycle->start, cycle->arc_start));
  return enter(cycle->arc_start == -1 ? find_entry(cycle->start, cycle->arc_end) : cycle->start);
}

// The cycle's first node may itself be the end of the arc: then it is met in the entry that closes the cycle.
int trCycleIT::advance_to_arc_end() {
  const bool closes = trCycle::holds_entry(cur + 1) && node(cur + 1) == first_node;
  if (!closes || cycle->arc_end != first_node) return advance();
  ++cur;
  return 1;
}

int trCycleIT::step_subrange() {
  if (++arc_index < cycle->subrange_nodes.count()) return 1;
  arc_index = -1;
  return cycle->arc_forward ? end() : resume();
}

// Only entries behind the current one count, so the walk ends whatever nodes the arc names.
int trCycleIT::resume() { return enter(find_entry(cur + 1, cycle->arc_end)); }

// Whether the walk leaves the cycle after the current entry.
bool trCycleIT::at_turn() const { return cycle->arc_forward ? node(cur) == cycle->arc_end : cur == exit_entry_; }

int trCycleIT::closing_node() const {
  if (cycle->arc_forward) return cycle->arc_start;
  return cycle->arc_end == -1 ? first_node : cycle->arc_end;
}

int trCycleIT::arc_e_node() const {
  if (cur < 0) return 0;
  const bool turning = arc_index >= 0 || at_turn();
  if (!turning) return node(cur + 1);
  const int next = arc_index + 1;
  return next < cycle->subrange_nodes.count() ? cycle->subrange_nodes[next] : closing_node();
}
