#pragma once

#include <functional>
#include <optional>

#include "repair_account.h"
#include "session.h"
#include "undo_mark.h"

/// Repairs the mesh of a session, step by step, each in undo records of its own. A step, or a part of one, that leaves the mesh worse is
/// taken back and told as refused: more open edges, more edges whose triangles disagree or that more than two share, fewer closed
/// shells, or, of a patch, a cut through the mesh. None but `drop` may delete all of a shell.
class Repairer {
 public:
  Repairer(Session& session, const RepairSettings& settings);

  /// Throws on interruption; the mesh is then somewhere between.
  RepairAccount run();

 private:
  using Edit = std::function<void(StepAccount&)>;

  void step(RepairStep which, const Edit& edit);
  bool try_edit(StepAccount& account, const std::string& what, const std::function<void()>& edit);
  RepairState measure();
  const ShellSurvey& survey();
  void take_back(UndoMark& mark);
  std::string harm_done(const RepairState& now, const ShellSurvey* shells = nullptr) const;
  int shells_lost_since(const ShellSurvey& before) const;

  void weld(StepAccount& account);
  void clean(StepAccount& account);
  void align(StepAccount& account);
  void join(StepAccount& account);
  void join_within(StepAccount& account, double tolerance);
  void drop(StepAccount& account);
  void cure(StepAccount& account);
  void cure_clusters(StepAccount& account);
  void fill(StepAccount& account);
  void orient(StepAccount& account);
  void judge_budget();
  void list_defects();

  Session& session_;
  trControl& control_;
  trTriBlock& mesh_;
  const RepairSettings& settings_;
  RepairState state_;
  std::optional<ShellSurvey> survey_;  // of the mesh as it is, when known
  double whole_area_ = 0.0;
  RepairAccount account_;
};
