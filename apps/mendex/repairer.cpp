#include "repairer.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "coordinate_rounding.h"
#include "element_snapshot.h"
#include "hole_repair.h"
#include "failure.h"
#include "interruption.h"
#include "mesh_orienter.h"
#include "report.h"
#include "sick_cure.h"
#include "text.h"
#include "tolerance_ladder.h"

namespace {

constexpr int staple_passes = 10;

double milliseconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

Repairer::Repairer(Session& session, const RepairSettings& settings)
    : session_(session), control_(session.control), mesh_(session.mesh), settings_(settings) {}

RepairAccount Repairer::run() {
  step(RepairStep::weld, [this](StepAccount& account) { weld(account); });
  account_.before = state_ = measure();
  account_.before.boundaries = control_.cycles().num_boundaries();
  whole_area_ = state_.area;
  step(RepairStep::clean, [this](StepAccount& account) { clean(account); });
  step(RepairStep::align, [this](StepAccount& account) { align(account); });
  const double volume = state_.volume;
  step(RepairStep::join, [this](StepAccount& account) { join(account); });
  step(RepairStep::drop, [this](StepAccount& account) { drop(account); });
  step(RepairStep::cure, [this](StepAccount& account) { cure(account); });
  step(RepairStep::fill, [this](StepAccount& account) { fill(account); });
  account_.budget.volume_change = std::fabs(std::fabs(state_.volume) - std::fabs(volume));
  step(RepairStep::orient, [this](StepAccount& account) { orient(account); });
  account_.after = state_;
  account_.after.boundaries = state_.edges.open == 0 && state_.edges.opposed == 0 ? 0 : control_.cycles().num_boundaries();
  list_defects();
  judge_budget();
  return std::move(account_);
}

void Repairer::step(RepairStep which, const Edit& edit) {
  StepAccount account;
  account.step = which;
  const auto start = std::chrono::steady_clock::now();
  if (settings_.skips_step(which)) {
    account.result = StepResult::skipped;
  } else {
    session_.progress.begin(purpose_of(which));
    edit(account);
    Interruption::check();
    if (account.result == StepResult::nothing_to_do && !account.refused.empty()) account.result = StepResult::refused;
  }
  account.milliseconds = milliseconds_since(start);
  account_.steps.push_back(std::move(account));
}

const ShellSurvey& Repairer::survey() {
  if (!survey_) survey_ = survey_shells(mesh_);
  return *survey_;
}

void Repairer::take_back(UndoMark& mark) {
  survey_.reset();
  mark.take_back();
}

// After every edit that may stay.
RepairState Repairer::measure() {
  survey_.reset();
  const ShellSurvey& survey = this->survey();
  RepairState state;
  state.triangles = mesh_.valid_elements();
  state.nodes = mesh_.valid_nodes();
  state.shells = static_cast<int>(survey.shells.size());
  state.inside_out = static_cast<int>(inside_out_shells(survey.shells).size());
  state.edges = survey.edges;
  for (const Shell& shell : survey.shells) {
    state.closed_shells += shell.is_closed;
    state.area += shell.area;
    state.volume += shell.volume;
  }
  return state;
}

std::string Repairer::harm_done(const RepairState& now, const ShellSurvey* shells) const {
  const int lost = shells == nullptr ? 0 : shells_lost_since(*shells);
  if (lost > 0) return "nothing of " + counted(lost, "shell", "shells");
  const EdgeCensus &before = state_.edges, &after = now.edges;
  if (after.open > before.open) return counted(after.open - before.open, "more open edge", "more open edges");
  if (after.sick > before.sick) return counted(after.sick - before.sick, "more edge of more than two triangles", "more edges of more than two triangles");
  if (after.opposed > before.opposed) return counted(after.opposed - before.opposed, "more edge whose triangles disagree", "more edges whose triangles disagree");
  return "";
}

// Shells of which no triangle is there any more.
int Repairer::shells_lost_since(const ShellSurvey& before) const {
  std::vector<bool> is_there(before.shells.size());
  for (int e = 1; e < mesh_.element_count(); ++e) {
    const int shell = static_cast<std::size_t>(e) < before.shell_of.size() ? before.shell_of[static_cast<std::size_t>(e)] : -1;
    if (shell >= 0 && mesh_.element(e).valid()) is_there[static_cast<std::size_t>(shell)] = true;
  }
  return static_cast<int>(std::count(is_there.begin(), is_there.end(), false));
}

// In an undo bracket, kept when it did some good, or at least no harm. Whether it was kept.
bool Repairer::try_edit(StepAccount& account, const std::string& what, const std::function<void()>& edit) {
  const ShellSurvey before = survey();
  UndoMark mark(control_);
  control_.start_undo(name_of(account.step));
  try {
    edit();
  } catch (const Failure&) {
    control_.finish_undo(0);
    throw;
  }
  if (tr_interrupt()) control_.finish_undo(0);
  Interruption::check();
  control_.finish_undo(1);
  const RepairState now = measure();
  const std::string harm = harm_done(now, &before);
  if (harm.empty()) {
    state_ = now;
    account.result = StepResult::changed;
    return true;
  }
  take_back(mark);
  account.refused.push_back(what + ": it would leave " + harm);
  return false;
}

// Rounds, too, so that copies are told as the file that is written will tell them.
void Repairer::weld(StepAccount& account) {
  const int nodes = mesh_.valid_nodes(), triangles = mesh_.valid_elements();
  control_.start_undo("weld");
  int rounded = 0;
  if (settings_.target) rounded = CoordinateRounding(*settings_.target).round(mesh_, 1, account_.budget.moved);
  control_.action_undup(exact_copies);
  control_.finish_undo(!tr_interrupt());
  Interruption::check();
  if (rounded > 0) account.count("coordinates rounded to what the target holds", rounded);
  account.count(exact_copies_merged, nodes - mesh_.valid_nodes());
  account.count("collapsed triangles deleted", triangles - mesh_.valid_elements());
  if (rounded > 0 || nodes != mesh_.valid_nodes()) account.result = StepResult::changed;
}

// A mesh without such edges can have no repeated triangles but whole shells that lie on each other, which are left. Where deleting
// pairs that lie back to back tears the mesh open, only copies are deleted.
void Repairer::clean(StepAccount& account) {
  if (state_.edges.opposed == 0 && state_.edges.sick == 0) return;
  const int before = mesh_.valid_elements();
  const double area = state_.area;
  const bool is_kept = try_edit(account, "deleting triangles back to back", [this] { control_.action_cancelling(1); }) ||
                       try_edit(account, "deleting repeated triangles", [this] {
                         if (mesh_.repeating()) mesh_.force_changed_status(1);
                       });
  if (!is_kept) return;
  const int deleted = before - mesh_.valid_elements();
  account.result = deleted == 0 ? StepResult::nothing_to_do : StepResult::changed;
  account_.budget.removed_area += std::max(0.0, area - state_.area);
  account.count("repeated and back-to-back triangles deleted", deleted);
}

void Repairer::align(StepAccount& account) {
  if (state_.edges.opposed == 0) return;
  int turned = 0;
  if (try_edit(account, "turning triangles over", [&] { turned = MeshOrienter(control_).make_consistent(); })) {
    if (turned == 0) account.result = StepResult::nothing_to_do;
    account.count("triangles turned over", turned);
  }
}

void Repairer::join(StepAccount& account) {
  if (state_.edges.open == 0) return;
  const int nodes = mesh_.valid_nodes(), triangles = mesh_.valid_elements(), open = state_.edges.open;
  const ToleranceLadder ladder(control_, settings_);
  for (const double tolerance : ladder.rungs()) {
    if (state_.edges.open == 0) break;
    join_within(account, tolerance);
  }
  if (!ladder.rungs().empty()) {
    account.parameters.emplace_back("from", ladder.rungs().front());
    account.parameters.emplace_back("to", ladder.rungs().back());
  }
  account.count("nodes merged", nodes - mesh_.valid_nodes());
  const int more = mesh_.valid_elements() - triangles;
  account.count(more > 0 ? "triangles more by stapling" : "triangles fewer by merging", std::abs(more));
  account.count("open edges joined", open - state_.edges.open);
}

// A pass that changes nothing leaves no record.
void Repairer::join_within(StepAccount& account, double tolerance) {
  trCycleArray& cycles = control_.cycles();
  UndoMark mark(control_);
  const auto bracketed = [this](const auto& edit) {
    control_.start_undo("join");
    edit();
    control_.finish_undo(!tr_interrupt());
    Interruption::check();
  };
  bracketed([&] { control_.action_bundup(tolerance); });
  if (mark.operations() > 0) bracketed([&] { control_.action_cancelling(1); });
  if (cycles.num_edges() != 0) bracketed([&] { control_.action_astaple(tolerance, staple_passes); });
  if (mark.operations() == 0) return;
  const RepairState now = measure();
  const std::string harm = harm_done(now);
  if (!harm.empty()) {
    take_back(mark);
    account.refused.push_back("joining within " + session_.units.length(tolerance, 4) + ": it would leave " + harm);
    return;
  }
  state_ = now;
  account.result = StepResult::changed;
  account_.budget.moved = std::max(account_.budget.moved, tolerance);  // no node and no edge moves farther
}

void Repairer::drop(StepAccount& account) {
  if (!settings_.specks) return;
  const double least = settings_.specks->resolve(whole_area_);
  std::vector<bool> is_speck;
  int specks = 0;
  for (const Shell& shell : survey().shells) {
    is_speck.push_back(shell.area < least);
    specks += shell.area < least;
  }
  account.parameters.emplace_back("area", least);
  if (specks == 0) return;
  control_.start_undo("drop");
  for (int e = 1; e < mesh_.element_count(); ++e) {
    const int shell = survey().shell_of[static_cast<std::size_t>(e)];
    if (shell < 0 || !is_speck[static_cast<std::size_t>(shell)]) continue;
    account_.budget.removed_area += area_of(mesh_, e);
    mesh_.delete_element(e);
  }
  mesh_.force_changed_status(1);
  control_.finish_undo(1);
  const int before = state_.triangles;
  state_ = measure();
  account.result = StepResult::changed;
  account.count("shells dropped", specks);
  account.count("triangles in them", before - state_.triangles);
}

// Loose flaps first, which costs least; then what a look at each cluster of such edges finds.
void Repairer::cure(StepAccount& account) {
  if (state_.edges.sick == 0) return;
  const int sick = state_.edges.sick;
  const int before = mesh_.valid_elements();
  const double area = state_.area;
  if (try_edit(account, "deleting fins", [this] { mesh_.cure_sick_fins(); })) {
    if (before == mesh_.valid_elements()) account.result = StepResult::nothing_to_do;
    account.count("triangles of fins deleted", before - mesh_.valid_elements());
    account_.budget.removed_area += std::max(0.0, area - state_.area);
  }
  if (state_.edges.sick > 0) cure_clusters(account);
  account.count("edges cured", sick - state_.edges.sick);
}

void Repairer::cure_clusters(StepAccount& account) {
  const ShellSurvey before = survey();
  UndoMark mark(control_);
  const CureResult result = SickCure(session_, settings_).run();
  if (result.refused > 0) {
    account.refused.push_back("deleting triangles of " + counted(result.refused, "cluster of edges", "clusters of edges") +
                              " of more than two: it would leave as many, or open edges");
  }
  if (result.triangles_deleted == 0) return;
  const RepairState now = measure();
  const std::string harm = harm_done(now, &before);
  if (!harm.empty()) {
    take_back(mark);
    account.refused.push_back("deleting triangles of edges of more than two: it would leave " + harm);
    return;
  }
  state_ = now;
  account.result = StepResult::changed;
  account.count("triangles of such edges deleted", result.triangles_deleted);
  account.count("holes closed after it", result.holes_closed);
  account_.budget.removed_area += result.removed_area;
  account_.budget.new_area += result.new_area;
}

void Repairer::fill(StepAccount& account) {
  if (state_.edges.open == 0) return;
  UndoMark mark(control_);
  HoleRepair holes(session_, settings_);
  std::vector<HoleFate> fates = holes.run(survey());
  const RepairState now = measure();
  const std::string harm = harm_done(now);
  if (!harm.empty()) {
    take_back(mark);
    account.refused.push_back("closing holes: it would leave " + harm);
    for (HoleFate& fate : fates) {
      if (fate.kind != HoleFate::Kind::closed) continue;
      fate.kind = HoleFate::Kind::refused;
      fate.reason = "closing the holes would leave " + harm;
    }
  } else {
    state_ = now;
    account_.budget.new_area += holes.new_area();
    account_.budget.moved = std::max(account_.budget.moved, holes.farthest_rounded());
  }
  long long closed = 0, triangles = 0, nodes = 0, refused = 0;
  for (const HoleFate& fate : fates) {
    if (fate.kind == HoleFate::Kind::closed) {
      ++closed;
      triangles += fate.triangles;
      nodes += fate.nodes;
    }
    refused += fate.kind == HoleFate::Kind::refused;
    account_.sheets += fate.kind == HoleFate::Kind::kept;
  }
  if (closed > 0) account.result = StepResult::changed;
  account.count("holes closed", closed);
  account.count("triangles added", triangles);
  account.count("nodes added", nodes);
  account.count("holes refused", refused);
  account.count("rims of sheets kept", account_.sheets);
  account_.holes = std::move(fates);
}

void Repairer::orient(StepAccount& account) {
  if (state_.edges.opposed == 0 && state_.inside_out == 0) return;
  int turned = 0, shells = 0;
  MeshOrienter orienter(control_);
  const bool is_consistent = state_.edges.opposed == 0 || try_edit(account, "turning triangles over", [&] { turned = orienter.make_consistent(); });
  const bool is_outward = state_.inside_out == 0 || try_edit(account, "turning shells outward", [&] { shells = orienter.make_outward(); });
  if (!is_consistent && !is_outward) return;
  if (!is_consistent) turned = 0;
  if (turned == 0 && shells == 0) account.result = StepResult::nothing_to_do;
  account.count("triangles turned over", turned);
  account.count("shells turned outward", shells);
}

void Repairer::judge_budget() {
  BudgetAccount& budget = account_.budget;
  const RepairLimits& limits = settings_.limits;
  using Print = std::string (Units::*)(double, int) const;
  const auto judge = [&](const char* what, double value, double most, Print print) {
    const Units& units = session_.units;
    if (value > most) budget.passed.push_back(std::string(what) + ": " + (units.*print)(value, 6) + ", allowed " + (units.*print)(most, 6));
  };
  const RepairState& before = account_.before;
  if (limits.move) judge("the farthest move", budget.moved, limits.move->resolve(mesh_), &Units::length);
  if (limits.removed_area) judge("area removed", budget.removed_area, limits.removed_area->resolve(before.area), &Units::area);
  if (limits.new_area) judge("area added", budget.new_area, limits.new_area->resolve(before.area), &Units::area);
  if (limits.volume_change) judge("change of volume", budget.volume_change, limits.volume_change->resolve(std::fabs(before.volume)), &Units::volume);
}
