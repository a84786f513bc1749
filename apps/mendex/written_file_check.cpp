#include "written_file_check.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>

namespace {

constexpr std::size_t facets_at_a_time = 8192;
constexpr std::size_t normal_bytes = 12;
constexpr std::int64_t lines_of_a_facet = 7;
constexpr std::int64_t lines_of_a_solid = 2;

// Fills `to` from the file's position `from` on; false when the file ends before.
bool read_at(int file, std::uint64_t from, char* to, std::size_t size) {
  for (std::size_t done = 0; done < size;) {
    const ssize_t n = pread(file, to + done, size - done, static_cast<off_t>(from + done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<std::size_t>(n);
  }
  return true;
}

std::uint64_t size_of(int file) {
  struct stat status = {};
  return fstat(file, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

// How far a coordinate may be from what was written.
double rounding_of(MeshFormat format) {
  switch (format) {
    case MeshFormat::triangle_file: return 0.51e-5;
    case MeshFormat::mesh_file: return 0.51e-4;
    default: return 0.0;
  }
}

bool is_near(double written, double read, double rounding) {
  if (written == read || (std::isnan(written) && std::isnan(read))) return true;
  return std::fabs(written - read) <= rounding + 4e-16 * std::fabs(written);
}

// The next valid element after number e; the element count when there is none.
int next_element(const trTriBlock& mesh, int e) {
  do {
    ++e;
  } while (e < mesh.element_count() && !mesh.element(e).valid());
  return e;
}

bool have_same_corners(const trTriBlock& a, int of_a, const trTriBlock& b, int of_b, double rounding) {
  for (int k = 0; k < 3; ++k) {
    const giPoint3 &p = a.point(a.element(of_a)[k]), &q = b.point(b.element(of_b)[k]);
    if (!is_near(p.x, q.x, rounding) || !is_near(p.y, q.y, rounding) || !is_near(p.z, q.z, rounding)) return false;
  }
  return true;
}

bool read_back(trTriBlock& mesh, int file, MeshFormat format) {
  const int copy = dup(file);
  FILE* const stream = copy < 0 ? nullptr : fdopen(copy, "rb");
  if (stream == nullptr) {
    if (copy >= 0) close(copy);
    return false;
  }
  std::rewind(stream);
  std::ostream& shown = tr_out();
  std::ostringstream unseen;
  tr_set_output(&unseen);
  trTriRead reader(&mesh, stream, 0, 0);
  const int is_read = format == MeshFormat::native      ? reader.read_native()
                      : format == MeshFormat::mesh_file ? reader.read_mes()
                      : format == MeshFormat::kvx       ? reader.read_kvx()
                                                        : reader.read_tri();
  tr_set_output(&shown);
  return is_read != 0;
}

}  // namespace

WrittenFileCheck::WrittenFileCheck(const trTriBlock& mesh, int file, MeshFormat format, bool positive)
    : mesh_(mesh), file_(file) {
  switch (format) {
    case MeshFormat::binary_stl: is_sound_ = check_binary(positive); break;
    case MeshFormat::ascii_stl: is_sound_ = check_ascii(); break;
    default: is_sound_ = check_by_reading(format);
  }
}

bool WrittenFileCheck::check_binary(bool positive) {
  const auto facets = static_cast<std::uint64_t>(mesh_.valid_elements());
  char header[binary_stl_header_bytes];
  if (size_of(file_) != binary_stl_header_bytes + binary_stl_facet_bytes * facets) return false;
  if (!read_at(file_, 0, header, sizeof header)) return false;
  if (promised_facets({header, sizeof header}) != facets) return false;
  if (positive) return true;
  std::string records(facets_at_a_time * binary_stl_facet_bytes, '\0');
  int element = 0;
  for (std::uint64_t done = 0; done < facets;) {
    const std::uint64_t count = std::min<std::uint64_t>(facets_at_a_time, facets - done);
    const std::uint64_t at = binary_stl_header_bytes + binary_stl_facet_bytes * done;
    if (!read_at(file_, at, &records[0], count * binary_stl_facet_bytes)) return false;
    if (!check_facets(records.data(), static_cast<int>(count), element)) return false;
    done += count;
  }
  return true;
}

// Compares records with the valid elements that follow number `element`, which ends as the last one compared.
bool WrittenFileCheck::check_facets(const char* records, int count, int& element) {
  for (int k = 0; k < count; ++k) {
    do {
      if (++element >= mesh_.element_count()) return false;
    } while (!mesh_.element(element).valid());
    const char* corner = records + static_cast<std::size_t>(k) * binary_stl_facet_bytes + normal_bytes;
    for (int c = 0; c < 3; ++c, corner += 3 * sizeof(float)) {
      if (!check_corner(corner, mesh_.point(mesh_.element(element)[c]))) return false;
    }
  }
  return true;
}

// Compares values rather than bits: writing adds an offset, which turns a negative zero into a positive one.
bool WrittenFileCheck::check_corner(const char* record, const giPoint3& point) {
  const double exact[3] = {point.x, point.y, point.z};
  for (int k = 0; k < 3; ++k) {
    float written;
    std::memcpy(&written, record + static_cast<std::size_t>(k) * sizeof written, sizeof written);
    const float expected = static_cast<float>(exact[k]);
    if (!(written == expected || (std::isnan(written) && std::isnan(expected)))) return false;
    has_overflow_ |= std::isinf(expected) && std::isfinite(exact[k]);
  }
  return true;
}

// Elements that repeat a node, which only an edit from outside can make, are written but not read.
bool WrittenFileCheck::check_by_reading(MeshFormat format) const {
  trTriBlock read;
  if (!read_back(read, file_, format)) return false;
  const double rounding = rounding_of(format);
  int of_read = next_element(read, 0);
  for (int e = next_element(mesh_, 0); e < mesh_.element_count(); e = next_element(mesh_, e)) {
    const trElement& t = mesh_.element(e);
    if (t[0] == t[1] || t[1] == t[2] || t[2] == t[0]) continue;
    if (of_read >= read.element_count() || !have_same_corners(mesh_, e, read, of_read, rounding)) return false;
    of_read = next_element(read, of_read);
  }
  return of_read >= read.element_count();
}

bool WrittenFileCheck::check_ascii() const {
  const std::string closing = "endsolid\n";
  const std::uint64_t size = size_of(file_);
  std::string piece(256 * 1024, '\0');
  std::int64_t lines = 0;
  for (std::uint64_t at = 0; at < size;) {
    const std::size_t n = std::min<std::uint64_t>(piece.size(), size - at);
    if (!read_at(file_, at, &piece[0], n)) return false;
    lines += std::count(piece.data(), piece.data() + n, '\n');
    at += n;
  }
  std::string end(closing.size(), '\0');
  return size >= closing.size() && read_at(file_, size - closing.size(), &end[0], end.size()) && end == closing &&
         lines == lines_of_a_facet * mesh_.valid_elements() + lines_of_a_solid;
}
