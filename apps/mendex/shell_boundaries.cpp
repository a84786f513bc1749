// The shell's commands for boundaries: selecting, stitching, closing holes.

#include <mendexlib.h>

#include <algorithm>

#include "failure.h"
#include "holes.h"
#include "interruption.h"
#include "command_shell.h"
#include "shell_words.h"
#include "text.h"

namespace {

using Action = ShellCommand::Action;

[[noreturn]] void no_boundary(int number) {
  throw Failure(ExitCode::wrong_usage, "there is no boundary " + std::to_string(number) + "; boundaries lists those that there are");
}

// --- listing and selecting --------------------------------------------------------------------------------------------------------------

void list_boundaries(CommandShell& shell) {
  const intcoSet& selection = shell.control.cycles().selection;
  const std::vector<FoundBoundary> found = find_boundaries(shell.control.cycles());
  Interruption::check();
  for (const FoundBoundary& boundary : found) {
    shell.result(formatted("%c %-6d %8d edges, length %s, round ", selection.member(boundary.number) ? '*' : ' ', boundary.number,
                           boundary.edges(), shell.session.units.length(boundary.length, 7).c_str()) +
                 place(boundary.at) + "\n");
  }
  shell.result("  " + counted(static_cast<long long>(found.size()), "boundary", "boundaries") + "\n");
}

void list_nodes(CommandShell& shell, const std::vector<int>& numbers) {
  const std::vector<FoundBoundary> found = find_boundaries(shell.control.cycles());
  for (const int number : numbers) {
    if (number >= static_cast<int>(found.size())) no_boundary(number);
    std::string text = std::to_string(number) + " has the nodes";
    for (const int node : found[static_cast<std::size_t>(number)].nodes) text += " " + std::to_string(node);
    shell.result(text + "\n");
  }
}

Action parse_boundaries(CommandShell& shell, ShellWords& words) {
  if (words.has_number()) {
    const std::vector<int> numbers = words.counts("numbers of boundaries");
    return [&shell, numbers] { list_nodes(shell, numbers); };
  }
  const std::string path = words.is_empty() ? "" : words.text("a file");
  return [&shell, path] {
    if (path.empty()) return list_boundaries(shell);
    shell.write_through(path, [&](std::FILE* file) { shell.control.cycles().write(file); });
  };
}

// The numbers of boundaries, all of them where none is given.
intcoSet boundaries_of(CommandShell& shell, const std::vector<int>& numbers) {
  const int count = shell.control.cycles().num_boundaries();
  Interruption::check();
  intcoSet set;
  for (int k = 0; numbers.empty() && k < count; ++k) set.add(k);
  for (const int number : numbers) {
    if (number >= count) no_boundary(number);
    set.add(number);
  }
  return set;
}

void expect_nodes_on(CommandShell& shell, const std::vector<int>& numbers, const std::vector<int>& picks) {
  if (picks.empty()) return;
  const std::vector<int> nodes = find_boundaries(shell.control.cycles())[static_cast<std::size_t>(numbers.front())].nodes;
  for (const int pick : picks) {
    if (std::find(nodes.begin(), nodes.end(), pick) != nodes.end()) continue;
    throw Failure(ExitCode::wrong_usage, "boundary " + std::to_string(numbers.front()) + " has no node " + std::to_string(pick));
  }
}

// A boundary that is selected already takes picks, so it is selected first.
void select(CommandShell& shell, const std::vector<int>& numbers, const std::vector<int>& picks) {
  const intcoSet set = boundaries_of(shell, numbers);
  expect_nodes_on(shell, numbers, picks);
  double average_length = 0.0;
  intcoSet fresh;
  for (intcoSet::coIterator it(set); ++it;) {
    if (!shell.control.cycles().selection.member(it())) fresh.add(it());
  }
  shell.control.select_cycles(fresh, average_length, -1, intcoSet(), -1, -1);
  for (const int pick : picks) shell.control.select_cycles(set, average_length, pick, intcoSet(), -1, -1);
  const int selected = shell.control.cycles().selection.count();
  shell.note("  " + counted(selected, "boundary", "boundaries") + " selected\n");
}

Action parse_select(CommandShell& shell, ShellWords& words) {
  std::vector<int> numbers, picks;
  if (!words.take("all")) numbers = words.counts("all, or numbers of boundaries");
  if (words.take("at")) {
    if (numbers.size() != 1) words.refuse("nodes choose a part of one boundary");
    picks = words.counts("nodes of the boundary");
    if (picks.size() > 3) words.refuse("there are two or three nodes");
  }
  return [&shell, numbers, picks] { select(shell, numbers, picks); };
}

Action parse_unselect(CommandShell& shell, ShellWords& words) {
  std::vector<int> numbers;
  if (!words.is_empty() && !words.take("all")) numbers = words.counts("all, or numbers of boundaries");
  return [&shell, numbers] {
    double average_length = 0.0;
    shell.control.unselect_cycles(boundaries_of(shell, numbers), average_length);
  };
}

// --- stitching ----------------------------------------------------------------------------------------------------------------------------

Action parse_bundup(CommandShell& shell, ShellWords& words) {
  const double tolerance = words.length("a tolerance");
  return [&shell, tolerance] { shell.control.action_bundup(tolerance); };
}

Action parse_stitch(CommandShell& shell, ShellWords& words) {
  const double tolerance = words.length("a tolerance");
  return [&shell, tolerance] { shell.control.action_stitch(tolerance); };
}

Action parse_staple(CommandShell& shell, ShellWords& words) {
  const double tolerance = words.length("a tolerance");
  return [&shell, tolerance] { shell.control.action_staple(tolerance); };
}

Action parse_astaple(CommandShell& shell, ShellWords& words) {
  const double tolerance = words.length("a tolerance");
  const int limit = words.is_empty() ? 10 : words.passes();
  return [&shell, tolerance, limit] { shell.control.action_astaple(tolerance, limit); };
}

struct AutoStitch {
  trAutoMode mode = Single;
  double start = 0.0;
  double finish = 0.0;
  double step = 0.0;
  int limit = 10;
  bool merges_first = false;
  bool orients = false;
  bool cancels = false;
  int target = 0;
};

void take_ladder(AutoStitch& stitch, ShellWords& words) {
  constexpr double most_steps = 1e4;
  stitch.finish = words.length("the last tolerance");
  stitch.step = words.spacing("a step between tolerances");
  if (stitch.finish < stitch.start) words.refuse("the last tolerance is below the first");
  if (!((stitch.finish - stitch.start) / stitch.step <= most_steps)) words.refuse("these are more than 10,000 steps");
}

void take_options(AutoStitch& stitch, ShellWords& words) {
  while (!words.is_empty()) {
    switch (words.choice({"passes", "merge", "orient", "cancel", "target"})) {
      case 0: stitch.limit = words.passes(); break;
      case 1: stitch.merges_first = true; break;
      case 2: stitch.orients = true; break;
      case 3: stitch.cancels = true; break;
      default: stitch.target = words.count("a number of boundaries", 0); break;
    }
  }
}

Action parse_auto_stitch(CommandShell& shell, ShellWords& words) {
  AutoStitch s;
  s.mode = static_cast<trAutoMode>(Single + words.choice({"single", "repeat", "multi"}));
  s.start = s.finish = words.length("a tolerance");
  if (s.mode == Multi) take_ladder(s, words);
  take_options(s, words);
  return [&shell, s] {
    shell.control.action_auto_stitch(s.mode, s.start, s.finish, s.step, s.limit, s.merges_first, s.orients, s.cancels, s.target);
  };
}

// --- closing ------------------------------------------------------------------------------------------------------------------------------

// Whether there is anything to close. Of a mesh without boundaries none can be selected, and scripts go on.
bool has_selection(CommandShell& shell) {
  if (shell.control.cycles().selection.count() != 0) return true;
  if (shell.control.cycles().num_boundaries() == 0) return false;
  throw Failure(ExitCode::defects_found, "no boundary is selected; select all, or those that boundaries lists");
}

Action parse_fill(CommandShell& shell, ShellWords& words) {
  const int is_curved = words.take("curved");
  return [&shell, is_curved] {
    if (has_selection(shell)) shell.control.action_fill(is_curved);
  };
}

// The mean length of the edges of the selected boundaries.
double mean_edge_length(const CommandShell& shell) {
  double length = 0.0;
  int edges = 0;
  for (const FoundBoundary& boundary : find_boundaries(shell.control.cycles())) {
    if (!shell.control.cycles().selection.member(boundary.number)) continue;
    length += boundary.length;
    edges += boundary.edges();
  }
  return edges == 0 ? 0.0 : length / edges;
}

struct Capping {
  double spacing = 0.0;  // 0: the mean edge length
  int is_curved = 0;
};

// All of the holes, or none.
void cap(CommandShell& shell, double spacing, int is_curved) {
  at2PlaneError error = at2_success;
  const int is_tried = shell.control.action_cap(spacing, error, is_curved);
  shell.expect_no_complaint();
  Interruption::check();
  if (!is_tried || error != at2_success) {
    throw Failure(ExitCode::defects_found, std::string("a hole cannot be capped: ") + reason_of(error) + "; cap_ext caps those that can be");
  }
}

// Each hole in a bracket of its own.
void cap_each(CommandShell& shell, double spacing, int is_curved) {
  at2PlaneError error = at2_success;
  const int record = shell.control.undo_hist().current();
  const int is_any_closed = shell.control.action_cap_ext(spacing, is_curved, error);
  if (is_any_closed || shell.control.undo_hist().current() != record) shell.is_changed = true;
  shell.control.triangle_update(1);
  Interruption::check();
  if (is_any_closed && error == at2_success) return;
  const char* const reason = error == at2_several_failed ? "there are several reasons" : reason_of(error);
  throw Failure(ExitCode::defects_found, std::string(is_any_closed ? "some holes stay" : "each hole stays") + " open: " + reason);
}

Action capper(CommandShell& shell, ShellWords& words, bool is_extended) {
  Capping capping;
  capping.is_curved = words.take("curved");
  if (!capping.is_curved) {
    if (!words.is_empty() && !words.take("auto")) capping.spacing = words.spacing("a distance between nodes");
    capping.is_curved = words.take("curved");
  }
  return [&shell, capping, is_extended] {
    if (!has_selection(shell)) return;
    const double spacing = capping.spacing > 0.0 ? capping.spacing : mean_edge_length(shell);
    is_extended ? cap_each(shell, spacing, capping.is_curved) : cap(shell, spacing, capping.is_curved);
  };
}

Action parse_cap(CommandShell& shell, ShellWords& words) { return capper(shell, words, false); }
Action parse_cap_ext(CommandShell& shell, ShellWords& words) { return capper(shell, words, true); }

}  // namespace

ShellCommandGroup shell_boundary_commands() {
  return {"Boundaries",
         {{"boundaries", nullptr, "[N...|FILE]",
           "List the boundaries, those selected with a star, or the nodes of some, or draw all into a .pic file",
           "boundaries", false, parse_boundaries},
          {"select", "select_cycles", "all|N... [at NODE NODE [NODE]]",
           "Select boundaries for fill and cap, or the part of one between nodes",
           "select 0", false, parse_select},
          {"unselect", "unselect_cycles", "[all|N...]",
           "Take boundaries out of the selection",
           "unselect all", false, parse_unselect},
          {"bundup", "undup_boundaries", "TOL",
           "Merge nodes of boundaries up to TOL apart",
           "bundup 0.001", true, parse_bundup},
          {"stitch", nullptr, "TOL",
           "Join nodes of boundaries to edges in line with them by thin triangles",
           "stitch 0.001", true, parse_stitch},
          {"staple", "superstitch", "TOL",
           "Split edges of boundaries where nodes of boundaries lie on them",
           "staple 0.001", true, parse_staple},
          {"astaple", nullptr, "TOL [PASSES]",
           "The same until a pass changes nothing",
           "astaple 0.001", true, parse_astaple},
          {"auto_stitch", nullptr, "single TOL|repeat TOL|multi FIRST LAST STEP [passes N] [merge] [orient] [cancel] [target N]",
           "Merge, clean and staple boundaries: once, in several passes, or so for each of a range of tolerances",
           "auto_stitch multi 0.001 0.05 0.005 orient", true, parse_auto_stitch},
          {"fill", nullptr, "[curved]",
           "Close the selected boundaries by a triangle, two, or a fan",
           "fill", true, parse_fill},
          {"cap", nullptr, "[SPACING|auto] [curved]",
           "Close the selected boundaries by triangles with nodes at a spacing: all of them or none",
           "cap 5", true, parse_cap},
          {"cap_ext", nullptr, "[SPACING|auto] [curved]",
           "The same for those that can be closed, each to be undone by itself",
           "cap_ext auto", false, parse_cap_ext}}};
}
