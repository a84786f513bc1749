#include "formats/facet_geometry.h"
#include "formats/offset.h"
#include "formats/text_out.h"
#include "formats/tri_write.h"
#include "mesh/memory_guard.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

void write_triple(TextOut& out, double x, double y, double z) {
  out.scientific(x) << " ";
  out.scientific(y) << " ";
  out.scientific(z) << "\n";
}

void write_facet(TextOut& out, const FacetGeometry& facet, double scale) {
  const auto narrow = [](double v) { return static_cast<double>(static_cast<float>(v)); };
  out << "  facet normal ";
  write_triple(out, narrow(facet.normal.x()), narrow(facet.normal.y()), narrow(facet.normal.z()));
  out << "    outer loop\n";
  for (const giPoint3& p : facet.corners) {
    out << "      vertex   ";
    write_triple(out, scale * p.x, scale * p.y, scale * p.z);
  }
  out << "    endloop\n  endfacet\n";
}

}  // namespace

int trTriWrite::write_ast(int positive) {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return write_ast(positive); });
  tr_report_progress(tr_brnknls("Writing ASCII STL file..."), 0.0);
  const giVector3 offset = positive ? positive_offset(*mesh) : giVector3();
  TextOut out(file);
  out << "solid brenko\n";
  const int total = mesh->element_count();
  for (int e = 1; e < total; ++e) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(e, total, 0.0, 100.0);
    mesh->prefetch_corners(e + trTriBlock::corners_ahead);
    if (mesh->element(e).valid()) write_facet(out, FacetGeometry(*mesh, e, offset), scale);
  }
  out << "endsolid\n";
  tr_report_progress(tr_brnknls("Finished writing ASCII STL file..."), 100.0);
  return 1;
}
