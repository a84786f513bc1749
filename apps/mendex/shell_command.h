#pragma once

#include <functional>
#include <string>
#include <vector>

class CommandShell;
class ShellWords;

/// One command of the shell: how it is written, what its help says, and what it does.
struct ShellCommand {
  /// What a command does, once its arguments are known to be good.
  using Action = std::function<void()>;

  const char* name;       // that of the controller's action where it is one
  const char* alias;      // another name; null without one
  const char* arguments;  // as usage shows them: capitals stand for values, brackets for what may be left out
  const char* help;       // one line
  const char* example;
  bool is_edit;  // runs in an undo bracket
  Action (*parse)(CommandShell& shell, ShellWords& words);  // throws when the arguments are wrong; changes nothing
};

/// Commands that belong together, under a title.
struct ShellCommandGroup {
  const char* title;
  std::vector<ShellCommand> commands;
};

// The groups, each from a file of its own.
ShellCommandGroup shell_file_commands();
ShellCommandGroup shell_edit_commands();
ShellCommandGroup shell_boundary_commands();
ShellCommandGroup shell_report_commands();
ShellCommandGroup shell_undo_commands();
ShellCommandGroup shell_setting_commands();
ShellCommandGroup shell_own_commands();

/// All of them.
const std::vector<ShellCommandGroup>& shell_commands();

/// The command of that name or alias; null when there is none.
const ShellCommand* find_shell_command(const std::string& name);

/// "undup TOL"
std::string usage_of(const ShellCommand& command);
