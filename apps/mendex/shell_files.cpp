// The shell's commands that read and write files.

#include <mendexlib.h>

#include "mesh_reader.h"
#include "mesh_writer.h"
#include "script_run.h"
#include "command_shell.h"
#include "shell_words.h"
#include "text.h"
#include "verbs.h"

namespace {

using Action = ShellCommand::Action;

ReadRequest request_of(const CommandShell& shell, const std::string& path, bool is_appended) {
  const trControl& control = shell.control;
  ReadRequest request{path, is_appended, control.preserve() != 0};
  if (is_appended) return request;
  request.first_facet = control.stl_start();
  request.last_facet = control.stl_stop();
  return request;
}

// Nothing is changed by a file that cannot be opened or is no mesh. One that gives nothing, and an interrupted read, leave an empty mesh.
void read(CommandShell& shell, const std::string& path) {
  bool is_replaced = false;
  ReadRequest request = request_of(shell, path, false);
  request.replaces = &is_replaced;
  try {
    shell.read = read_mesh(shell.session, request);
  } catch (...) {
    if (!is_replaced) throw;
    shell.mesh.clear();
    shell.mesh_was_replaced("");
    throw;
  }
  shell.mesh_was_replaced(path);
  shell.note("  " + std::string(name_of(shell.read.format)) + (shell.read.is_complete ? "" : ", damaged") + ": " +
             counted(shell.mesh.valid_elements(), "triangle", "triangles") + "\n");
}

Action parse_read(CommandShell& shell, ShellWords& words) {
  const std::string path = words.text("a file");
  return [&shell, path] { read(shell, path); };
}

// What a file does to the attributes of nodes is not recorded.
void append(CommandShell& shell, const std::string& path) {
  const int attributes = shell.mesh.node_data_size();
  read_mesh(shell.session, request_of(shell, path, true));
  shell.control.triangle_update(1);
  if (shell.mesh.node_data_size() == attributes) return;
  shell.control.finish_undo(1);
  shell.control.undo_hist().reset(utString());
}

Action parse_append(CommandShell& shell, ShellWords& words) {
  const std::string path = words.text("a file");
  return [&shell, path] { append(shell, path); };
}

Action writer(CommandShell& shell, ShellWords& words, bool is_renumbered) {
  WriteRequest request{words.text("a file"), MeshFormat::native, words.take("positive"), shell.file, is_renumbered,
                       shell.control.trismooth() != 0};
  request.format = output_format(request.path);
  return [&shell, request] {
    write_mesh(shell.session, request);
    shell.is_changed = false;
    shell.note("  " + std::string(name_of(request.format)) + ", written\n");
  };
}

Action parse_write(CommandShell& shell, ShellWords& words) { return writer(shell, words, false); }
Action parse_rwrite(CommandShell& shell, ShellWords& words) { return writer(shell, words, true); }

Action parse_run(CommandShell& shell, ShellWords& words) {
  const std::string path = words.text("a script");
  return [&shell, path] {
    const ExitCode code = run_script(shell, path);
    if (code != ExitCode::done) throw Failure(code, path + " has ended with an error");
  };
}

}  // namespace

ShellCommandGroup shell_file_commands() {
  return {"Files",
         {{"read", nullptr, "FILE",
           "Replace the mesh by that of a file; what was done before cannot be undone any more",
           "read part.stl", false, parse_read},
          {"append", nullptr, "FILE",
           "Add the mesh of a file",
           "append lid.stl", true, parse_append},
          {"write", nullptr, "FILE [positive]",
           "Write the mesh in the format of the name; positive moves STL to where no coordinate is negative",
           "write fixed.stl", false, parse_write},
          {"rwrite", nullptr, "FILE [positive]",
           "The same with nodes and triangles numbered anew where the format has numbers",
           "rwrite fixed.mnx", false, parse_rwrite},
          {"run", nullptr, "SCRIPT",
           "Do what a script says, line by line",
           "run weld.mx", false, parse_run}}};
}
