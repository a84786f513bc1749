#include "boundaries/cycle_array.h"
#include "mesh/memory_guard.h"
#include "progress/progress.h"

int trCycleArray::select_cycles(const intcoSet& ids, const int& select, double& average_length, int pick,
                                const intcoSet& picks, int edge_start, int edge_end) const {
  const auto again = [&] { return select_cycles(ids, select, average_length, pick, picks, edge_start, edge_end); };
  if (!coMemoryScope::is_open()) return tr_guarded(block, -1, again);
  detect();
  if (block != nullptr) block->reference_elements();
  if (tr_interrupt()) return -1;
  average_length = 0.0;
  const int single_picks[3] = {pick, edge_start, edge_end};
  int first = -1;
  intcoSetcoIterator it(ids);
  while (++it) {
    const int id = it();
    if (id < 0 || id >= cycles.count()) continue;
    if (first == -1) first = id;
    if (select) {
      self()->select_cycle(id, average_length, single_picks, picks);
      continue;
    }
    self()->selection.remove(id);
    trCycle& cycle = self()->cycles.at(id);
    cycle.clear_holefilling_data();
    cycle.selected = 0;
  }
  return first;
}

// The single picks are a node and the two ends of an edge.
void trCycleArray::select_cycle(int id, double& average_length, const int (&single_picks)[3], const intcoSet& picks) {
  selection.add(id);
  trCycle& cycle = cycles.at(id);
  average_length = cycle.average_length();
  if (cycle.selected && cycle.add_holefilling_pick(single_picks[0]) != 0 && cycle.add_holefilling_picks(picks) != 0) {
    cycle.add_holefilling_picked_edge(single_picks[1], single_picks[2]);
  }
  cycle.selected = 1;
}
