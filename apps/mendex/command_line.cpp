#include "command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <utility>

#include "memory_limit.h"
#include "mesh_format.h"

namespace {

constexpr const char* lengths_help =
    "Lengths: 0.01 in the units of the model, 1e-5d of the diagonal of its bounding box, 0.2e of its median edge.\n";

constexpr const char* exit_codes_help =
    "Exit codes: 0 done, 1 defects found or left (check, repair, cap, fill, slice --cap), 2 wrong usage, 3 cannot read, 4 cannot write,\n5 a limit of change passed, 6 interrupted or timed out, 7 out of memory (of several files the highest).\n"
    "Results go to standard output; warnings, errors and the progress bar go to standard error.";

}  // namespace

CommandLine::CommandLine()
    : app_(std::make_unique<CLI::App>(
          "Repair triangle meshes: read a broken STL file, tell what is wrong with it, make it sound, write it back.", "mendex")) {
  app_->require_subcommand(1);
  app_->fallthrough();
  app_->set_version_flag("--version", std::string("mendex ") + MENDEX_VERSION);
  const VerbOptions options(app_.get());
  options.add_flag("-q,--quiet", is_quiet_, "No progress bar and no summary; warnings and errors remain");
  options.add_flag("-v,--verbose", is_verbose_, "Show on standard error all that the library has to say");
  options.add_option("--max-memory", max_memory_, "End with code 7 rather than take more memory than this, such as 500M or 4G; of\nseveral files for each")
      .check(MemoryLimit::problem)
      .type_name("SIZE");
  options.add_option("--units", units_, "What lengths are in, such as mm: printed behind them, and behind areas and volumes")
      .check(Units::problem)
      .type_name("NAME");
  options.set_footer(std::string("Files: told by their content; written as their name says: ") + writable_extensions() + ".\n" + lengths_help + exit_codes_help +
                     "\n\nFor example:\n  mendex repair part.stl -o sound.stl\n  mendex check part.stl\n  mendex weld part.stl -o fixed.stl --tol 0.001\n"
                     "  mendex convert part.stl part.ast");
}

CommandLine::~CommandLine() = default;

VerbOptions CommandLine::add_verb(const char* name, const char* summary, Run run) {
  verbs_.push_back({app_->add_subcommand(name, summary), std::move(run)});
  return VerbOptions(verbs_.back().app);
}

void CommandLine::set_notes(VerbOptions verb, const std::string& notes, const std::string& example) {
  verb.set_footer(notes + (notes.empty() ? "" : "\n") + "For example:\n  " + example);
}

std::optional<ExitCode> CommandLine::parse(int argc, char** argv) {
  try {
    app_->parse(argc, argv);
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0 || !app_->get_subcommands().empty()) {
      return app_->exit(error) == 0 ? ExitCode::done : ExitCode::wrong_usage;
    }
    explain_missing_verb();
    return ExitCode::wrong_usage;
  }
}

ExitCode CommandLine::run(Session& session) const {
  session.is_quiet = is_quiet_;
  if (is_quiet_) session.progress.silence();
  if (!max_memory_.empty()) MemoryLimit::set(*MemoryLimit::bytes_in(max_memory_));
  session.units = Units(units_);
  if (is_verbose_) session.messages.set_verbose();
  for (const Verb& verb : verbs_) {
    if (verb.app->parsed()) return verb.run(session);
  }
  return ExitCode::wrong_usage;
}

std::string CommandLine::verb_names() const {
  std::string names;
  for (std::size_t k = 0; k < verbs_.size(); ++k) {
    names += (k == 0 ? "" : k + 1 == verbs_.size() ? " and " : ", ") + verbs_[k].app->get_name();
  }
  return names;
}

void CommandLine::explain_missing_verb() const {
  const std::vector<std::string> words = app_->remaining();
  if (words.empty()) {
    std::fputs(app_->help().c_str(), stderr);
  } else {
    std::fprintf(stderr, "mendex: '%s' is none of %s\nRun with --help for more information.\n", printable(words.front()).c_str(),
                 verb_names().c_str());
  }
}
