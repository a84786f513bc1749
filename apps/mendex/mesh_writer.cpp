#include "mesh_writer.h"

#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <memory>

#include "failure.h"
#include "interruption.h"
#include "safe_output.h"
#include "scene_exchange.h"
#include "written_file_check.h"

namespace {

constexpr double unscaled = 1.0;

// Calls the library's writer of the format.
bool write_elements(const trTriBlock& mesh, FILE* stream, const WriteRequest& request) {
  trTriWrite writer(&mesh, stream, unscaled);
  switch (request.format) {
    case MeshFormat::native: return writer.write_native(request.is_renumbered) != 0;
    case MeshFormat::mesh_file: return writer.write_mes(request.is_renumbered) != 0;
    case MeshFormat::triangle_file: return (request.is_smooth ? writer.write_smooth_tri() : writer.write_tri()) != 0;
    case MeshFormat::binary_stl: return writer.write_stl(request.is_positive) != 0;
    case MeshFormat::ascii_stl: return writer.write_ast(request.is_positive) != 0;
    case MeshFormat::kvx: return writer.write_kvx() != 0;
    default: return false;
  }
  return false;
}

// A text with few decimals can round a small model away.
void warn_of_coarse_decimals(Session& session, MeshFormat format) {
  const int decimals = decimals_of(format);
  const giBox3& box = session.mesh.box();
  if (decimals == 0 || box.is_empty()) return;
  const double size = (box.max() - box.min()).length();
  constexpr double worth_a_warning = 1e-3;
  if (std::pow(10.0, -decimals) <= worth_a_warning * size) return;
  char text[160];
  std::snprintf(text, sizeof text, "the format keeps %d decimals, which is coarse for a model of size %.3g", decimals, size);
  session.messages.warning(text);
}

bool is_one_file(const std::string& a, const std::string& b) {
  struct stat of_a = {}, of_b = {};
  return stat(a.c_str(), &of_a) == 0 && stat(b.c_str(), &of_b) == 0 && of_a.st_dev == of_b.st_dev &&
         of_a.st_ino == of_b.st_ino;
}

// Files in the library's own formats name the triangles that differ from the commonest colour, if that is one: where the mesh has colours
// but none for elements in general, as one that came from outside, one of its own is taken for that.
void set_common_colour(Session& session, MeshFormat format) {
  trTriBlock& mesh = session.mesh;
  if ((format != MeshFormat::native && format != MeshFormat::mesh_file) || mesh.default_colour() != NO_COLOUR) return;
  int coloured = 0, bare = 0, colour = NO_COLOUR;
  for (int e = 1; e < mesh.element_count(); ++e) {
    if (!mesh.element(e).valid()) continue;
    const int own = mesh.get_element_colour(e);
    own == NO_COLOUR ? ++bare : ++coloured;
    if (colour == NO_COLOUR) colour = own;
  }
  if (coloured == 0) return;
  if (bare > 0) {
    session.messages.warning("colours are not written, since " + std::to_string(bare) + " triangles have none");
  } else {
    mesh.set_element_colour(0, colour);
  }
}

// Writes the mesh and reads back what was written.
void write_own_format(Session& session, SafeOutput& output, const WriteRequest& request) {
  set_common_colour(session, request.format);
  const bool is_written = write_elements(session.mesh, output.stream(), request);
  Interruption::check();
  output.check();
  if (!is_written) throw Failure(ExitCode::cannot_write, "cannot be written");
  const WrittenFileCheck check(session.mesh, output.descriptor(), request.format, request.is_positive);
  Interruption::check();
  if (!check.is_sound()) {
    const char* const reason = decimals_of(request.format) == 0 ? "" : ", as do numbers too large for the format's columns";
    throw Failure(ExitCode::cannot_write,
                  std::string("what was written reads back differently") + reason + "; the file is left as it was");
  }
  warn_of_coarse_decimals(session, request.format);
  if (check.has_overflow()) session.messages.warning("coordinates too large for the format were written as infinite");
}

// The same through the exchange of meshes with a host.
void write_scene_format(Session& session, SafeOutput& output, MeshFormat format) {
  const SceneMesh scene = scene_of_mesh(session, format);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(output.stream(), std::fclose);
  write_scene(scene, format, stream.get());
  const bool is_flushed = std::fflush(stream.get()) == 0;
  Interruption::check();
  output.check();
  if (!is_flushed) throw Failure(ExitCode::cannot_write, "cannot be written");
  if (!reads_back(scene, format, output.descriptor())) {
    throw Failure(ExitCode::cannot_write,
                  "what was written reads back differently, as do coordinates too large for single precision; the file is left as it was");
  }
}

}  // namespace

void write_mesh(Session& session, const WriteRequest& request) {
  session.messages.set_file(request.path);
  session.progress.begin("writing " + request.path);
  SafeOutput output(request.path);
  if (is_scene(request.format)) {
    write_scene_format(session, output, request.format);
  } else {
    write_own_format(session, output, request);
  }
  // Whoever replaces his only copy must not lose both to a power cut; for other files the wait would double the time of
  // a run.
  if (is_one_file(request.path, request.input)) output.flush_to_disk();
  output.commit();
}
