#include "mesh_reader.h"

#include <cstring>

#include "failure.h"
#include "input_file.h"
#include "interruption.h"

namespace {

// Calls the library's reader of the format; false when it met damage.
bool read_facets(trTriBlock& mesh, InputFile& file, MeshFormat format) {
  const bool is_binary = format == MeshFormat::binary_stl;
  trTriRead reader(&mesh, is_binary ? file.stream() : file.stream_without_names(), 0, 0);
  return (is_binary ? reader.read_stl(1, 0) : reader.read_ast(1, 0)) != 0;
}

int triangles_read(const Session& session) { return session.mesh.element_count() - 1; }

std::string account_of_damage(const Session& session, const InputFile& file, MeshFormat format) {
  const std::string found = std::to_string(triangles_read(session));
  std::string text = "the file is damaged: ";
  if (triangles_read(session) == 0) {
    text += "no triangle could be read";
  } else if (format == MeshFormat::binary_stl) {
    text += "of the " + std::to_string(promised_facets(file.head())) + " triangles that it promises, " + found +
            " could be read";
  } else {
    text += "only the first " + found + " triangles could be read";
  }
  if (file.error() != 0) text += std::string(" (") + std::strerror(file.error()) + ")";
  return text;
}

// A count that is too low is damage of another kind: what it promises is there, and something else.
void warn_of_surplus(Session& session, const InputFile& file) {
  const std::uint64_t expected = binary_stl_header_bytes + binary_stl_facet_bytes * promised_facets(file.head());
  if (!file.size() || *file.size() < expected + binary_stl_facet_bytes) return;
  session.messages.warning(std::to_string(*file.size() - expected) + " bytes beyond the " +
                           std::to_string(promised_facets(file.head())) +
                           " triangles that the file promises were not read");
}

}  // namespace

ReadOutcome read_mesh(Session& session, const std::string& path) {
  session.messages.set_file(path);
  InputFile file(path);
  const std::optional<MeshFormat> format = format_of_content(file.head(), file.size());
  if (!format) throw Failure(ExitCode::cannot_read, "is not an STL file, neither binary nor ASCII");
  if (*format == MeshFormat::ascii_stl) {
    session.progress.begin("reading " + path, [&file] { return file.fraction_read(); });
  } else {
    session.progress.begin("reading " + path);
  }
  const bool is_complete = read_facets(session.mesh, file, *format) && file.error() == 0;
  session.progress.begin("");
  Interruption::check();
  if (!is_complete && triangles_read(session) == 0) {
    throw Failure(ExitCode::cannot_read, account_of_damage(session, file, *format));
  }
  if (!is_complete) {
    session.messages.warning(account_of_damage(session, file, *format) + "; going on with those");
  } else if (*format == MeshFormat::binary_stl) {
    warn_of_surplus(session, file);
  }
  return {*format, is_complete};
}
