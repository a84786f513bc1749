#pragma once

#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "coordinate_rounding.h"
#include "hole_surroundings.h"
#include "repair_account.h"
#include "session.h"

/// Closes holes, each by the method that suits it, and by a simpler one where that fails or does harm.
///
/// All holes are closed in one attempt, and what was made is looked at together. When some patches cut through the mesh, fold onto it
/// or make edges of more than two triangles, the whole attempt is taken back and made again with the next method for these, until no
/// patch does harm. A hole for which no method is left stays open. A patch may cut through triangles where those along its rim cut
/// others already.
class HoleRepair {
 public:
  HoleRepair(Session& session, const RepairSettings& settings);

  /// Which holes are to be closed; by default all.
  void set_filter(std::function<bool(const FoundBoundary&)> is_wanted) { is_wanted_ = std::move(is_wanted); }
  /// Every attempt that stays lies in undo records of its own. Throws on interruption. `shells`: the survey of the mesh as it is.
  std::vector<HoleFate> run(const ShellSurvey& shells);

  /// How far rounding moved new nodes at most.
  double farthest_rounded() const { return farthest_rounded_; }
  /// The area of all patches.
  double new_area() const { return new_area_; }

 private:
  struct Plan {
    HoleFate fate;
    std::vector<HoleMethod> methods;  // those left, the one in use first
  };

  Plan plan_for(const FoundBoundary& hole, const HoleSurroundings& around) const;
  void plan(const ShellSurvey& shells);
  void attempt();
  void cap_holes();
  void fan_holes();
  bool cap(const FoundBoundary& hole, Plan& plan, HoleMethod method);
  bool look_at_patches(int first_new, bool is_last);
  void give_up_method(Plan& plan, const std::string& reason);
  void note_closed(int first_new, int first_node);

  Session& session_;
  trControl& control_;
  trTriBlock& mesh_;
  const RepairSettings& settings_;
  std::function<bool(const FoundBoundary&)> is_wanted_;
  std::map<RimKey, Plan> plans_;
  double farthest_rounded_ = 0.0;
  double new_area_ = 0.0;
};
