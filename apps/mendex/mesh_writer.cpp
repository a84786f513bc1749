#include "mesh_writer.h"

#include "failure.h"
#include "interruption.h"
#include "safe_output.h"
#include "written_file_check.h"

namespace {

constexpr double unscaled = 1.0;

bool write_facets(const trTriBlock& mesh, FILE* stream, MeshFormat format, bool positive) {
  trTriWrite writer(&mesh, stream, unscaled);
  return (format == MeshFormat::binary_stl ? writer.write_stl(positive) : writer.write_ast(positive)) != 0;
}

}  // namespace

void write_mesh(Session& session, const std::string& path, MeshFormat format, bool positive) {
  session.messages.set_file(path);
  session.progress.begin("writing " + path);
  SafeOutput output(path);
  const bool is_written = write_facets(session.mesh, output.stream(), format, positive);
  Interruption::check();
  output.check();
  if (!is_written) throw Failure(ExitCode::cannot_write, "cannot be written");
  const WrittenFileCheck check(session.mesh, output.descriptor(), format, positive);
  Interruption::check();
  if (!check.is_sound())
    throw Failure(ExitCode::cannot_write, "what was written reads back differently; the file is left as it was");
  if (check.has_overflow()) session.messages.warning("coordinates too large for the format were written as infinite");
  output.commit();
}
