#pragma once

#include <string>
#include <vector>

#include "control/control.h"
#include "support/block_snapshot.h"
#include "support/captured_output.h"
#include "support/numbers.h"
#include "support/shapes.h"
#include "support/validator.h"

constexpr const char* no_effect = "\n! Operation had no effect. No undo information stored. !\n";
constexpr const char* nothing_to_undo = " NOTHING TO UNDO\n";
constexpr const char* negative_tolerance = " Error: tol must not be less than zero\n";

/// A controller with a mesh that notes what it is told, in a workplane of its own.
class Host : public trControl {
 public:
  explicit Host(const Shape& shape = {}) { add_to(triblock(), shape); }
  void control_update(int what) override { updates.push_back(what); }
  const ccWorkplane& active_workplane() const override { return plane; }

  using trControl::recognize_extension;
  using trControl::save_selection_data;
  using trControl::triangle_update;

  int select(const intcoSet& ids, int pick = -1) {
    double length = 0.0;
    return select_cycles(ids, length, pick, intcoSet(), -1, -1);
  }
  void select_all() {
    for (int i = 0; i < cycles().num_boundaries(); ++i) select({i});
  }
  std::vector<trElementList*> lists() {
    return {&sick_elems(), &small_elems(), &thin_elems(), &overlap_elems(), &isect_elems(), &overhang_elems()};
  }
  int boundaries() { return cycles().num_boundaries(); }
  int valid_elements() const { return triblock().valid_elements(); }
  /// What differs from an earlier state; empty when nothing does.
  std::string difference(const BlockSnapshot& before) const { return before.difference(BlockSnapshot(triblock())); }

  std::vector<int> updates;
  ccWorkplane plane;
};
