#include "command_shell.h"

#include <cstdio>

#include "failure.h"
#include "interruption.h"
#include "safe_output.h"
#include "script_words.h"
#include "shell_words.h"
#include "text.h"

namespace {

// Records are named after the line that made them.
std::string record_name(const std::vector<std::string>& words) {
  constexpr std::size_t longest = 60;
  std::string name;
  for (const std::string& word : words) {
    name += (name.empty() ? "" : " ") + word;
    if (name.size() > longest) break;
  }
  return printable(name.substr(0, longest));
}

bool is_complaint(const std::string& line) { return line.compare(0, 6, " Error") == 0 || line.compare(0, 6, "Error!") == 0; }

std::string counts_text(const char* what, int before, int after) {
  return before == after ? formatted("  %s %d", what, after) : formatted("  %s %d -> %d", what, before, after);
}

}  // namespace

CommandShell::CommandShell(Session& of, Manner manner) : session(of), control(of.control), mesh(of.mesh), manner_(manner) {
  limits.weld.reset();
  session.messages.set_listener([this](const std::string& line) { return hear(line); });
}

CommandShell::~CommandShell() { session.messages.set_listener(nullptr); }

void CommandShell::execute(const std::string& line) {
  session.messages.set_file("");
  const std::vector<std::string> words = words_of(line);
  if (words.empty()) return;
  const ShellCommand* const command = find_shell_command(words.front());
  if (command == nullptr) {
    throw Failure(ExitCode::wrong_usage, "there is no command '" + words.front().substr(0, 60) + "'; help lists those that there are");
  }
  if (is_typed()) forget_interruption();
  session.messages.forget_warnings();
  complaint_.clear();
  shows_results_ = false;
  ShellWords arguments(*command, words, mesh);
  const ShellCommand::Action action = command->parse(*this, arguments);
  arguments.expect_end();
  note(arguments.notes());
  session.progress.start_over();
  session.progress.begin(command->name);
  if (command->is_edit) {
    edit(record_name(words), action);
  } else {
    action();
    expect_no_complaint();
    Interruption::check();
  }
  session.progress.erase();
}

void CommandShell::result(const std::string& text) {
  session.progress.erase();
  std::fputs(text.c_str(), stdout);
}

void CommandShell::note(const std::string& text) {
  if (is_typed() && !session.is_quiet) result(text);
}

void CommandShell::show(const ShellCommand::Action& report) {
  shows_results_ = true;
  report();
  shows_results_ = false;
}

void CommandShell::edit(const std::string& name, const ShellCommand::Action& action) {
  const int triangles = is_typed() ? mesh.valid_elements() : 0, nodes = is_typed() ? mesh.valid_nodes() : 0;
  const int record = control.undo_hist().current();
  const intcoSet selection = control.cycles().selection;
  control.start_undo(name);
  try {
    action();
    expect_no_complaint();
    Interruption::check();
  } catch (...) {
    take_back(selection);
    throw;
  }
  control.finish_undo(1);
  if (control.undo_hist().current() != record || !control.undo_hist().full_history()) is_changed = true;
  if (!is_typed()) return;
  note(counts_text("triangles", triangles, mesh.valid_elements()) + "," + counts_text("nodes", nodes, mesh.valid_nodes()) + "\n");
}

// The lists may have been searched in the middle of the edit, and its selection have been used up. Boundaries are found in the same order
// as before, since the mesh is the same.
void CommandShell::take_back(const intcoSet& selection) {
  if (mesh.undo != nullptr) control.finish_undo(0);
  if (is_typed()) forget_interruption();
  control.triangle_update(1);
  control.cycles().clear_selection_list();
  if (selection.count() == 0 || Interruption::requested()) return;
  double average_length = 0.0;
  control.select_cycles(selection, average_length, -1, intcoSet(), -1, -1);
}

void CommandShell::forget_interruption() {
  Interruption::forget();
  session.progress.interrupted_flag = 0;
}

void CommandShell::expect_no_complaint() const {
  if (!complaint_.empty()) throw Failure(ExitCode::defects_found, complaint_);
}

void CommandShell::write_through(const std::string& path, const std::function<void(std::FILE*)>& writer) {
  session.messages.set_file(path);
  SafeOutput output(path);
  writer(output.stream());
  Interruption::check();
  output.check();
  output.commit();
  note("  " + printable(path) + ": written\n");
}

void CommandShell::mesh_was_replaced(const std::string& name) {
  file = name;
  is_changed = false;
  control.cycles().clear_selection_list();
  control.undo_hist().reset(utString(name));
  control.triangle_update(1);
}

bool CommandShell::hear(const std::string& line) {
  if (is_complaint(line)) {
    if (complaint_.empty()) complaint_ = line.substr(line.find('E'));
    return true;
  }
  if (!shows_results_ && (!is_typed() || session.is_quiet || line.empty())) return false;
  result(printable(line) + "\n");
  return true;
}
