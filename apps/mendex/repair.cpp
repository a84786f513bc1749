#include <algorithm>
#include <memory>

#include "arguments.h"
#include "batch.h"
#include "command_line.h"
#include "interruption.h"
#include "repair_file.h"
#include "verbs.h"

namespace {

// Stands for standard output where --json has no file.
constexpr const char* json_to_output = "-";

struct RepairArguments {
  RepairRequest request;
  BatchArguments batch;
  std::string tolerance;
  std::string spacing;
  std::string specks;
  std::string max_move, max_removed_area, max_new_area, max_volume_change;
  std::string only, skip;
  std::string json;
};

std::optional<std::vector<RepairStep>> steps_in(const std::string& text) {
  std::vector<RepairStep> steps;
  for (std::size_t from = 0; from <= text.size();) {
    const std::size_t comma = std::min(text.find(',', from), text.size());
    const std::string name = text.substr(from, comma - from);
    const auto found = std::find_if(all_repair_steps.begin(), all_repair_steps.end(), [&](RepairStep s) { return name == name_of(s); });
    if (found == all_repair_steps.end()) return std::nullopt;
    steps.push_back(*found);
    from = comma + 1;
  }
  return steps;
}

std::string names_of_steps() {
  std::string names;
  for (const RepairStep step : all_repair_steps) names += (names.empty() ? "" : ", ") + std::string(name_of(step));
  return names;
}

std::string steps_problem(const std::string& text) {
  return steps_in(text) ? "" : "'" + text + "' does not name steps with commas between; they are " + names_of_steps();
}

struct Range {
  std::optional<LengthArgument> least;
  std::optional<LengthArgument> most;
};

// "0.01" is the largest tolerance, "1e-6..0.01" both.
std::optional<Range> range_in(const std::string& text) {
  const std::size_t dots = text.find("..");
  Range range;
  if (dots != std::string::npos) {
    range.least = LengthArgument::parse(text.substr(0, dots));
    if (!range.least) return std::nullopt;
  }
  range.most = LengthArgument::parse(dots == std::string::npos ? text : text.substr(dots + 2));
  return range.most ? std::optional<Range>(range) : std::nullopt;
}

std::string range_problem(const std::string& text) {
  return range_in(text) ? "" : "'" + text + "' is neither a length such as 0.01, 1e-5d or 0.1e nor two of them as in 1e-6..0.01";
}

std::string spacing_problem(const std::string& text) {
  const std::optional<LengthArgument> spacing = LengthArgument::parse(text);
  return spacing && !spacing->is_zero() ? "" : "'" + text + "' is not a length above 0";
}

void set_steps(const RepairArguments& arguments, RepairSettings& settings) {
  if (!arguments.only.empty()) {
    settings.skips.fill(true);
    const std::vector<RepairStep> wanted = *steps_in(arguments.only);
    for (const RepairStep step : wanted) settings.skips[static_cast<std::size_t>(step)] = false;
  }
  if (arguments.skip.empty()) return;
  const std::vector<RepairStep> unwanted = *steps_in(arguments.skip);
  for (const RepairStep step : unwanted) settings.skips[static_cast<std::size_t>(step)] = true;
}

RepairRequest request_of(const RepairArguments& arguments, bool has_json) {
  RepairRequest request = arguments.request;
  RepairSettings& settings = request.settings;
  if (request.is_in_place) request.output = request.input;
  if (!arguments.tolerance.empty()) {
    const Range range = *range_in(arguments.tolerance);
    settings.least_tolerance = range.least;
    settings.most_tolerance = range.most;
  }
  if (!arguments.spacing.empty()) settings.spacing = LengthArgument::parse(arguments.spacing);
  if (!arguments.specks.empty()) settings.specks = Allowance::parse(arguments.specks);
  if (!arguments.max_move.empty()) settings.limits.move = LengthArgument::parse(arguments.max_move);
  if (!arguments.max_removed_area.empty()) settings.limits.removed_area = Allowance::parse(arguments.max_removed_area);
  if (!arguments.max_new_area.empty()) settings.limits.new_area = Allowance::parse(arguments.max_new_area);
  if (!arguments.max_volume_change.empty()) settings.limits.volume_change = Allowance::parse(arguments.max_volume_change);
  set_steps(arguments, settings);
  if (has_json) request.json = arguments.json == json_to_output ? "" : arguments.json;
  return request;
}

VerbOption add_allowance(VerbOptions verb, const char* name, std::string& value, const char* text) {
  return verb.add_option(name, value, text).check(Allowance::problem).type_name("AMOUNT|SHARE%");
}

void add_limits(VerbOptions verb, RepairArguments& arguments) {
  verb.add_option("--max-move", arguments.max_move, "Write nothing when a corner moved, or may have moved, farther")
      .check(LengthArgument::problem)
      .type_name("LENGTH")
      .group("Limits");
  add_allowance(verb, "--max-removed-area", arguments.max_removed_area, "Write nothing when more area was deleted").group("Limits");
  add_allowance(verb, "--max-new-area", arguments.max_new_area, "Write nothing when more area was added").group("Limits");
  add_allowance(verb, "--max-volume-change", arguments.max_volume_change, "Write nothing when the volume changed more").group("Limits");
}

void add_steps(VerbOptions verb, RepairArguments& arguments) {
  verb.add_option("--only", arguments.only, "Take only these steps: " + names_of_steps()).check(steps_problem).type_name("STEP,...");
  verb.add_option("--skip", arguments.skip, "Leave these steps out").check(steps_problem).type_name("STEP,...");
  verb.add_option("--tol", arguments.tolerance,
                  "How far apart boundaries may be that are joined, or the least and the most;\n"
                  "by default what single precision resolves up to a tenth of the median edge")
      .check(range_problem)
      .type_name("LENGTH|A..B");
  verb.add_option("--spacing", arguments.spacing, "Distance between new nodes; by default the mean edge length of each hole")
      .check(spacing_problem)
      .type_name("LENGTH");
  add_count(verb, "--small-hole", arguments.request.settings.small_hole, 0, "Holes of at most so many edges are closed without nodes inside")
      .show_default();
  verb.add_flag("--close-sheets", arguments.request.settings.closes_sheets, "Close the outer rims of open sheets, too");
  add_allowance(verb, "--drop-specks", arguments.specks, "Delete shells of less than this area; without it none is deleted");
}

// The command of a child that repairs one file of many as this one is called to.
std::vector<std::string> command_of(VerbOptions verb, const RepairRequest& request, const BatchJob& job) {
  std::vector<std::string> words = own_command(verb, {"--json", "--output"});
  words.emplace_back("--json");
  if (!job.output.empty() && !request.is_in_place) words.push_back("--output=" + job.output);
  words.insert(words.end(), {"--", job.input});
  return words;
}

ExitCode repair_many(Session& session, const RepairArguments& arguments, VerbOptions verb) {
  const RepairRequest& request = arguments.request;
  if (!request.output.empty()) throw Failure(ExitCode::wrong_usage, "--output is for one file; several take --out-dir or --suffix");
  BatchPlan plan;
  plan.is_json = verb.count("--json") > 0;
  if (plan.is_json && arguments.json != json_to_output) throw Failure(ExitCode::wrong_usage, "--json=FILE is for one file; the reports on several go to standard output");
  plan.command = [&](const BatchJob& job) { return command_of(verb, request, job); };
  plan.writing = request.is_dry_run ? BatchWriting::nothing : (request.is_in_place ? BatchWriting::in_place : BatchWriting::new_files);
  return run_batch(session, arguments.batch, plan);
}

ExitCode run_repair(Session& session, RepairArguments& arguments, VerbOptions verb) {
  if (arguments.batch.is_batch()) return repair_many(session, arguments, verb);
  arguments.request.input = arguments.batch.files.inputs.front();
  if (arguments.batch.timeout_seconds > 0.0) Interruption::set_timeout(arguments.batch.timeout_seconds);
  return repair_file(session, request_of(arguments, verb.count("--json") > 0));
}

}  // namespace

void add_repair_verb(CommandLine& line) {
  const auto arguments = std::make_shared<RepairArguments>();
  const auto verb_of_line = std::make_shared<std::optional<VerbOptions>>();
  const VerbOptions verb = line.add_verb("repair", "Make a broken mesh sound, and tell what was done", [arguments, verb_of_line](Session& session) {
    return run_repair(session, *arguments, **verb_of_line);
  });
  *verb_of_line = verb;
  RepairRequest& request = arguments->request;
  verb.add_option("IN", arguments->batch.files.inputs, "File to repair; or many, folders of them, and @ before the name of a list of them")
      .required()
      .type_name("PATH");
  const VerbOption output = verb.add_option("-o,--output", request.output, "File to be written").type_name("PATH");
  const VerbOption in_place = verb.add_flag("-i,--in-place", request.is_in_place, "Replace the input; its old contents stay as FILE~").excludes(output);
  const VerbOption dry_run = verb.add_flag("-n,--dry-run", request.is_dry_run, "Do and tell everything, but write nothing");
  verb.add_flag("-f,--force", request.is_forced, "Replace an output file that is there");
  verb.add_flag("--json{" + std::string(json_to_output) + "}", arguments->json,
                "Write a JSON report to standard output, or as --json=FILE to a file");
  add_steps(verb, *arguments);
  add_limits(verb, *arguments);
  add_batch_arguments(verb, arguments->batch);
  verb.require([output, in_place, dry_run, arguments] {
    const bool says_where = output.count() + in_place.count() + dry_run.count() > 0 || arguments->batch.is_batch();
    return says_where ? "" : "--output, --in-place or --dry-run";
  });
  CommandLine::set_notes(verb,
                         "What leaves the mesh worse is taken back, and told as refused. Closed shells without defects are not touched.\n"
                         "Of many files each is worked on by a process of its own, as in mendex repair meshes/ --out-dir repaired --jobs 8.\n"
                         "Exit code 0 when the mesh is sound in the end, 1 when defects are left, 5 when a limit was passed.",
                         "mendex repair broken.stl -o sound.stl");
}
