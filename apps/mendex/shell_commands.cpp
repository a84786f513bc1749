#include "shell_command.h"

const std::vector<ShellCommandGroup>& shell_commands() {
  static const std::vector<ShellCommandGroup> groups = {shell_file_commands(),    shell_edit_commands(), shell_boundary_commands(),
                                                        shell_report_commands(),  shell_undo_commands(), shell_setting_commands(),
                                                        shell_own_commands()};
  return groups;
}

const ShellCommand* find_shell_command(const std::string& name) {
  for (const ShellCommandGroup& group : shell_commands()) {
    for (const ShellCommand& command : group.commands) {
      if (name == command.name || (command.alias != nullptr && name == command.alias)) return &command;
    }
  }
  return nullptr;
}

std::string usage_of(const ShellCommand& command) {
  return std::string(command.name) + (*command.arguments == '\0' ? "" : " ") + command.arguments;
}
