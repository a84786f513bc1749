#include <algorithm>
#include <memory>

#include "arguments.h"
#include "batch.h"
#include "command_line.h"
#include "repair_file.h"
#include "verbs.h"

namespace {

// Stands for standard output where --json has no file.
constexpr const char* json_to_output = "-";

struct RepairArguments : BatchArguments {
  RepairRequest request;
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
    for (const RepairStep step : *steps_in(arguments.only)) settings.skips[static_cast<std::size_t>(step)] = false;
  }
  if (arguments.skip.empty()) return;
  for (const RepairStep step : *steps_in(arguments.skip)) settings.skips[static_cast<std::size_t>(step)] = true;
}

RepairRequest request_of(const RepairArguments& arguments, bool has_json) {
  RepairRequest request = arguments.request;
  RepairSettings& settings = request.settings;
  request.input = arguments.files.inputs.front();
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

void add_allowance(CLI::App* verb, const char* name, std::string& value, const char* text) {
  verb->add_option(name, value, text)->check(CLI::Validator(Allowance::problem, ""))->type_name("AMOUNT|SHARE%");
}

void add_limits(CLI::App* verb, RepairArguments& arguments) {
  verb->add_option("--max-move", arguments.max_move, "Write nothing when a corner moved, or may have moved, farther")
      ->check(CLI::Validator(LengthArgument::problem, ""))
      ->type_name("LENGTH")
      ->group("Limits");
  add_allowance(verb, "--max-removed-area", arguments.max_removed_area, "Write nothing when more area was deleted");
  add_allowance(verb, "--max-new-area", arguments.max_new_area, "Write nothing when more area was added");
  add_allowance(verb, "--max-volume-change", arguments.max_volume_change, "Write nothing when the volume changed more");
  for (const char* name : {"--max-removed-area", "--max-new-area", "--max-volume-change"}) verb->get_option(name)->group("Limits");
}

void add_steps(CLI::App* verb, RepairArguments& arguments) {
  verb->add_option("--only", arguments.only, "Take only these steps: " + names_of_steps())->check(CLI::Validator(steps_problem, ""))->type_name("STEP,...");
  verb->add_option("--skip", arguments.skip, "Leave these steps out")->check(CLI::Validator(steps_problem, ""))->type_name("STEP,...");
  verb->add_option("--tol", arguments.tolerance,
                   "How far apart boundaries may be that are joined, or the least and the most;\n"
                   "by default what single precision resolves up to a tenth of the median edge")
      ->check(CLI::Validator(range_problem, ""))
      ->type_name("LENGTH|A..B");
  verb->add_option("--spacing", arguments.spacing, "Distance between new nodes; by default the mean edge length of each hole")
      ->check(CLI::Validator(spacing_problem, ""))
      ->type_name("LENGTH");
  add_count(verb, "--small-hole", arguments.request.settings.small_hole, 0, "Holes of at most so many edges are closed by a triangle, two, or a fan")
      ->capture_default_str();
  verb->add_flag("--close-sheets", arguments.request.settings.closes_sheets, "Close the outer rims of open sheets, too");
  add_allowance(verb, "--drop-specks", arguments.specks, "Delete shells of less than this area; without it none is deleted");
}

// Each file in a process of its own, which is this verb with one file.
ExitCode repair_many(Session& session, const RepairArguments& arguments, const CLI::App& verb) {
  if (!arguments.request.output.empty()) throw Failure(ExitCode::wrong_usage, "--output takes one file; many go to --out-dir or get a --suffix");
  if (!arguments.json.empty() && arguments.json != json_to_output) {
    throw Failure(ExitCode::wrong_usage, "--json=FILE takes one report; those of many go to standard output");
  }
  BatchPlan plan;
  plan.is_json = !arguments.json.empty();
  plan.writing = arguments.request.is_dry_run    ? BatchWriting::nothing
                 : arguments.request.is_in_place ? BatchWriting::in_place
                                                 : BatchWriting::new_files;
  const std::vector<std::string> own = own_command(verb, {"--json"});
  plan.command = [own, writing = plan.writing](const BatchJob& job) {
    std::vector<std::string> command = own;
    command.push_back("--json");
    if (writing == BatchWriting::new_files) command.insert(command.end(), {"-o", job.output});
    command.insert(command.end(), {"--", job.input});
    return command;
  };
  return run_batch(session, arguments, plan);
}

// One file is asked for by -o, -i or -n alone.
void demand_target(const RepairArguments& arguments) {
  const RepairRequest& request = arguments.request;
  if (request.output.empty() && !request.is_in_place && !request.is_dry_run && !arguments.is_batch()) {
    throw CLI::RequiredError("--output, --in-place, --dry-run, --out-dir or --suffix");
  }
}

}  // namespace

void add_repair_verb(CommandLine& line) {
  const auto arguments = std::make_shared<RepairArguments>();
  const auto verb_of_line = std::make_shared<CLI::App*>(nullptr);
  CLI::App* verb = line.add_verb("repair", "Make broken meshes sound, and tell what was done", [arguments, verb_of_line](Session& session) {
    if (arguments->is_batch()) return repair_many(session, *arguments, **verb_of_line);
    return repair_file(session, request_of(*arguments, !arguments->json.empty()));
  });
  *verb_of_line = verb;
  RepairRequest& request = arguments->request;
  verb->add_option("IN", arguments->files.inputs, "Files to be repaired; folders, and @ before the name of a list of files, stand for many")
      ->required()
      ->type_name("PATH");
  CLI::Option* output = verb->add_option("-o,--output", request.output, "File to be written")->type_name("PATH");
  verb->add_flag("-i,--in-place", request.is_in_place, "Replace the input; its old contents stay as FILE~")->excludes(output);
  verb->add_flag("-n,--dry-run", request.is_dry_run, "Do and tell everything, but write nothing");
  verb->add_flag("-f,--force", request.is_forced, "Replace an output file that is there");
  verb->add_flag("--json{" + std::string(json_to_output) + "}", arguments->json,
                 "Write a JSON report to standard output, or as --json=FILE to a file");
  add_steps(verb, *arguments);
  add_limits(verb, *arguments);
  add_batch_arguments(verb, *arguments);
  verb->final_callback([arguments] { demand_target(*arguments); });
  CommandLine::set_notes(verb,
               "What leaves the mesh worse is taken back, and told as refused. Closed shells without defects are not touched.\n"
               "Exit code 0 when the mesh is sound in the end, 1 when defects are left, 5 when a limit was passed.",
               "mendex repair broken.stl -o sound.stl");
}
