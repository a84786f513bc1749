// `mendex shell`: the commands as people type them, or from a pipe.

#include <unistd.h>

#include <memory>
#include <sstream>

#include "command_line.h"
#include "interruption.h"
#include "line_editor.h"
#include "script_run.h"
#include "command_shell.h"
#include "verbs.h"

namespace {

// The words in lower case of what a command's usage shows: "all|N... [at NODE]" has all and at.
std::vector<std::string> keywords_of(const ShellCommand& command) {
  std::vector<std::string> keywords;
  std::string word;
  for (const char* c = command.arguments;; ++c) {
    if ((*c >= 'a' && *c <= 'z') || *c == '-') {
      word += *c;
      continue;
    }
    if (!word.empty()) keywords.push_back(word);
    word.clear();
    if (*c == '\0') return keywords;
  }
}

std::vector<std::string> command_names() {
  std::vector<std::string> names;
  for (const ShellCommandGroup& group : shell_commands()) {
    for (const ShellCommand& command : group.commands) names.emplace_back(command.name);
  }
  return names;
}

// What may be meant by the last word of an unfinished line.
std::vector<std::string> completions(const std::string& before) {
  const std::size_t start = before.find_last_of(" \t") + 1;
  std::istringstream words(before.substr(0, start));
  std::string name;
  words >> name;
  const ShellCommand* const command = find_shell_command(name);
  std::vector<std::string> candidates;
  if (name.empty() || (command != nullptr && std::string(command->name) == "help")) {
    candidates = command_names();
  } else if (command != nullptr) {
    candidates = keywords_of(*command);
  }
  const std::string typed = before.substr(start);
  const bool means_file = typed.empty() && command != nullptr && std::string(command->arguments).compare(0, 4, "FILE") == 0;
  std::vector<std::string> fitting;
  for (const std::string& candidate : candidates) {
    if (candidate.compare(0, typed.size(), typed) == 0 && !means_file) fitting.push_back(candidate);
  }
  return fitting;
}

// People who leave with edits that were not written are told so once.
class Farewell {
 public:
  explicit Farewell(CommandShell& shell) : shell_(shell) {}

  bool is_final() {
    if (!shell_.is_changed || is_told_) return true;
    is_told_ = true;
    shell_.has_ended = false;
    shell_.session.messages.warning("the mesh was changed and not written; leave once more to lose the changes");
    return false;
  }
  void take_back() { is_told_ = false; }

 private:
  CommandShell& shell_;
  bool is_told_ = false;
};

ExitCode converse(CommandShell& shell) {
  Interruption::bear_repetition();
  LineEditor editor(completions);
  Farewell farewell(shell);
  while (!Interruption::is_final()) {
    const std::optional<std::string> line = editor.read("mendex> ");
    if (Interruption::is_final()) break;
    try {
      if (line) shell.execute(*line);
    } catch (const Failure& failure) {
      shell.session.progress.erase();
      shell.session.messages.error(failure.what());
    }
    shell.session.messages.set_file("");
    if (!line || shell.has_ended) {
      if (farewell.is_final()) return ExitCode::done;
    } else {
      farewell.take_back();
    }
  }
  return ExitCode::interrupted;
}

std::string as_one_word(const std::string& path) {
  std::string text = "\"";
  for (const char c : path) text += (c == '"' || c == '\\' ? std::string("\\") : "") + c;
  return text + "\"";
}

ExitCode run_shell(Session& session, const std::string& file) {
  const bool is_typed = isatty(STDIN_FILENO) != 0;
  CommandShell shell(session, is_typed ? CommandShell::Manner::typed : CommandShell::Manner::script);
  if (is_typed) shell.note("mendex " MENDEX_VERSION "; help lists the commands, quit leaves\n");
  if (!file.empty()) shell.execute("read " + as_one_word(file));
  return is_typed ? converse(shell) : run_script(shell, "-");
}

}  // namespace

void add_shell_verb(CommandLine& line) {
  const auto file = std::make_shared<std::string>();
  const VerbOptions verb =
      line.add_verb("shell", "Work on a mesh command by command, with undo", [file](Session& session) { return run_shell(session, *file); });
  verb.add_option("FILE", *file, "File to read first").type_name("PATH");
  line.set_notes(verb,
                 "help lists the commands. Each edit can be undone; Ctrl-C stops the running one and takes it back. From a pipe the commands\n"
                 "are read as mendex run reads a script.",
                 "mendex shell part.stl");
}
