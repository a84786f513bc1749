#include <cstdio>
#include <charconv>
#include <cmath>
#include <memory>
#include <optional>

#include "arguments.h"
#include "command_line.h"
#include "interruption.h"
#include "json_values.h"
#include "mesh_writer.h"
#include "text.h"
#include "verbs.h"

namespace {

// A tolerance, or a ladder of them.
struct Ladder {
  double start = 0.0;
  double finish = 0.0;
  double step = 0.0;  // 0: there is only one

  bool is_one() const { return step == 0.0; }
};

struct StitchArguments {
  std::string input;
  std::string output;
  std::string tolerance;
  int passes = 10;
  int target = 0;
  bool merges_first = false;
  bool orients = false;
  bool makes_slivers = false;
  bool is_json = false;
};

// The state of a mesh's boundaries before or after.
struct BoundaryState {
  int boundaries = 0;
  int free_edges = 0;
  int triangles = 0;
  int nodes = 0;
};

// "0.01", "0.001..0.1/0.01"
std::optional<Ladder> ladder_in(const std::string& text) {
  Ladder ladder;
  const char* at = text.data();
  const char* const end = at + text.size();
  const auto take = [&](double& value) {
    const std::from_chars_result result = std::from_chars(at, end, value);
    at = result.ptr;
    return result.ec == std::errc() && std::isfinite(value) && value >= 0.0;
  };
  const std::size_t dots = text.find("..");
  if (dots == std::string::npos) {
    if (!take(ladder.start) || at != end) return std::nullopt;
    ladder.finish = ladder.start;
    return ladder;
  }
  const std::optional<std::vector<double>> start = numbers_in(text.substr(0, dots));
  if (!start || start->size() != 1 || start->front() < 0.0) return std::nullopt;
  ladder.start = start->front();
  at = text.data() + dots + 2;
  if (!take(ladder.finish) || at == end || *at++ != '/' || !take(ladder.step) || at != end) return std::nullopt;
  const bool is_climbing = ladder.finish >= ladder.start && ladder.step > 0.0 && (ladder.finish - ladder.start) / ladder.step <= 1e4;
  return is_climbing ? std::optional<Ladder>(ladder) : std::nullopt;
}

std::string ladder_problem(const std::string& text) {
  return ladder_in(text) ? "" : "'" + text + "' is neither a length from 0 up nor a ladder such as 0.001..0.1/0.01, of at most 10,000 steps";
}

BoundaryState state_of(Session& session) {
  trCycleArray& cycles = session.control.cycles();
  const int boundaries = cycles.num_boundaries();
  const BoundaryState state{boundaries, cycles.num_edges(), session.mesh.valid_elements(), session.mesh.valid_nodes()};
  Interruption::check();
  return state;
}

void stitch(trControl& control, const StitchArguments& arguments) {
  const Ladder ladder = *ladder_in(arguments.tolerance);
  control.start_undo("stitch");
  control.action_auto_stitch(ladder.is_one() ? Repeat : Multi, ladder.start, ladder.finish, ladder.step, arguments.passes,
                             arguments.merges_first, arguments.orients, 0, arguments.target);
  if (arguments.makes_slivers && !tr_interrupt()) control.action_stitch(ladder.finish);
  control.finish_undo(1);
}

std::string text_of(const StitchArguments& arguments, const ReadOutcome& read, const BoundaryState& before, const BoundaryState& after) {
  std::string text = printable(arguments.input) + ": " + name_of(read.format) + (read.is_complete ? "\n" : ", damaged\n");
  text += formatted("  %-12s %10s %10s\n", "", "before", "after");
  text += formatted("  %-12s %10d %10d\n", "boundaries", before.boundaries, after.boundaries);
  text += formatted("  %-12s %10d %10d\n", "free edges", before.free_edges, after.free_edges);
  text += formatted("  %-12s %10d %10d\n", "triangles", before.triangles, after.triangles);
  text += formatted("  %-12s %10d %10d\n", "nodes", before.nodes, after.nodes);
  return text;
}

Json json_of(const BoundaryState& state) {
  return {{"boundaries", state.boundaries}, {"free_edges", state.free_edges}, {"elements", state.triangles}, {"nodes", state.nodes}};
}

ExitCode run_stitch(Session& session, const StitchArguments& arguments) {
  const MeshFormat format = output_format(arguments.output);
  const ReadOutcome read = read_mesh(session, arguments.input);
  session.progress.begin("merging " + arguments.input);
  session.mesh.unduplicate_nodes(exact_copies);
  Interruption::check();
  const BoundaryState before = state_of(session);
  session.progress.begin("stitching " + arguments.input);
  stitch(session.control, arguments);
  Interruption::check();
  const BoundaryState after = state_of(session);
  write_mesh(session, {arguments.output, format, false, arguments.input});
  session.progress.erase();
  if (arguments.is_json) {
    std::printf("%s\n", line_of({{"file", arguments.input},
                                 {"format", name_of(read.format)},
                                 {"output", arguments.output},
                                 {"output_format", name_of(format)},
                                 {"tolerance", arguments.tolerance},
                                 {"before", json_of(before)},
                                 {"after", json_of(after)},
                                 {"complete", read.is_complete},
                                 {"warnings", session.messages.warnings()}})
                            .c_str());
  } else if (!session.is_quiet) {
    std::printf("%s%s: %s, written\n", text_of(arguments, read, before, after).c_str(), printable(arguments.output).c_str(), name_of(format));
  }
  return ExitCode::done;
}

}  // namespace

void add_stitch_verb(CommandLine& line) {
  const auto arguments = std::make_shared<StitchArguments>();
  CLI::App* verb = line.add_verb("stitch", "Join boundaries that lie along each other",
                                 [arguments](Session& session) { return run_stitch(session, *arguments); });
  add_input(verb, arguments->input);
  add_output(verb, arguments->output);
  verb->add_option("--tol", arguments->tolerance,
                   "How far apart boundaries may be, in the units of the model, or a ladder\n"
                   "of such tolerances from A to B, climbed until no boundary is left")
      ->required()
      ->check(CLI::Validator(ladder_problem, ""))
      ->type_name("LENGTH|A..B/STEP");
  add_count(verb, "--passes", arguments->passes, 1, "Passes at each tolerance at most")->capture_default_str();
  add_count(verb, "--target", arguments->target, 0, "Boundaries to be left, where some belong to the model")->capture_default_str();
  verb->add_flag("--merge", arguments->merges_first, "Merge all nodes within the first tolerance, not only those of boundaries");
  verb->add_flag("--orient", arguments->orients, "Turn triangles over so that neighbours agree, at each tolerance");
  verb->add_flag("--slivers", arguments->makes_slivers,
                 "At the end join nodes to edges in line with them by thin triangles");
  verb->add_flag("--json", arguments->is_json, "Print one JSON object with the boundaries before and after");
  line.set_notes(verb,
                 "At each tolerance nodes of boundaries are merged, triangles back to back and repeated ones deleted, and edges\n"
                 "split where nodes of another boundary lie on them.",
                 "mendex stitch part.stl -o closed.stl --tol 0.001..0.05/0.005");
}
