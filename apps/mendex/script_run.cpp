// Scripts: lines of the shell from a file; and the verb that runs them.

#include "script_run.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "command_line.h"
#include "interruption.h"
#include "script_lines.h"
#include "verbs.h"

namespace {

// Scripts that run themselves must end.
constexpr int deepest = 16;

// One run of one script.
class ScriptRun {
 public:
  ScriptRun(CommandShell& shell, const std::string& path) : shell_(shell), name_(path == "-" ? "standard input" : path), lines_(path) {}

  ExitCode run() {
    while (!shell_.has_ended && !is_stopped_) step();
    return worst_;
  }

 private:
  void step() {
    try {
      const std::optional<std::string> line = lines_.next();
      if (!line) {
        is_stopped_ = true;
        return;
      }
      shell_.execute(*line);
    } catch (const Failure& failure) {
      tell(failure);
    }
    // Whoever reads the results may be gone.
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
      worst_ = std::max(worst_, ExitCode::cannot_write);
      is_stopped_ = true;
    }
  }

  // A script that cannot be read on gives no more lines, which ends it the next time round.
  void tell(const Failure& failure) {
    worst_ = std::max(worst_, failure.code());
    is_stopped_ = !shell_.keeps_going || failure.code() == ExitCode::interrupted;
    std::fflush(stdout);
    shell_.session.progress.erase();
    const std::string& file = shell_.session.messages.file();
    const std::string text = name_ + ":" + std::to_string(lines_.number()) + ": " + (file.empty() ? "" : file + ": ") + failure.what();
    std::fprintf(stderr, "%s\n", printable(text).c_str());
    shell_.session.messages.set_file("");
  }

  CommandShell& shell_;
  const std::string name_;
  ScriptLines lines_;
  ExitCode worst_ = ExitCode::done;
  bool is_stopped_ = false;
};

struct RunArguments {
  std::string script;
  bool keeps_going = false;
};

ExitCode run(Session& session, const RunArguments& arguments) {
  CommandShell shell(session, CommandShell::Manner::script);
  shell.keeps_going = arguments.keeps_going;
  return run_script(shell, arguments.script);
}

}  // namespace

ExitCode run_script(CommandShell& shell, const std::string& path) {
  if (shell.depth == deepest) throw Failure(ExitCode::wrong_usage, "scripts run scripts more than 16 deep");
  ScriptRun script(shell, path);
  ++shell.depth;
  const ExitCode code = script.run();
  --shell.depth;
  shell.has_ended = false;
  return code;
}

void add_run_verb(CommandLine& line) {
  const auto arguments = std::make_shared<RunArguments>();
  const VerbOptions verb =
      line.add_verb("run", "Do what a script of the shell says", [arguments](Session& session) { return run(session, *arguments); });
  verb.add_option("SCRIPT", arguments->script, "File with a command a line, - for standard input").required().type_name("PATH");
  verb.add_flag("--keep-going", arguments->keeps_going, "Go on after an error; the exit code is the highest of all");
  line.set_notes(verb,
                 "mendex shell lists the commands with help. An error is told as SCRIPT:LINE: text, and ends the run: 1 an action failed,\n"
                 "2 an unknown command or wrong arguments, 3 cannot read, 4 cannot write, 6 interrupted. What had been written stays.",
                 "mendex run weld.mx --keep-going");
}
