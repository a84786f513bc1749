#include "mesh_reader.h"

#include <cstring>

#include "failure.h"
#include "input_file.h"
#include "interruption.h"
#include "scene_exchange.h"

namespace {

// Calls the library's reader of the format; false when it met damage.
bool read_facets(Session& session, InputFile& file, MeshFormat format, const ReadRequest& request) {
  FILE* const stream = format == MeshFormat::ascii_stl ? file.stream_without_names() : file.stream();
  trTriRead reader(&session.mesh, stream, request.is_appended, request.keeps_attributes);
  switch (format) {
    case MeshFormat::native: return reader.read_native() != 0;
    case MeshFormat::mesh_file: return reader.read_mes() != 0;
    case MeshFormat::triangle_file: return reader.read_tri() != 0;
    case MeshFormat::binary_stl: return reader.read_stl(request.first_facet, request.last_facet) != 0;
    case MeshFormat::ascii_stl: return reader.read_ast(request.first_facet, request.last_facet) != 0;
    case MeshFormat::kvx: return reader.read_kvx() != 0;
    default: return false;
  }
  return false;
}

int triangles_in(const Session& session) { return session.mesh.element_count() - 1; }

std::string account_of_damage(int triangles, const InputFile& file, MeshFormat format) {
  const std::string found = std::to_string(triangles);
  std::string text = "the file is damaged: ";
  if (triangles == 0) {
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
void warn_of_surplus(Session& session, const InputFile& file, const ReadRequest& request) {
  if (request.last_facet != 0) return;
  const std::uint64_t expected = binary_stl_header_bytes + binary_stl_facet_bytes * promised_facets(file.head());
  if (!file.size() || *file.size() < expected + binary_stl_facet_bytes) return;
  session.messages.warning(std::to_string(*file.size() - expected) + " bytes beyond the " +
                           std::to_string(promised_facets(file.head())) +
                           " triangles that the file promises were not read");
}

}  // namespace

ReadOutcome read_mesh(Session& session, const ReadRequest& request) {
  const std::string& path = request.path;
  session.messages.set_file(path);
  const std::size_t warnings = session.messages.warnings().size();
  InputFile file(path);
  const std::optional<MeshFormat> format = format_of_file({file.head(), file.size(), path});
  if (!format) throw Failure(ExitCode::cannot_read, "is neither STL, binary or ASCII, nor a mesh in another known format");
  if (!request.is_appended) session.mesh.clear();  // a reader that fails on the header leaves the mesh as it was
  if (request.replaces != nullptr) *request.replaces = true;
  const int before = triangles_in(session);
  if (is_scene(*format)) {
    session.progress.begin("reading " + path);
    read_scene_mesh(session, file, request, *format);
    session.progress.begin("");
    return {*format, true};
  }
  if (*format == MeshFormat::binary_stl) {
    session.progress.begin("reading " + path);
  } else {
    session.progress.begin("reading " + path, [&file] { return file.fraction_read(); });
  }
  bool is_complete = read_facets(session, file, *format, request) && file.error() == 0;
  session.progress.begin("");
  Interruption::check();
  const int triangles = triangles_in(session) - before;
  if (!is_complete && triangles == 0) throw Failure(ExitCode::cannot_read, account_of_damage(triangles, file, *format));
  if (!is_complete) {
    session.messages.warning(account_of_damage(triangles, file, *format) + "; going on with those");
  } else if (*format == MeshFormat::binary_stl) {
    warn_of_surplus(session, file, request);
  } else if (*format == MeshFormat::native && session.messages.warnings().size() != warnings) {
    is_complete = false;
  }
  return {*format, is_complete};
}
