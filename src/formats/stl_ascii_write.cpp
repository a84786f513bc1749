#include <charconv>
#include <cstring>
#include <string>

#include "formats/facet_geometry.h"
#include "formats/offset.h"
#include "formats/tri_write.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

constexpr std::size_t chunk_bytes = std::size_t{64} << 10;

// Text on its way to the stream. Numbers are written as "%e" writes them in the C locale.
class TextWriter {
 public:
  explicit TextWriter(std::FILE* file) : file_(file) { text_.reserve(chunk_bytes + 1024); }
  ~TextWriter() { flush(); }

  TextWriter& operator<<(const char* literal) {
    text_ += literal;
    return *this;
  }
  TextWriter& operator<<(double value) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific, 6).ptr;
    text_.append(digits, end);
    return *this;
  }
  void triple(double x, double y, double z) { *this << x << " " << y << " " << z << "\n"; }
  void flush_full() {
    if (text_.size() >= chunk_bytes) flush();
  }

 private:
  void flush() {
    if (file_ != nullptr) std::fwrite(text_.data(), 1, text_.size(), file_);
    text_.clear();
  }

  std::FILE* file_;
  std::string text_;
};

void write_facet(TextWriter& out, const FacetGeometry& facet, double scale) {
  const auto narrow = [](double v) { return static_cast<double>(static_cast<float>(v)); };
  out << "  facet normal ";
  out.triple(narrow(facet.normal.x()), narrow(facet.normal.y()), narrow(facet.normal.z()));
  out << "    outer loop\n";
  for (const giPoint3& p : facet.corners) {
    out << "      vertex   ";
    out.triple(scale * p.x, scale * p.y, scale * p.z);
  }
  out << "    endloop\n  endfacet\n";
  out.flush_full();
}

}  // namespace

int trTriWrite::write_ast(int positive) {
  tr_report_progress(tr_brnknls("Writing ASCII STL file..."), 0.0);
  const giVector3 offset = positive ? positive_offset(*mesh) : giVector3();
  TextWriter out(file);
  out << "solid brenko\n";
  const int total = mesh->element_count();
  for (int e = 1; e < total; ++e) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(e, total, 0.0, 100.0);
    if (mesh->element(e).valid()) write_facet(out, FacetGeometry(*mesh, e, offset), scale);
  }
  out << "endsolid\n";
  tr_report_progress(tr_brnknls("Finished writing ASCII STL file..."), 100.0);
  return 1;
}
