#include "scene_exchange.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstring>

#include "failure.h"
#include "interruption.h"

namespace {

std::string contents_of(InputFile& file) {
  std::string contents;
  if (file.size()) contents.reserve(static_cast<std::size_t>(*file.size()));
  std::FILE* const stream = file.stream();
  char piece[64 * 1024];
  std::size_t n = 0;
  while ((n = std::fread(piece, 1, sizeof piece, stream)) > 0) contents.append(piece, n);
  std::fclose(stream);
  Interruption::check();
  if (file.error() != 0) throw Failure(ExitCode::cannot_read, std::string("cannot be read: ") + std::strerror(file.error()));
  return contents;
}

void warn_of_left_out(Session& session, const SceneMesh& mesh) {
  if (mesh.other_faces > 0) {
    session.messages.warning(std::to_string(mesh.other_faces) + " points, lines or faces without area were left out");
  }
  if (mesh.collapsed_faces > 0) {
    session.messages.warning(std::to_string(mesh.collapsed_faces) + " triangles with two corners at one vertex were left out");
  }
}

// How far a coordinate may be from what was written, in relation to it: single precision, read from digits as the importer does.
constexpr double rounding = 5e-7;

bool is_near(double written, double read) {
  constexpr double least_float = 1.2e-38;
  return std::fabs(written - read) <= rounding * std::fabs(written) + least_float;
}

bool has_same_corners(const SceneMesh& a, const SceneMesh& b, std::size_t triangle) {
  for (std::size_t c = 0; c < 3; ++c) {
    const std::array<double, 3>& p = a.points[static_cast<std::size_t>(a.triangles[triangle][c])];
    const std::array<double, 3>& q = b.points[static_cast<std::size_t>(b.triangles[triangle][c])];
    for (std::size_t k = 0; k < 3; ++k) {
      if (!is_near(p[k], q[k])) return false;
    }
  }
  return true;
}

// Formats without alpha give it back opaque, and the importer does not look at those of the last.
bool has_same_colours(const SceneMesh& written, const SceneMesh& read, MeshFormat format) {
  if (format == MeshFormat::off) return true;
  const int mask = format == MeshFormat::obj || format == MeshFormat::collada ? ~0xff : ~0;
  for (std::size_t k = 0; k < written.colours.size(); ++k) {
    const int colour = read.colours.empty() ? NO_COLOUR : read.colours[k];
    if ((colour & mask) != (written.colours[k] & mask)) return false;
  }
  return true;
}

std::string contents_of(int file) {
  struct stat status = {};
  if (fstat(file, &status) != 0) return {};
  std::string contents(static_cast<std::size_t>(status.st_size), '\0');
  for (std::size_t done = 0; done < contents.size();) {
    const ssize_t n = pread(file, &contents[done], contents.size() - done, static_cast<off_t>(done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return {};
    done += static_cast<std::size_t>(n);
  }
  return contents;
}

}  // namespace

void read_scene_mesh(Session& session, InputFile& file, const ReadRequest& request, MeshFormat format) {
  const SceneMesh mesh = read_scene({request.path, format, contents_of(file)}, SceneCorners::joined);
  if (mesh.triangles.empty()) throw Failure(ExitCode::cannot_read, "holds no triangles");
  giTriBlock pool;
  mesh.give(pool);
  if (request.is_appended) {
    session.control.action_append_triblock(pool);
  } else {
    session.control.action_fill_triblock(pool);
  }
  warn_of_left_out(session, mesh);
}

SceneMesh scene_of_mesh(Session& session, MeshFormat format) {
  giTriBlock pool;
  session.mesh.get_giTriBlock(pool);
  Interruption::check();
  SceneMesh mesh;
  mesh.take(pool);
  mesh.drop_collapsed();
  if (mesh.triangles.empty()) throw Failure(ExitCode::cannot_write, "the format holds no mesh without triangles");
  switch (format) {
    case MeshFormat::obj:
    case MeshFormat::ply: mesh.split_by_colour(); break;
    case MeshFormat::off: break;
    default: mesh.sort_by_colour();
  }
  return mesh;
}

bool reads_back(const SceneMesh& written, MeshFormat format, int file) {
  SceneMesh read;
  try {
    read = read_scene({"written", format, contents_of(file)}, SceneCorners::as_read);
  } catch (const Failure&) {
    Interruption::check();
    return false;
  }
  if (read.triangles.size() != written.triangles.size() || !has_same_colours(written, read, format)) return false;
  for (std::size_t k = 0; k < written.triangles.size(); ++k) {
    if (!has_same_corners(written, read, k)) return false;
  }
  return true;
}
