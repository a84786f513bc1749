#pragma once

#include <string>

#include "check_report.h"
#include "session.h"
#include "shell_command.h"

/// A shell or script between its commands: the session's mesh, what is remembered beside it, and how a line becomes an edit.
///
/// Each edit runs in an undo bracket of its own. One that fails or is interrupted is taken back before its failure is thrown. What the
/// library prints is shown where people type; in scripts only the results of commands that report are.
class CommandShell {
 public:
  enum class Manner { typed, script };

  CommandShell(Session& of, Manner manner);
  CommandShell(const CommandShell&) = delete;
  CommandShell& operator=(const CommandShell&) = delete;
  ~CommandShell();

  /// Does what one line says; an empty one and a comment say nothing. Throws Failure, and then the mesh is as it was before.
  void execute(const std::string& line);

  bool is_typed() const { return manner_ == Manner::typed; }

  // --- for the commands -----------------------------------------------------------------------------------------------------------
  /// Prints what was asked for.
  void result(const std::string& text);
  /// Prints what is only of interest to people.
  void note(const std::string& text);
  /// Does something that the library reports on.
  void show(const ShellCommand::Action& report);
  /// Runs an edit in an undo bracket.
  void edit(const std::string& name, const ShellCommand::Action& action);
  /// Throws when the library has complained since the command began.
  void expect_no_complaint() const;
  /// Writes a file that takes the place of its target when it is complete. The writer closes the stream.
  void write_through(const std::string& path, const std::function<void(std::FILE*)>& writer);
  /// Brings the controller up to date after its mesh was replaced: nothing of what was before can be undone.
  /// @param name  the file that it is from; empty where it is empty
  void mesh_was_replaced(const std::string& name);

  Session& session;
  HostControl& control;
  trTriBlock& mesh;
  CheckLimits limits;     // what `check` and `delete` take as small, thin ...
  std::string file;       // read last
  ReadOutcome read{MeshFormat::native, true};
  bool is_changed = false;  // since it was read or written
  bool has_ended = false;
  bool keeps_going = false;  // scripts go on after an error
  int depth = 0;             // of scripts within scripts

 private:
  bool hear(const std::string& line);
  void take_back(const intcoSet& selection);
  void forget_interruption();

  Manner manner_;
  bool shows_results_ = false;
  std::string complaint_;  // the first that the library made during a command
};
