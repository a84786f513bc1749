#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <optional>
#include <vector>

#include "failure.h"
#include "interruption.h"
#include "mesh_format.h"
#include "session.h"
#include "verbs.h"

namespace {

constexpr const char* exit_codes_help =
    "Exit codes: 0 done, 1 defects found (check), 2 wrong usage, 3 cannot read, 4 cannot write, 6 interrupted (of several files the highest).\n"
    "Results go to standard output; warnings, errors and the progress bar go to standard error.";

// Not merely a number: the library takes any, but nobody means to merge a whole model into one point.
std::string tolerance_problem(const std::string& text) {
  double value = 0.0;
  const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool is_number = result.ec == std::errc() && result.ptr == text.data() + text.size();
  return is_number && std::isfinite(value) && value >= 0.0 ? "" : "'" + text + "' is not a number from 0 up";
}

// A list of numbers with commas between.
std::optional<std::vector<double>> numbers_in(const std::string& text) {
  std::vector<double> numbers;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (true) {
    double value = 0.0;
    const std::from_chars_result result = std::from_chars(at, end, value);
    if (result.ec != std::errc() || !std::isfinite(value)) return std::nullopt;
    numbers.push_back(value);
    if (result.ptr == end) return numbers;
    if (*result.ptr != ',') return std::nullopt;
    at = result.ptr + 1;
  }
}

std::string direction_problem(const std::string& text) {
  const std::optional<std::vector<double>> numbers = numbers_in(text);
  const bool is_direction = numbers && numbers->size() == 3 &&
                            giVector3((*numbers)[0], (*numbers)[1], (*numbers)[2]).length() > 0.0;
  return is_direction ? "" : "'" + text + "' is not a direction such as 0,0,1";
}

std::string weld_problem(const std::string& text) { return text == "none" ? "" : tolerance_problem(text); }

// The command line: what may be given, and what was.
class CommandLine {
 public:
  CommandLine() {
    app_.require_subcommand(1);
    app_.fallthrough();
    app_.set_version_flag("--version", std::string("mendex ") + MENDEX_VERSION);
    app_.add_flag("-q,--quiet", is_quiet_, "No progress bar and no summary; warnings and errors remain");
    app_.add_flag("-v,--verbose", is_verbose_, "Show on standard error all that the library has to say");
    app_.footer(std::string("Files: STL, binary or ASCII, told by their content; written as their name says:\n  ") +
                writable_extensions() + ".\n" + exit_codes_help +
                "\n\nFor example:\n  mendex check part.stl\n  mendex weld part.stl -o fixed.stl --tol 0.001\n"
                "  mendex convert part.stl part.ast");
    add_info();
    add_check();
    add_weld();
    add_convert();
  }

  // Throws what CLI11 throws.
  void parse(int argc, char** argv) { app_.parse(argc, argv); }

  // Shows help, version or what was wrong.
  ExitCode explain(const CLI::ParseError& error) {
    if (error.get_exit_code() != 0 && app_.get_subcommands().empty()) {
      explain_missing_verb();
      return ExitCode::wrong_usage;
    }
    return app_.exit(error) == 0 ? ExitCode::done : ExitCode::wrong_usage;
  }

  ExitCode run(Session& session) const {
    session.is_quiet = is_quiet_;
    if (is_quiet_) session.progress.silence();
    if (is_verbose_) session.messages.set_verbose();
    if (app_.got_subcommand("info")) return run_info(session, info_);
    if (app_.got_subcommand("check")) return run_check(session, check_options());
    if (app_.got_subcommand("weld")) return run_weld(session, weld_);
    return run_convert(session, convert_);
  }

 private:
  void explain_missing_verb() {
    const std::vector<std::string> words = app_.remaining();
    if (words.empty()) {
      std::fputs(app_.help().c_str(), stderr);
    } else {
      std::fprintf(stderr, "mendex: '%s' is none of info, check, weld and convert\nRun with --help for more information.\n",
                   printable(words.front()).c_str());
    }
  }

  void add_info() {
    CLI::App* verb = app_.add_subcommand("info", "Statistics and mass properties of STL files");
    verb->add_option("FILE", info_.files, "Files to report on")->required()->type_name("PATH");
    verb->add_flag("--json", info_.is_json, "One JSON object a file, each on one line");
    verb->footer(
        "Nothing is merged: an STL file has three nodes a triangle. Numbers that are not finite are null in JSON.");
  }

  void add_check() {
    CLI::App* verb = app_.add_subcommand("check", "Tell what is wrong with STL files");
    verb->add_option("FILE", check_.files, "Files to check; none is changed")->required()->type_name("PATH");
    verb->add_flag("--json", check_.is_json,
                   "One JSON object a file, each on one line: counts, and numbers and places of all that was found");
    add_limit(verb, "--thin", check_.limits.thin, "RATIO", "Triangles are thin below this ratio of height to longest edge");
    add_limit(verb, "--small", check_.limits.small, "LENGTH",
              "Triangles are small below this height over their longest edge,\nin the units of the model");
    add_limit(verb, "--overlap", check_.limits.overlap_deg, "DEG",
              "Neighbours overlap when the angle between them, 180 degrees\nwhere they are flat, is below this");
    verb->add_option("--up", up_, "Triangles that face away from this direction overhang; they are no defect")
        ->check(CLI::Validator(direction_problem, ""))
        ->type_name("X,Y,Z")
        ->default_str("0,0,1");
    verb->add_option("--weld", check_weld_, "Merge nodes up to this far apart before the search; without it\n"
                     "only exact copies merge; none leaves all triangles loose")
        ->check(CLI::Validator(weld_problem, ""))
        ->type_name("LENGTH|none");
    verb->footer(
        "A triangle's number is its place in the file. Lengths up to 1e-5 are as good as zero in the search for\n"
        "intersections. Exit code 1 when a file has defects or is damaged.");
  }

  static void add_limit(CLI::App* verb, const char* name, double& limit, const char* unit, const char* text) {
    verb->add_option(name, limit, text)
        ->check(CLI::Validator(tolerance_problem, ""))
        ->type_name(unit)
        ->capture_default_str();
  }

  CheckOptions check_options() const {
    CheckOptions options = check_;
    if (!up_.empty()) {
      const std::vector<double> up = *numbers_in(up_);
      options.limits.up = giUnitVec3(giVector3(up[0], up[1], up[2]));
    }
    if (check_weld_ == "none") {
      options.limits.weld.reset();
    } else if (!check_weld_.empty()) {
      options.limits.weld = numbers_in(check_weld_)->front();
    }
    return options;
  }

  void add_weld() {
    CLI::App* verb =
        app_.add_subcommand("weld", "Merge coincident nodes, drop triangles that collapse, write the result");
    verb->add_option("IN", weld_.input, "STL file to read")->required()->type_name("PATH");
    verb->add_option("-o,--output", weld_.output, "File to write: .stl binary, .ast ASCII; it may be IN itself")
        ->required()
        ->type_name("PATH");
    verb->add_option("--tol", weld_.tolerance,
                     "Merge nodes up to this far apart, in the units of the model.\n"
                     "Without it only exact copies merge; 0 merges nothing")
        ->check(CLI::Validator(tolerance_problem, ""))
        ->type_name("LENGTH");
    verb->add_flag("--positive", weld_.is_positive,
                   "Move the model, by round amounts, to where no coordinate is negative");
    verb->add_flag("--json", weld_.is_json, "Print one JSON object with the statistics before and after");
    verb->footer(
        "OUT is replaced only when the new file is complete; on any failure, and on Ctrl-C, it stays as it was.");
  }

  void add_convert() {
    CLI::App* verb = app_.add_subcommand("convert", "Convert between binary and ASCII STL");
    verb->add_option("IN", convert_.input, "STL file to read")->required()->type_name("PATH");
    verb->add_option("OUT", convert_.output, "File to write: .stl binary, .ast ASCII")->required()->type_name("PATH");
    verb->footer("ASCII files keep seven significant digits. Colours are not kept.");
  }

  CLI::App app_{"Repair triangle meshes: read a broken STL file, merge its nodes, tell what is in it, write it back.",
                "mendex"};
  bool is_quiet_ = false;
  bool is_verbose_ = false;
  InfoOptions info_;
  CheckOptions check_;
  std::string up_;
  std::string check_weld_;
  WeldOptions weld_;
  ConvertOptions convert_;
};

ExitCode run(int argc, char** argv, Session& session) {
  CommandLine line;
  try {
    line.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return line.explain(error);
  }
  try {
    return line.run(session);
  } catch (const Failure& failure) {
    session.messages.error(failure.what());
    return failure.code();
  }
}

// What was printed must have arrived, or a script would take half a result for a whole one.
ExitCode after_flushing(ExitCode code, Session& session) {
  session.progress.erase();
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return code;
  session.messages.set_file("");
  if (errno != EPIPE) session.messages.error(std::string("standard output: ") + std::strerror(errno));
  return std::max(code, ExitCode::cannot_write);
}

}  // namespace

// Ends without destroying the session: the system takes a process's memory back faster than it could be given back page
// by page.
int main(int argc, char** argv) {
  Interruption::install();
  static Session& session = *new Session;
  ExitCode code = ExitCode::cannot_read;
  try {
    code = run(argc, argv, session);
  } catch (const std::exception& error) {
    session.messages.error(error.what());
  }
  code = after_flushing(code, session);
  std::_Exit(static_cast<int>(code));
}
