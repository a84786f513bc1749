// Selecting boundaries, and closing those that are selected.

#include "control/control.h"
#include "mesh/memory_guard.h"
#include "progress/message.h"

int trControl::select_cycles(const intcoSet& ids, double& average_length, int pick, const intcoSet& picks, int edge_start,
                             int edge_end) const {
  return cycles_.select_cycles(ids, 1, average_length, pick, picks, edge_start, edge_end);
}

int trControl::unselect_cycles(const intcoSet& ids, double& average_length) const {
  return cycles_.select_cycles(ids, 0, average_length, -1, intcoSet(), -1, -1);
}

int trControl::action_fill(const int& curvature) const {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, 0, [&] { return action_fill(curvature); });
  if (!self()->cycles_.fill_holes(curvature)) {
    print_message(" Error while filling holes");
    return 0;
  }
  self()->triangle_update(1);
  return 1;
}
