#include "oracles/literal_stl_read.h"

#include <cstdint>
#include <ostream>
#include <string>

#include "formats/bin_read.h"
#include "mesh/tri_block.h"
#include "oracles/literal_scanf.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

const char* const spelling[] = {"vertex", "facet", "endfacet"};

void print(const std::string& line) { tr_out() << line << "\n"; }

}  // namespace

LiteralStlRead::LiteralStlRead(trTriBlock* mesh_in, std::FILE* file_in, int append_in, int read_node_data_in)
    : trTriRead(mesh_in, file_in, append_in, read_node_data_in) {}

void LiteralStlRead::begin() {
  if (append) mesh->alter(1);
  if (!append) mesh->clear();
}

int LiteralStlRead::read_stl(int start, int stop) {
  tr_report_progress(append ? "Appending STL file..." : "Reading STL file...", 0.0);
  reset_node_data_size(0);
  trBinRead in(file);
  std::string header;
  for (int k = 0; k < 80; ++k) header += in.read_char();
  if (in.error) {
    std::fprintf(stderr, "Error reading file header data\n");
    return 0;
  }
  print(" " + std::string(header.c_str()));
  long long count = in.read_ulong();
  if (in.error) {
    std::fprintf(stderr, "Error reading facet count\n");
    return 0;
  }
  bool skipping = start != 1;
  if (stop > 0 && count > stop) count = stop;
  begin();
  int n = mesh->node_count() - 1;
  int e = mesh->element_count() - 1;
  long long failed = 0;
  for (long long i = 1; i <= count && failed == 0; ++i) {
    if (tr_interrupt()) return 0;
    if (skipping && i >= start) skipping = false;
    tr_report_triangles(static_cast<int>(i), static_cast<int>(count), 0.0, 100.0);
    for (int k = 0; k < 3; ++k) in.read_float();
    for (int k = 0; k < 3 && !in.error; ++k) {
      const double x = double{in.read_float()};
      const double y = double{in.read_float()};
      const double z = double{in.read_float()};
      if (!in.error && !skipping) mesh->set_node(++n, giPoint3(x, y, z));
    }
    if (!in.error) in.read_ushort();
    if (in.error) failed = i;
    if (!in.error && !skipping) mesh->set_element(++e, n - 2, n - 1, n);
  }
  if (failed != 0) print("** Error reading element " + std::to_string(failed) + " **");
  tr_report_progress("Finished reading STL file...", 100.0);
  return failed == 0;
}

LiteralStlRead::Kind LiteralStlRead::next_word() {
  std::string word;
  for (;;) {
    const int c = std::fgetc(file);
    if (c == EOF) ended_ = true;
    const bool ends_word = c == EOF || c == ' ' || c == '\t' || c == '\r' || c == '\n';
    if (ends_word && word.empty() && c != EOF) continue;
    if (ends_word || word.size() == 99) break;
    word += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  }
  for (const Kind kind : {vertex, facet, endfacet}) {
    if (word == spelling[kind]) return kind;
  }
  return other;
}

bool LiteralStlRead::search(Kind sought) {
  for (;;) {
    const Kind found = next_word();
    if (found == sought) return true;
    if (found != other) {
      ended_ = false;
      print(std::string("*** Error: expected '") + spelling[sought] + "' but found '" + spelling[found] + "' ***");
      return false;
    }
    if (ended_) return false;
  }
}

bool LiteralStlRead::read_facet(giPoint3* corners) {
  for (int k = 0; k < 3; ++k) {
    if (!search(vertex)) {
      if (ended_) print("*** Error: unexpected end of file ***");
      return false;
    }
    giPoint3& p = corners[k];
    if (!literal_scan_number(file, p.x) || !literal_scan_number(file, p.y) || !literal_scan_number(file, p.z)) {
      print("*** Error: problem reading vertex coordinates ***");
      return false;
    }
  }
  if (search(endfacet)) return true;
  if (ended_) print("*** Error: unexpected end of file ***");
  return false;
}

int LiteralStlRead::read_ast(int start, int stop) {
  tr_report_progress(append ? "Appending ASCII STL file ..." : "Reading ASCII STL file ...", 0.0);
  bool skipping = start != 1;
  const bool limiting = start <= stop;
  reset_node_data_size(0);
  begin();
  int n = mesh->node_count() - 1;
  int e = mesh->element_count() - 1;
  int k = 0;
  bool failed = false;
  for (;;) {
    if (tr_interrupt()) return 0;
    if (skipping && k == std::int64_t{start} - 1) skipping = false;
    tr_report_triangles(k, -1, 0.0, 100.0);
    if (!search(facet)) {
      failed = !ended_;
      break;
    }
    giPoint3 corners[3];
    failed = !read_facet(corners);
    if (failed) break;
    if (!skipping) {
      for (int c = 0; c < 3; ++c) mesh->set_node(n + 1 + c, corners[c]);
      mesh->set_element(e + 1, n + 1, n + 2, n + 3);
      n += 3;
      e += 1;
    }
    k += 1;
    if (limiting && k == stop) break;
  }
  if (failed) print("*** Error: problem reading facet " + std::to_string(k + 1) + " ***");
  tr_report_progress("Finished reading ASCII STL file", 100.0);
  return !failed;
}
