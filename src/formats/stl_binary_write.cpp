#include <cstring>
#include <vector>

#include "formats/bin_write.h"
#include "formats/facet_geometry.h"
#include "formats/offset.h"
#include "formats/tri_write.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

constexpr int header_bytes = 80;
constexpr int facet_bytes = 50;
constexpr int facets_a_chunk = 1300;  // close to 64 KB

// Gathers facets and writes them a chunk at a time.
class FacetWriter {
 public:
  FacetWriter(trBinWrite& out, double scale) : out_(out), scale_(static_cast<float>(scale)), buffer_(facets_a_chunk * facet_bytes) {}

  void write(const FacetGeometry& facet, std::uint16_t attribute) {
    put(static_cast<float>(facet.normal.x()));
    put(static_cast<float>(facet.normal.y()));
    put(static_cast<float>(facet.normal.z()));
    for (const giPoint3& p : facet.corners) {
      put(scale_ * static_cast<float>(p.x));
      put(scale_ * static_cast<float>(p.y));
      put(scale_ * static_cast<float>(p.z));
    }
    put(attribute);
    if (filled_ == buffer_.size()) flush();
  }

  void flush() {
    out_.b_write(buffer_.data(), static_cast<int>(filled_));
    filled_ = 0;
  }

 private:
  template <class T>
  void put(T value) {
    std::memcpy(buffer_.data() + filled_, &value, sizeof value);
    filled_ += sizeof value;
  }

  trBinWrite& out_;
  float scale_;
  std::vector<char> buffer_;
  std::size_t filled_ = 0;
};

bool write_header(trBinWrite& out, bool coloured) {
  char header[header_bytes] = {};
  const char* text = coloured ? "Binary STL file written by Brenko - COLOR=rgba" : "Binary STL file written by Brenko";
  std::memcpy(header, text, std::strlen(text));
  if (!out.b_write(header, header_bytes)) return true;
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
  const int total = mesh->element_count();
  FacetWriter writer(out, scale);
  for (int e = 1; e < total; ++e) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(e, total, 0.0, 100.0);
    if (!mesh->element(e).valid()) continue;
    writer.write(FacetGeometry(*mesh, e, offset), coloured ? static_cast<std::uint16_t>(mesh->get_element_colour(e)) : 0);
    if (out.error) {
      report_facet_error(e);
      return 0;
    }
  }
  writer.flush();
  if (std::fflush(file) != 0) out.error = 1;
  if (out.error) {
    report_facet_error(total - 1);
    return 0;
  }
  tr_report_progress(tr_brnknls("Finished writing STL file..."), 100.0);
  return 1;
}
