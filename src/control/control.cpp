// The controller's state and settings.

#include "control/control.h"

#include "progress/message.h"

namespace {

constexpr double default_shape_tol = 0.0001;
constexpr double default_overlap_deg = 2.5;
constexpr int default_isect_limit = 1000;

}  // namespace

trControl::trControl()
    : cycles_(&triblock_),
      undo_hist_(&triblock_),
      sick_elems_(&triblock_),
      small_elems_(&triblock_, 0.0),
      thin_elems_(&triblock_, 0.0),
      overlap_elems_(&triblock_, 0.0),
      isect_elems_(&triblock_, default_isect_limit),
      overhang_elems_(&triblock_),
      section_(&triblock_) {
  reset_defaults();
  triblock_changed_ = 0;
}

trControl::~trControl() = default;

void trControl::control_update(int) {}

const ccWorkplane& trControl::active_workplane() const { return ccWorkplaneList::g_invalid_workplane; }

giVector3 trControl::apply_workplane(const giVector3& v) const { return v; }

giPoint3 trControl::apply_workplane(const giPoint3& p) const { return p; }

void trControl::reset_defaults() {
  trismooth_ = 1;
  preserve_ = 0;
  stl_start_ = 1;
  stl_stop_ = 0;
  rwrite_flag_ = 0;
  small_elems_.set_tolerance(default_shape_tol);
  thin_elems_.set_tolerance(default_shape_tol);
  overlap_elems_.set_tolerance(default_overlap_deg);
  isect_elems_.set_limit(default_isect_limit);
  triblock_.reset_derived_state();
}

void trControl::toggle_flag(trFlagAction action, int& flag) {
  switch (action) {
    case tr_flag_off: flag = 0; break;
    case tr_flag_toggle: flag = !flag; break;
    case tr_flag_on: flag = 1; break;
  }
}

void trControl::print_flag(int flag, const char* name) const {
  MessageLine().raw(name).text(" is ").text(flag ? "ON" : "OFF");
}

void trControl::triangle_update(int what) {
  sick_elems_.invalidate();
  small_elems_.invalidate();
  thin_elems_.invalidate();
  overlap_elems_.invalidate();
  isect_elems_.invalidate();
  overhang_elems_.invalidate();
  triblock_.reset_derived_state();
  control_update(what);
}

void trControl::action_verbose(trFlagAction action) {
  int flag = triblock_.verbose;
  toggle_flag(action, flag);
  if (flag != triblock_.verbose) triblock_.verbose = !triblock_.verbose;
  print_verbose();
}

void trControl::print_verbose() const { print_flag(triblock_.verbose, tr_brnknls("Verbose printing")); }

void trControl::action_undomode(trFlagAction action) {
  int flag = undo_hist_.full_history();
  toggle_flag(action, flag);
  if (flag != undo_hist_.full_history()) undo_hist_.toggle_undo();
  print_undomode();
}

void trControl::print_undomode() const { print_flag(undo_hist_.full_history(), tr_brnknls("Full undo history")); }

void trControl::action_trismooth(trFlagAction action) {
  toggle_flag(action, trismooth_);
  print_trismooth();
}

void trControl::print_trismooth() const { print_flag(trismooth_, tr_brnknls("Trismooth")); }

void trControl::action_preserve(trFlagAction action) {
  toggle_flag(action, preserve_);
  if (!preserve_ && triblock_.node_data_size() != 0) {
    triblock_.set_node_data_size(0);
    print_message("Node attributes deleted");
    control_update(0);
  }
  print_preserve();
}

void trControl::print_preserve() const { print_flag(preserve_, tr_brnknls("Preserve")); }

void trControl::action_stlrange(int start, int stop) {
  const bool bad_start = start < 1;
  const bool bad_stop = stop != 0 && stop < start;
  if (bad_start) print_message(" Error: STL_START must be at least 1");
  if (bad_stop) print_message(" Error: STL_STOP cannot be less than STL_START!");
  if (!bad_start && !bad_stop) {
    stl_start_ = start;
    stl_stop_ = stop;
  }
  print_stlrange();
}

void trControl::print_stlrange() const {
  MessageLine line;
  line.text("Reading STL files: ");
  if (stl_stop_ != 0 && stl_start_ != 1) {
    line.text("triangles ").number(stl_start_).text(" to ").number(stl_stop_).text(" will be read.");
  } else if (stl_stop_ != 0) {
    line.text("only the first ").number(stl_stop_).text(" triangles will be read.");
  } else if (stl_start_ == 1) {
    line.text("all triangles will be read.");
  } else {
    line.text("the first ").number(stl_start_ - 1).text(" triangles will be skipped.");
  }
}
