// Stitching boundaries: one pass, passes until nothing changes, and the whole sequence over a range of tolerances.

#include "control/control.h"
#include "mesh/memory_guard.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

constexpr int limit_reached = -1;
constexpr int nothing_changed = -2;

}  // namespace

void trControl::action_stitch(double tol) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_stitch(tol); });
  cycles_.stitch(tol);
  triangle_update(1);
}

void trControl::action_staple(double tol) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_staple(tol); });
  if (check_tol(tol) && cycles_.superstitch(tol)) triangle_update(1);
}

void trControl::action_astaple(double tol, int limit) {
  if (check_tol(tol)) auto_staple(tol, limit);
}

int trControl::auto_staple(double tol, int limit) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, nothing_changed, [&] { return auto_staple(tol, limit); });
  int passes = 0;
  while (cycles_.superstitch(tol) && !tr_interrupt()) {
    triangle_update(1);
    if (++passes >= limit) return limit_reached;
  }
  const int boundaries = cycles_.num_boundaries();
  return passes == 0 && boundaries != 0 ? nothing_changed : boundaries;
}

// A limit of 1 is taken, whatever the text says.
bool trControl::check_auto_stitch(trAutoMode mode, double start_tol, double finish_tol, double tol_step, int limit) const {
  if (!check_tol(start_tol)) return false;
  if (mode == Multi && finish_tol < start_tol) {
    print_message("Nothing to do: finish tol is less than start tol");
    return false;
  }
  if (mode == Multi && tol_step <= 0.0) {
    print_message("Error! tol step must be positive");
    return false;
  }
  if (mode != Single && limit < 1) {
    print_message("Error! iteration limit must be greater than 1");
    return false;
  }
  return true;
}

void trControl::action_auto_stitch(trAutoMode mode, double start_tol, double finish_tol, double tol_step, int limit, int merge_first,
                                   int orient, int final_cancel, int target_boundaries) {
  const auto again = [&] {
    action_auto_stitch(mode, start_tol, finish_tol, tol_step, limit, merge_first, orient, final_cancel, target_boundaries);
  };
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, again);
  if (!check_auto_stitch(mode, start_tol, finish_tol, tol_step, limit)) return;
  if (merge_first) triblock_.unduplicate_nodes(start_tol);
  const double finish = mode == Multi ? finish_tol : start_tol;
  const double step = mode == Multi ? tol_step : 1.0;
  int status = 1;
  for (double tol = start_tol; tol <= finish && !tr_interrupt(); tol += step) {
    if (status != nothing_changed) clean_boundaries(tol, orient);
    status = auto_staple(tol, mode == Single ? 1 : limit);
    if (cycles_.num_boundaries() == target_boundaries) break;
    if (!(tol + step > tol)) break;  // the step is lost in rounding
  }
  if (status != nothing_changed && final_cancel && !tr_interrupt()) triblock_.cancelling(1);
  if (!tr_interrupt()) triangle_update(1);
}

// What goes before stapling at one tolerance.
void trControl::clean_boundaries(double tol, int orient) {
  cycles_.unduplicate_nodes(tol);
  if (!tr_interrupt()) triblock_.cancelling(1);
  if (!tr_interrupt()) triblock_.repeating();
  if (orient) triblock_.orient_normals();
}
