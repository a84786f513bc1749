#include <memory>

#include "arguments.h"
#include "check_report.h"
#include "command_line.h"
#include "each_file.h"
#include "length_argument.h"
#include "mesh_check.h"
#include "verbs.h"

namespace {

struct CheckArguments {
  std::vector<std::string> files;
  CheckLimits limits;
  LengthArgument small = CheckLimits().small;
  std::string up;
  std::string weld;
  bool is_json = false;
};

std::string weld_problem(const std::string& text) { return text == "none" ? "" : LengthArgument::problem(text); }

CheckLimits limits_of(const CheckArguments& arguments, const trTriBlock& mesh) {
  CheckLimits limits = arguments.limits;
  limits.small = arguments.small.resolve(mesh);
  if (!arguments.up.empty()) {
    const std::vector<double> up = *numbers_in(arguments.up);
    limits.up = giUnitVec3(giVector3(up[0], up[1], up[2]));
  }
  if (arguments.weld == "none") {
    limits.weld.reset();
  } else if (!arguments.weld.empty()) {
    limits.weld = LengthArgument::parse(arguments.weld)->resolve(mesh);
  }
  return limits;
}

// A file that fails is reported and the others go on.
ExitCode run_check(Session& session, const CheckArguments& arguments) {
  return report_on_each_file(session, arguments.files, arguments.is_json, [&](const std::string& file) -> FileReport {
    const ReadOutcome read = read_mesh(session, file);
    const CheckLimits limits = limits_of(arguments, session.mesh);
    const MeshCheck check = check_mesh(session, limits);
    const std::string text = arguments.is_json ? json_of_check(session, file, read, limits, check) + "\n"
                                               : text_of_check(session, file, read, limits, check);
    const bool is_clean = read.is_complete && !check.has_defects();
    return {text, is_clean ? ExitCode::done : ExitCode::defects_found};
  });
}

}  // namespace

void add_check_verb(CommandLine& line) {
  const auto arguments = std::make_shared<CheckArguments>();
  CheckLimits& limits = arguments->limits;
  const VerbOptions verb = line.add_verb("check", "Tell what is wrong with mesh files",
                                         [arguments](Session& session) { return run_check(session, *arguments); });
  verb.add_option("FILE", arguments->files, "Files to check; none is changed").required().type_name("PATH");
  verb.add_flag("--json", arguments->is_json,
                "One JSON object a file, each on one line: counts, and numbers and places of all that was found");
  add_limit(verb, "--thin", limits.thin, "RATIO", "Triangles are thin below this ratio of height to longest edge");
  add_length(verb, "--small", arguments->small, "Triangles are small below this height over their longest edge").show_default("0.0001");
  add_limit(verb, "--overlap", limits.overlap_deg, "DEG",
            "Neighbours overlap when the angle between them, 180 degrees\nwhere they are flat, is below this");
  verb.add_option("--up", arguments->up, "Triangles that face away from this direction overhang; they are no defect")
      .check(direction_problem)
      .type_name("X,Y,Z")
      .show_default("0,0,1");
  verb.add_option("--weld", arguments->weld, "Merge nodes up to this far apart before the search; without it\n"
                  "only exact copies merge; none leaves all triangles loose")
      .check(weld_problem)
      .type_name("LENGTH|none");
  line.set_notes(verb,
                 "A triangle's number is its place in the file. Lengths up to 1e-5 are as good as zero in the search for\n"
                 "intersections. Exit code 1 when a file has defects or is damaged.",
                 "mendex check part.stl --thin 0.01");
}
