// Analysing and mending: each action checks its argument, calls one operation and tells the host what changed.

#include "control/control.h"
#include "mesh/memory_guard.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

// How near to the plane of a slice a node counts as on it.
constexpr double slice_tolerance = 1e-10;

// The block measures in a workplane while it lives, and in none afterwards.
class WorkplaneInUse {
 public:
  WorkplaneInUse(trTriBlock& block, const ccWorkplane& plane) : block_(block) {
    block_.set_workplane(plane);
    block_.enable_workplane(1);
  }
  WorkplaneInUse(const WorkplaneInUse&) = delete;
  WorkplaneInUse& operator=(const WorkplaneInUse&) = delete;
  ~WorkplaneInUse() {
    block_.set_workplane(ccWorkplane());
    block_.enable_workplane(0);
  }

 private:
  trTriBlock& block_;
};

}  // namespace

int trControl::check_tol(double tol) const {
  if (!(tol < 0.0)) return 1;
  print_message(" Error: tol must not be less than zero");
  return 0;
}

void trControl::action_undup(double tol) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_undup(tol); });
  if (check_tol(tol) && triblock_.unduplicate_nodes(tol)) triangle_update(1);
}

void trControl::action_bundup(double tol) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_bundup(tol); });
  if (check_tol(tol) && cycles_.unduplicate_nodes(tol)) triangle_update(1);
}

void trControl::action_renumber() {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_renumber(); });
  triblock_.renumber();
  triangle_update(0);
}

void trControl::action_swap(double tol, int passes) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_swap(tol, passes); });
  if (!check_tol(tol)) return;
  int swapped = 0;
  while (swapped < passes && triblock_.swap_elements(tol)) ++swapped;
  if (swapped > 0) triangle_update(0);
}

// Deletes what a list holds. The list counts as searched and empty afterwards, although the mesh changed.
void trControl::delete_listed(trElementList& list) {
  list.detect_elements();
  if (tr_interrupt() || list.elements().count() == 0) return;
  list.delete_elements();
  triangle_update(1);
  list.stale_ = 0;
}

void trControl::height_aspect(double tol, int which) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { height_aspect(tol, which); });
  if (!check_tol(tol)) return;
  trElemListTol& list = which == 0 ? static_cast<trElemListTol&>(small_elems_) : thin_elems_;
  list.set_tolerance(tol);
  delete_listed(list);
}

void trControl::action_height(double tol) { height_aspect(tol, 0); }

void trControl::action_aspect(double tol) { height_aspect(tol, 1); }

void trControl::action_cancelling(int mode) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_cancelling(mode); });
  bool is_changed = triblock_.cancelling(mode) != 0;
  if (tr_interrupt()) return;
  is_changed = triblock_.repeating() != 0 || is_changed;
  if (is_changed) triangle_update(1);
}

void trControl::action_overlapping(double tol) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_overlapping(tol); });
  if (!check_tol(tol)) return;
  overlap_elems_.set_tolerance(tol);
  delete_listed(overlap_elems_);
}

void trControl::action_intersecting(int limit) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_intersecting(limit); });
  isect_elems_.set_limit(limit);
  delete_listed(isect_elems_);
}

void trControl::action_overhanging(const giUnitVec3& up) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_overhanging(up); });
  overhang_elems_.set_up_vector(up);
  delete_listed(overhang_elems_);
}

void trControl::action_orient() {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_orient(); });
  if (triblock_.orient_normals()) triangle_update(1);
}

void trControl::action_reverse() {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_reverse(); });
  triblock_.reverse();
  if (triblock_.node_count() > 0) triangle_update(0);
}

void trControl::action_cure(int mode) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_cure(mode); });
  if (mode == 0) {
    sick_elems_.delete_elements();
    if (tr_interrupt()) return;
    triangle_update(1);
    sick_elems_.stale_ = 0;
  } else if (triblock_.cure_sick(mode)) {
    triangle_update(1);
  }
}

// The axis and the value are those of the host's workplane.
void trControl::action_slice(gi_Axis axis, double value, int side) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_slice(axis, value, side); });
  const WorkplaneInUse in_use(triblock_, active_workplane());
  if (triblock_.slice(axis, side, value, slice_tolerance)) triangle_update(1);
}

void trControl::action_transform_triangles(const giXform3& x) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_transform_triangles(x); });
  triblock_.transform(x);
  triangle_update(1);
}
