// The shell's commands for undo, settings and itself.

#include <mendexlib.h>

#include "arguments.h"
#include "failure.h"
#include "command_shell.h"
#include "shell_words.h"
#include "text.h"

namespace {

using Action = ShellCommand::Action;

// --- undo -----------------------------------------------------------------------------------------------------------------------------------

// What can be taken back, or done again, of so many operations.
Action stepper(CommandShell& shell, ShellWords& words, bool is_undo) {
  const bool is_all = words.take("all");
  const int count = is_all ? 0 : words.is_empty() ? 1 : words.count("a number of operations", 1);
  return [&shell, is_undo, is_all, count] {
    const trUndoHist& history = shell.control.undo_hist();
    const int possible = is_undo ? history.current() + 1 : history.last() - history.current();
    if (!is_all && count > possible) {
      throw Failure(ExitCode::defects_found, counted(possible, "operation", "operations") + " can be " + (is_undo ? "undone" : "done again"));
    }
    if (possible == 0) return;
    const int steps = is_all ? possible : count;
    is_undo ? shell.control.action_undo(steps) : shell.control.action_redo(steps);
    shell.is_changed = true;
    shell.note("  " + counted(shell.mesh.valid_elements(), "triangle", "triangles") + "\n");
  };
}

Action parse_undo(CommandShell& shell, ShellWords& words) { return stepper(shell, words, true); }
Action parse_redo(CommandShell& shell, ShellWords& words) { return stepper(shell, words, false); }

Action parse_history(CommandShell& shell, ShellWords& words) {
  const std::string path = words.is_empty() ? "" : words.text("a file");
  return [&shell, path] {
    if (path.empty()) return shell.show([&] { shell.control.action_history(nullptr); });
    shell.write_through(path, [&](std::FILE* file) { shell.control.action_history(file); });
  };
}

// --- settings -------------------------------------------------------------------------------------------------------------------------------

using SetFlag = void (trControl::*)(trFlagAction);
using PrintFlag = void (trControl::*)() const;

// Without a word the setting is only told.
template <SetFlag set, PrintFlag print>
Action parse_flag(CommandShell& shell, ShellWords& words) {
  if (words.is_empty()) {
    return [&shell] { shell.show([&] { (shell.control.*print)(); }); };
  }
  constexpr trFlagAction actions[] = {tr_flag_on, tr_flag_off, tr_flag_toggle};
  const trFlagAction action = actions[words.choice({"on", "off", "toggle"})];
  return [&shell, action] { (shell.control.*set)(action); };
}

Action parse_stlrange(CommandShell& shell, ShellWords& words) {
  if (words.is_empty()) {
    return [&shell] { shell.show([&] { shell.control.print_stlrange(); }); };
  }
  const int start = words.count("the first triangle", 1);
  const int stop = words.is_empty() ? 0 : words.count("the last triangle", 0);
  return [&shell, start, stop] { shell.control.action_stlrange(start, stop); };
}

void print_limits(CommandShell& shell) {
  const CheckLimits& limits = shell.limits;
  shell.result(formatted("small        %g\nthin         %g\noverlapping  %g\noverhanging  %g %g %g\n", limits.small, limits.thin, limits.overlap_deg,
                         limits.up.x(), limits.up.y(), limits.up.z()));
}

Action parse_limits(CommandShell& shell, ShellWords& words) {
  if (words.is_empty()) {
    return [&shell] { print_limits(shell); };
  }
  CheckLimits limits = shell.limits;
  switch (words.choice({"small", "thin", "overlapping", "overhanging"})) {
    case 0: limits.small = words.length("a length"); break;
    case 1: limits.thin = words.limit("a ratio"); break;
    case 2: limits.overlap_deg = words.limit("an angle in degrees"); break;
    default: limits.up = words.direction(); break;
  }
  return [&shell, limits] { shell.limits = limits; };
}

// --- the shell itself -----------------------------------------------------------------------------------------------------------------------

std::string text_of_all() {
  std::string text;
  for (const ShellCommandGroup& group : shell_commands()) {
    text += std::string(text.empty() ? "" : "\n") + group.title + "\n";
    for (const ShellCommand& command : group.commands) {
      std::string usage = usage_of(command);
      constexpr std::size_t column = 32;
      if (usage.size() >= column) usage += "\n" + std::string(column + 2, ' ');
      if (usage.size() < column) usage.resize(column, ' ');
      text += "  " + usage + command.help + "\n";
    }
  }
  return text + "\nhelp NAME tells more of one. A # begins a comment; names with blanks are 'quoted'.\n";
}

std::string text_of(const ShellCommand& command) {
  std::string text = usage_of(command) + "\n  " + command.help + ".\n";
  if (command.alias != nullptr) text += std::string("  Also called ") + command.alias + ".\n";
  if (command.is_edit) text += "  Can be undone.\n";
  return text + "For example:\n  " + command.example + "\n";
}

Action parse_help(CommandShell& shell, ShellWords& words) {
  if (words.is_empty()) {
    return [&shell] { shell.result(text_of_all()); };
  }
  const std::string name = words.text("a command");
  const ShellCommand* const command = find_shell_command(name);
  if (command == nullptr) words.refuse("there is no command '" + name.substr(0, 60) + "'");
  return [&shell, command] { shell.result(text_of(*command)); };
}

Action parse_quit(CommandShell& shell, ShellWords&) {
  return [&shell] { shell.has_ended = true; };
}

}  // namespace

ShellCommandGroup shell_undo_commands() {
  return {"Undo",
         {{"undo", nullptr, "[N|all]",
           "Take back the last operation, or the last N",
           "undo 2", false, parse_undo},
          {"redo", nullptr, "[N|all]",
           "Do again what was taken back",
           "redo", false, parse_redo},
          {"history", nullptr, "[FILE]",
           "List the operations that can be undone and done again, on screen or to a file",
           "history", false, parse_history},
          {"undomode", nullptr, "[on|off|toggle]",
           "Whether all operations can be undone, or only the last; a change forgets them",
           "undomode off", false, parse_flag<&trControl::action_undomode, &trControl::print_undomode>}}};
}

ShellCommandGroup shell_setting_commands() {
  return {"Settings, told without an argument",
         {{"limits", nullptr, "[small LENGTH|thin RATIO|overlapping DEG|overhanging X Y Z]",
           "What counts as small, thin ... for check, find and delete",
           "limits thin 0.01", false, parse_limits},
          {"preserve", nullptr, "[on|off|toggle]",
           "Whether attributes of nodes are read; off deletes those of the mesh",
           "preserve on", false, parse_flag<&trControl::action_preserve, &trControl::print_preserve>},
          {"trismooth", nullptr, "[on|off|toggle]",
           "Whether triangle files get shared vertices with averaged normals",
           "trismooth off", false, parse_flag<&trControl::action_trismooth, &trControl::print_trismooth>},
          {"stlrange", nullptr, "[FIRST [LAST]]",
           "Which triangles of STL files are read, counted from 1; 0 as the last stands for all",
           "stlrange 1 1000", false, parse_stlrange},
          {"verbose", nullptr, "[on|off|toggle]",
           "Whether reports are in full",
           "verbose on", false, parse_flag<&trControl::action_verbose, &trControl::print_verbose>}}};
}

ShellCommandGroup shell_own_commands() {
  return {"The shell",
         {{"help", "?", "[NAME]",
           "List the commands, or explain one",
           "help cap", false, parse_help},
          {"quit", "exit", "",
           "Leave the shell, or the script",
           "quit", false, parse_quit}}};
}
