#include <cstring>

#include "formats/bin_write.h"
#include "formats/facet_geometry.h"
#include "formats/offset.h"
#include "formats/stl_layout.h"
#include "formats/tri_write.h"
#include "mesh/memory_guard.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

// Writes one record a facet, so that a failure is told at the facet whose bytes found no room.
class FacetWriter {
 public:
  FacetWriter(trBinWrite& out, double scale) : out_(out), scale_(static_cast<float>(scale)) {}

  void write(const FacetGeometry& facet, std::uint16_t attribute) {
    char* at = record_;
    at = put(at, static_cast<float>(facet.normal.x()));
    at = put(at, static_cast<float>(facet.normal.y()));
    at = put(at, static_cast<float>(facet.normal.z()));
    for (const giPoint3& p : facet.corners) {
      at = put(at, scale_ * static_cast<float>(p.x));
      at = put(at, scale_ * static_cast<float>(p.y));
      at = put(at, scale_ * static_cast<float>(p.z));
    }
    put(at, attribute);
    out_.b_write(record_, stl::facet_bytes);
  }

 private:
  template <class T>
  static char* put(char* at, T value) {
    std::memcpy(at, &value, sizeof value);
    return at + sizeof value;
  }

  trBinWrite& out_;
  float scale_;
  char record_[stl::facet_bytes];
};

bool write_header(trBinWrite& out, bool coloured) {
  char header[stl::header_bytes] = {};
  const char* text = coloured ? "Binary STL file written by Brenko - COLOR=rgba" : "Binary STL file written by Brenko";
  std::memcpy(header, text, std::strlen(text));
  if (!out.b_write(header, stl::header_bytes)) return true;
  std::fputs(tr_brnknls("Error writing file header\n"), stderr);
  return false;
}

void report_facet_error(int e) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  std::fprintf(stderr, tr_brnknls("** Error occurred writing facet %d **\n"), e);
#pragma GCC diagnostic pop
}

}  // namespace

int trTriWrite::write_stl(int positive) {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return write_stl(positive); });
  tr_report_progress(tr_brnknls("Writing STL file..."), 0.0);
  const bool coloured = mesh->get_element_colour(1) != NO_COLOUR;
  const giVector3 offset = positive ? positive_offset(*mesh) : giVector3();
  trBinWrite out(file);
  if (!write_header(out, coloured)) return 0;
  out.write_ulong(static_cast<std::uint32_t>(mesh->valid_elements()));
  if (out.error) {
    std::fputs(tr_brnknls("Error writing element count\n"), stderr);
    return 0;
  }
  if (!write_facets(out, offset, coloured)) return 0;
  tr_report_progress(tr_brnknls("Finished writing STL file..."), 100.0);
  return 1;
}

// 0 when interrupted or when the stream took no more, which for the last facets shows only as the stream is emptied.
int trTriWrite::write_facets(trBinWrite& out, const giVector3& offset, bool coloured) {
  const int total = mesh->element_count();
  FacetWriter writer(out, scale);
  int last_written = 0;
  for (int e = 1; e < total && !out.error; ++e) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(e, total, 0.0, 100.0);
    mesh->prefetch_corners(e + trTriBlock::corners_ahead);
    if (!mesh->element(e).valid()) continue;
    writer.write(FacetGeometry(*mesh, e, offset), coloured ? static_cast<std::uint16_t>(mesh->get_element_colour(e)) : 0);
    last_written = e;
  }
  if (!out.error && std::fflush(file) == 0) return 1;
  report_facet_error(last_written);
  return 0;
}
