// Capping holes, and selecting anew those that could not be capped.

#include "control/control.h"
#include "mesh/memory_guard.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

constexpr double second_tol = 1e-7;

}  // namespace

int trControl::action_cap(double spacing, at2PlaneError& error, const int& curvature) const {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, 0, [&] { return action_cap(spacing, error, curvature); });
  if (!(spacing > 0.0)) {
    print_message(" Error: invalid value for distance between nodes");
    return 0;
  }
  if (self()->cycles_.cap_holes(spacing, second_tol, error, curvature)) {
    self()->triangle_update(1);
    return 1;
  }
  if (!tr_interrupt()) self()->finish_undo(0);
  return 0;
}

int trControl::action_cap_ext(double spacing, int curvature, at2PlaneError& error) {
  error = spacing > 0.0 ? at2_success : at2_bad_length;
  if (error != at2_success) return 0;
  cycles_.detect();
  intcoSet failed;
  int capped = 0;
  int index = 0;
  intcoSet::coIterator it(cycles_.selection);
  while (++it) {
    if (tr_interrupt()) break;
    at2PlaneError hole_error = at2_success;
    start_undo("fill_hole");
    if (triblock_.undo == nullptr) break;
    const int is_capped = cycles_.cap_hole(index++, it(), spacing, curvature, hole_error);
    finish_undo(is_capped);
    capped += is_capped;
    if (is_capped) continue;
    error = error != at2_success ? at2_several_failed : hole_error;
    failed.add(it());
  }
  if (capped == 0) return 0;
  if (!tr_interrupt()) {
    tr_guarded(&triblock_, [&] { select_failed(failed); });
    return 1;
  }
  action_undo(capped);
  return 0;
}

// Boundaries are detected again, so they have new numbers and no picks.
void trControl::select_failed(const intcoSet& failed) {
  intintcoTable start_nodes;
  trCycleArray saved(&triblock_);
  save_selection_data(failed, start_nodes, saved);
  triblock_.mark_changed();
  cycles_.clear_selection_list();
  triangle_update(1);
  cycles_.num_boundaries();
  restore_selection_data(start_nodes, saved);
}

void trControl::save_selection_data(const intcoSet& ids, intintcoTable& start_nodes, trCycleArray& saved) const {
  intcoSet::coIterator it(ids);
  while (++it) {
    if (it() < 0 || it() >= cycles_.cycles.count()) continue;
    const trCycle& cycle = cycles_.cycles.at(it());
    if (cycle.start < 0) continue;
    const int place = saved.cycles.count();
    saved.cycles[place] = cycle;
    start_nodes.set(cycle.get_start_node(), place);
  }
}

// The entries that the saved cycles name are gone; their picks are not.
void trControl::restore_selection_data(const intintcoTable& start_nodes, const trCycleArray& saved) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { restore_selection_data(start_nodes, saved); });
  cycles_.detect();
  intcoSet found;
  for (int i = 0; i < cycles_.cycles.count(); ++i) {
    trCycle& cycle = cycles_.cycles.at(i);
    const int place = start_nodes.value(cycle.get_start_node(), -1);
    if (cycle.start < 0 || place < 0 || place >= saved.cycles.count()) continue;
    found.add(i);
    cycle.selected = 1;
    const trCycleNodes& picked = saved.cycles.at(place).valid_nodes;
    for (int k = 0; k < picked.count(); ++k) cycle.add_holefilling_pick(picked[k]);
  }
  double average_length = 0.0;
  select_cycles(found, average_length, -1, intcoSet(), -1, -1);
}
