#include <cstdio>
#include <memory>
#include <optional>

#include "arguments.h"
#include "command_line.h"
#include "interruption.h"
#include "json_values.h"
#include "length_argument.h"
#include "mesh_writer.h"
#include "text.h"
#include "verbs.h"

namespace {

// A tolerance, or a ladder of them, as it was given.
struct LadderArgument {
  LengthArgument start;
  LengthArgument finish;
  std::optional<LengthArgument> step;  // none: there is only one tolerance

  bool has_shares() const { return start.is_relative() || finish.is_relative() || (step && step->is_relative()); }
};

// The same in the units of the model.
struct Ladder {
  double start = 0.0;
  double finish = 0.0;
  double step = 0.0;  // 0: there is only one

  bool is_one() const { return step == 0.0; }
  bool is_climbing() const { return finish >= start && step > 0.0 && (finish - start) / step <= 1e4; }
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

constexpr const char* ladder_form = "a ladder such as 0.001..0.1/0.01, of at most 10,000 steps";

// "0.01", "0.001..0.1/0.01", "1e-5d..0.2e/0.02e"
std::optional<LadderArgument> ladder_in(const std::string& text) {
  const std::size_t dots = text.find("..");
  if (dots == std::string::npos) {
    const auto only = LengthArgument::parse(text);
    return only ? std::optional<LadderArgument>({*only, *only, {}}) : std::nullopt;
  }
  const std::size_t slash = text.find('/', dots);
  if (slash == std::string::npos) return std::nullopt;
  const auto start = LengthArgument::parse(text.substr(0, dots));
  const auto finish = LengthArgument::parse(text.substr(dots + 2, slash - dots - 2));
  const auto step = LengthArgument::parse(text.substr(slash + 1));
  return start && finish && step ? std::optional<LadderArgument>({*start, *finish, *step}) : std::nullopt;
}

Ladder resolved(const LadderArgument& given, const trTriBlock& mesh) {
  return {given.start.resolve(mesh), given.finish.resolve(mesh), given.step ? given.step->resolve(mesh) : 0.0};
}

// Of shares only the model tells whether they climb.
std::string ladder_problem(const std::string& text) {
  const auto given = ladder_in(text);
  const bool is_good = given && (!given->step || given->has_shares() || resolved(*given, trTriBlock()).is_climbing());
  return is_good ? "" : "'" + text + "' is neither a length from 0 up nor " + ladder_form;
}

Ladder ladder_for(const trTriBlock& mesh, const std::string& text) {
  const LadderArgument given = *ladder_in(text);
  const Ladder ladder = resolved(given, mesh);
  if (given.step && !ladder.is_climbing()) {
    throw Failure(ExitCode::wrong_usage, formatted("%s is %.6g..%.6g/%.6g for this model, which is not ", text.c_str(), ladder.start, ladder.finish, ladder.step) + ladder_form);
  }
  return ladder;
}

BoundaryState state_of(Session& session) {
  trCycleArray& cycles = session.control.cycles();
  const int boundaries = cycles.num_boundaries();
  const BoundaryState state{boundaries, cycles.num_edges(), session.mesh.valid_elements(), session.mesh.valid_nodes()};
  Interruption::check();
  return state;
}

void stitch(trControl& control, const StitchArguments& arguments, const Ladder& ladder) {
  control.start_undo("stitch");
  control.action_auto_stitch(ladder.is_one() ? Repeat : Multi, ladder.start, ladder.finish, ladder.step, arguments.passes,
                             arguments.merges_first, arguments.orients, 0, arguments.target);
  if (arguments.makes_slivers && !tr_interrupt()) control.action_stitch(ladder.finish);
  control.finish_undo(1);
}

std::string text_of(const Ladder& ladder) {
  return ladder.is_one() ? formatted("%.6g", ladder.start) : formatted("%.6g..%.6g/%.6g", ladder.start, ladder.finish, ladder.step);
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
  const Ladder ladder = ladder_for(session.mesh, arguments.tolerance);
  session.progress.begin("merging " + arguments.input);
  session.mesh.unduplicate_nodes(exact_copies);
  Interruption::check();
  const BoundaryState before = state_of(session);
  session.progress.begin("stitching " + arguments.input);
  stitch(session.control, arguments, ladder);
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
                                 {"tolerance_used", {{"from", ladder.start}, {"to", ladder.finish}, {"step", ladder.step}}},
                                 {"before", json_of(before)},
                                 {"after", json_of(after)},
                                 {"complete", read.is_complete},
                                 {"warnings", session.messages.warnings()}})
                            .c_str());
  } else if (!session.is_quiet) {
    std::printf("%s  tolerance %s\n%s: %s, written\n", text_of(arguments, read, before, after).c_str(), text_of(ladder).c_str(), printable(arguments.output).c_str(), name_of(format));
  }
  return ExitCode::done;
}

}  // namespace

void add_stitch_verb(CommandLine& line) {
  const auto arguments = std::make_shared<StitchArguments>();
  const VerbOptions verb = line.add_verb("stitch", "Join boundaries that lie along each other",
                                         [arguments](Session& session) { return run_stitch(session, *arguments); });
  add_input(verb, arguments->input);
  add_output(verb, arguments->output);
  verb.add_option("--tol", arguments->tolerance,
                  "How far apart boundaries may be, or a ladder of such tolerances from\n"
                  "A to B, climbed until no boundary is left")
      .required()
      .check(ladder_problem)
      .type_name("LENGTH|A..B/STEP");
  add_count(verb, "--passes", arguments->passes, 1, "Passes at each tolerance at most").show_default();
  add_count(verb, "--target", arguments->target, 0, "Boundaries to be left, where some belong to the model").show_default();
  verb.add_flag("--merge", arguments->merges_first, "Merge all nodes within the first tolerance, not only those of boundaries");
  verb.add_flag("--orient", arguments->orients, "Turn triangles over so that neighbours agree, at each tolerance");
  verb.add_flag("--slivers", arguments->makes_slivers,
                "At the end join nodes to edges in line with them by thin triangles");
  verb.add_flag("--json", arguments->is_json, "Print one JSON object with the boundaries before and after");
  line.set_notes(verb,
                 "At each tolerance nodes of boundaries are merged, triangles back to back and repeated ones deleted, and edges\n"
                 "split where nodes of another boundary lie on them.",
                 "mendex stitch part.stl -o closed.stl --tol 0.001..0.05/0.005");
}
