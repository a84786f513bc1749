#include "mesh_reader.h"

#include <cstring>

#include "failure.h"
#include "input_file.h"
#include "interruption.h"
#include "scene_exchange.h"

namespace {

struct Reading {
  bool is_complete;
  std::int64_t bytes;  // that were taken in, without the names of solids
};

bool call_reader(trTriRead& reader, MeshFormat format, const ReadRequest& request) {
  switch (format) {
    case MeshFormat::native: return reader.read_native() != 0;
    case MeshFormat::mesh_file: return reader.read_mes() != 0;
    case MeshFormat::triangle_file: return reader.read_tri() != 0;
    case MeshFormat::binary_stl: return reader.read_stl(request.first_facet, request.last_facet) != 0;
    case MeshFormat::ascii_stl: return reader.read_ast(request.first_facet, request.last_facet) != 0;
    case MeshFormat::kvx: return reader.read_kvx() != 0;
    default: return false;
  }
}

// Calls the library's reader of the format, which is not complete when it met damage.
Reading read_facets(Session& session, InputFile& file, MeshFormat format, const ReadRequest& request) {
  FILE* const stream = format == MeshFormat::ascii_stl ? file.stream_without_names() : file.stream();
  trTriRead reader(&session.mesh, stream, request.is_appended, request.keeps_attributes);
  const bool is_complete = call_reader(reader, format, request);
  return {is_complete, reader.bytes_read()};
}

// The line of a text after so many bytes of what the reader of the text got, counted from 1.
std::int64_t line_after(const std::string& path, std::int64_t bytes) {
  InputFile file(path);
  FILE* const stream = file.stream_without_names();
  std::int64_t line = 1;
  for (int c = 0; bytes > 0 && (c = std::getc(stream)) != EOF; --bytes) line += c == '\n' && bytes > 1;
  std::fclose(stream);
  return line;
}

// " at byte 84", " in line 3"; nothing where nobody can tell. A pipe cannot be read again to count its lines.
std::string place_of_damage(const std::string& path, const InputFile& file, MeshFormat format, std::int64_t bytes) {
  if (format != MeshFormat::ascii_stl) return " at byte " + std::to_string(bytes);
  return file.size() ? " in line " + std::to_string(line_after(path, bytes)) : "";
}

int triangles_in(const Session& session) { return session.mesh.element_count() - 1; }

std::string account_of_damage(int triangles, const InputFile& file, MeshFormat format, const std::string& where) {
  const std::string found = std::to_string(triangles);
  std::string text = "the file is damaged" + where + ": ";
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
  if (!format) throw Failure(ExitCode::cannot_read, "is neither STL, binary or ASCII, nor a mesh in another known format: nothing known begins at byte 0");
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
  const Reading reading = read_facets(session, file, *format, request);
  bool is_complete = reading.is_complete && file.error() == 0;
  session.progress.begin("");
  Interruption::check();
  const int triangles = triangles_in(session) - before;
  if (!is_complete) {
    const std::string account = account_of_damage(triangles, file, *format, place_of_damage(path, file, *format, reading.bytes));
    if (triangles == 0) throw Failure(ExitCode::cannot_read, account);
    session.messages.warning(account + "; going on with those");
  } else if (*format == MeshFormat::binary_stl) {
    warn_of_surplus(session, file, request);
  } else if (*format == MeshFormat::native && session.messages.warnings().size() != warnings) {
    is_complete = false;
  }
  return {*format, is_complete};
}
