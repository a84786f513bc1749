#include <charconv>
#include <string_view>

#include "formats/facet.h"
#include "formats/offset.h"
#include "formats/tri_write.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

// The lines of one facet, put together in memory. The longest number, "-1.797693e+308", has 14 characters.
class FacetText {
 public:
  FacetText(const Facet& facet, double scale) {
    const auto single = [](double value) { return static_cast<double>(static_cast<float>(value)); };
    add("  facet normal");
    add_numbers(single(facet.normal.x()), single(facet.normal.y()), single(facet.normal.z()));
    add("    outer loop\n");
    for (const giPoint3& p : facet.corners) {
      add("      vertex  ");
      add_numbers(scale * p.x, scale * p.y, scale * p.z);
    }
    add("    endloop\n  endfacet\n");
  }

  std::string_view text() const { return {text_, static_cast<std::size_t>(end_ - text_)}; }

 private:
  void add(std::string_view words) { end_ += words.copy(end_, words.size()); }

  // Each after a blank, then the end of the line.
  void add_numbers(double x, double y, double z) {
    for (const double value : {x, y, z}) {
      *end_++ = ' ';
      end_ = std::to_chars(end_, text_ + sizeof text_, value, std::chars_format::scientific, 6).ptr;
    }
    *end_++ = '\n';
  }

  char text_[512];
  char* end_ = text_;
};

void write_text(std::FILE* file, std::string_view text) {
  if (file != nullptr) std::fwrite(text.data(), 1, text.size(), file);
}

}  // namespace

int trTriWrite::write_ast(int positive) {
  tr_report_progress(tr_brnknls("Writing ASCII STL file..."), 0.0);
  const giVector3 offset = positive ? positive_offset(mesh->box().min()) : giVector3(0.0, 0.0, 0.0);
  write_text(file, "solid brenko\n");
  const int count = mesh->element_count();
  for (int e = 1; e < count; ++e) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(e, count, 0.0, 100.0);
    if (!mesh->element(e).valid()) continue;
    write_text(file, FacetText(Facet(*mesh, e, offset), scale).text());
  }
  write_text(file, "endsolid\n");
  tr_report_progress(tr_brnknls("Finished writing ASCII STL file..."), 100.0);
  return 1;
}
