// The triangle file: a text file of one block of vertices, each with its normal and two surface parameters, and of triangles that index
// them.

#include <initializer_list>
#include <string>
#include <vector>

#include "formats/text_out.h"
#include "formats/tri_write.h"
#include "mesh/measures.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

// A facet whose cross vector is at most this long, in model units squared, is written with the z axis for a normal.
constexpr double degenerate_cross = 0.0001;

class TriangleFile {
 public:
  TriangleFile(const trTriBlock& mesh, std::FILE* file) : mesh_(mesh), out_(file) {}

  // False when the stream takes no more.
  bool header(int vertices, int triangles) {
    out_ << " KARN 5.2 TRIANGLE BLOCK\n Written by libmendexlib\n *\n    1\n   @MNX        \n MNX     \n GREEN   \n";
    constexpr const char* description = " Created by MENDEX program";
    out_ << description << std::string(81 - std::string(description).size(), ' ').c_str() << "\n";
    out_ << " ";
    out_.integer(1, 10) << " ";
    out_.integer(0, 10) << " ";
    out_.integer(vertices, 10) << " ";
    out_.integer(triangles, 10) << " ";
    out_.integer(0, 10) << "\n";
    const giBox3 box = mesh_.box();
    row({box.min().x, box.max().x, box.min().y, box.max().y});
    row({box.min().z, box.max().z, -1.0, 1.0});
    row({0.0, 0.0, -1.0, 0.0});
    row({0.0, 1.0, 0.0, 1.0});
    out_ << " ";
    out_.integer(0, 10).integer(0, 10).integer(0, 10).integer(0, 10) << "\n";
    row({0.0, 0.0, 0.0, 0.0});
    row({0.0, 0.0, 0.0, 0.0});
    row({0.0, 0.0, 0.0});
    out_.flush();
    return !out_.has_failed();
  }

  void vertex(int node, const giVector3& normal) {
    const giPoint3& p = mesh_.point(node);
    double u = 0.0, v = 0.0;
    surface_parameters(node, u, v);
    row({p.x, p.y, p.z, normal.x()});
    row({normal.y(), normal.z(), u, v});
  }

  void triangle(int a, int b, int c) {
    out_ << " ";
    out_.integer(a, 16).integer(b, 16).integer(c, 16) << "\n";
  }

 private:
  void row(std::initializer_list<double> values) {
    out_ << " ";
    for (const double value : values) out_.fixed(value, 19, 5);
    out_ << "\n";
  }

  // With exactly two attributes a node they are the parameters; with five or more, the last two of five are.
  void surface_parameters(int node, double& u, double& v) const {
    const int size = mesh_.node_data_size();
    if ((size != 2 && size < 5) || !mesh_.has_node_data(node)) return;
    const double* values = mesh_.node_data(node).values + (size == 2 ? 0 : 3);
    u = values[0];
    v = values[1];
  }

  const trTriBlock& mesh_;
  TextOut out_;
};

giVector3 facet_normal(const trTriBlock& mesh, const trElement& t) {
  giVector3 normal;
  const int has_normal = tr_compute_normal(mesh.point(t[0]), mesh.point(t[1]), mesh.point(t[2]), degenerate_cross, normal);
  return has_normal ? normal : giVector3(0.0, 0.0, 1.0);
}

}  // namespace

int trTriWrite::write_tri() {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return write_tri(); });
  tr_report_progress(tr_brnknls("Writing triangle file (flat format)..."), 0.0);
  TriangleFile out(*mesh, file);
  const int triangles = mesh->valid_elements();
  if (!out.header(3 * triangles, triangles)) return 0;
  const int count = mesh->element_count();
  for (int e = 1; e < count; ++e) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(e, count, 0.0, 50.0);
    mesh->prefetch_corners(e + trTriBlock::corners_ahead);
    const trElement& t = mesh->element(e);
    if (!t.valid()) continue;
    const giVector3 normal = facet_normal(*mesh, t);
    for (int k = 0; k < 3; ++k) out.vertex(t[k], normal);
  }
  for (int k = 1; k <= triangles; ++k) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(k, triangles, 50.0, 100.0);
    out.triangle(3 * k - 2, 3 * k - 1, 3 * k);
  }
  tr_report_progress(tr_brnknls("Finished writing triangle file (flat format)..."), 100.0);
  return 1;
}

int trTriWrite::write_smooth_tri() {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return write_smooth_tri(); });
  const bool has_normals = mesh->node_data_size() >= 3;
  tr_report_progress(tr_brnknls(has_normals ? "Writing triangle file (normal format)..." : "Writing triangle file (smooth format)..."), 0.0);
  mesh->reference_elements();
  const_cast<trTriBlock*>(mesh)->compute_node_normals();  // fills a cache
  TriangleFile out(*mesh, file);
  const int points = mesh->valid_nodes();
  const int triangles = mesh->valid_elements();
  if (!out.header(points, triangles)) return 0;
  const int nodes = mesh->node_count();
  std::vector<int> vertex_of(static_cast<std::size_t>(nodes), 0);
  int vertices = 0;
  for (int i = 1; i < nodes; ++i) {
    if (tr_interrupt()) return 0;
    tr_report_nodes(i, nodes, 0.0, 50.0);
    if (mesh->node(i).invalid) continue;
    vertex_of[static_cast<std::size_t>(i)] = ++vertices;
    out.vertex(i, mesh->node_normal(i));
  }
  const int count = mesh->element_count();
  for (int e = 1; e < count; ++e) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(e, count, 50.0, 100.0);
    const trElement& t = mesh->element(e);
    if (!t.valid()) continue;
    const auto vertex = [&](int k) { return vertex_of[static_cast<std::size_t>(t[k])]; };
    out.triangle(vertex(0), vertex(1), vertex(2));
  }
  tr_report_progress(tr_brnknls("Finished writing triangle file"), 100.0);
  return 1;
}

giVector3 trTriWrite::average_normal(int node) const {
  const_cast<trTriBlock*>(mesh)->compute_node_normals();
  return mesh->node_normal(node);
}
