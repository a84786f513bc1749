#include <cstring>

#include "formats/bin_write.h"
#include "formats/facet.h"
#include "formats/little_endian.h"
#include "formats/offset.h"
#include "formats/stl_binary_layout.h"
#include "formats/tri_write.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

using namespace stl_binary;

bool write_header(trBinWrite& out, bool has_colour) {
  char header[header_size] = {};
  const char* text = has_colour ? "Binary STL file written by Brenko - COLOR=rgba" : "Binary STL file written by Brenko";
  std::memcpy(header, text, std::strlen(text));
  for (const char letter : header) out.write_char(letter);
  if (!out.error) return true;
  std::fputs(tr_brnknls("Error writing file header\n"), stderr);
  return false;
}

bool write_count(trBinWrite& out, int count) {
  out.write_ulong(static_cast<std::uint32_t>(count));
  if (!out.error) return true;
  std::fputs(tr_brnknls("Error writing element count\n"), stderr);
  return false;
}

void store_triple(unsigned char* bytes, float x, float y, float z) {
  store_f32(bytes, x);
  store_f32(bytes + 4, y);
  store_f32(bytes + 8, z);
}

// One write a facet, so that a failure is told at the facet whose bytes found no room.
void write_facet(trBinWrite& out, const Facet& facet, float scale, std::uint16_t attribute) {
  const auto single = [](double value) { return static_cast<float>(value); };
  unsigned char bytes[facet_size];
  store_triple(bytes, single(facet.normal.x()), single(facet.normal.y()), single(facet.normal.z()));
  for (int k = 0; k < 3; ++k) {
    const giPoint3& p = facet.corners[k];
    store_triple(bytes + corner_offset(k), scale * single(p.x), scale * single(p.y), scale * single(p.z));
  }
  store_u16(bytes + attribute_offset, attribute);
  out.b_write(reinterpret_cast<const char*>(bytes), facet_size);
}

// The formats are the library's own texts, possibly translated, for one integer.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
void tell_failed_facet(int e) { std::fprintf(stderr, tr_brnknls("** Error occurred writing facet %d **\n"), e); }
#pragma GCC diagnostic pop

}  // namespace

int trTriWrite::write_stl(int positive) {
  tr_report_progress(tr_brnknls("Writing STL file..."), 0.0);
  const bool has_colour = mesh->get_element_colour(1) != NO_COLOUR;
  const giVector3 offset = positive ? positive_offset(mesh->box().min()) : giVector3(0.0, 0.0, 0.0);
  trBinWrite out(file);
  if (!write_header(out, has_colour) || !write_count(out, mesh->valid_elements())) return 0;
  const int count = mesh->element_count();
  for (int e = 1; e < count; ++e) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(e, count, 0.0, 100.0);
    if (!mesh->element(e).valid()) continue;
    const int colour = has_colour ? mesh->get_element_colour(e) : 0;
    write_facet(out, Facet(*mesh, e, offset), static_cast<float>(scale), static_cast<std::uint16_t>(colour));
    if (out.error) {
      tell_failed_facet(e);
      return 0;
    }
  }
  tr_report_progress(tr_brnknls("Finished writing STL file..."), 100.0);
  return 1;
}
