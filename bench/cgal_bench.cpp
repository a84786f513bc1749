#include "cgal_bench.h"

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_mesh_processing/self_intersections.h>
#include <CGAL/Surface_mesh.h>

#include <iterator>
#include <utility>
#include <vector>

#include "support/check.h"
#include "support/timing.h"

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Mesh = CGAL::Surface_mesh<Kernel::Point_3>;

Mesh surface_of(const FlatMesh& flat) {
  Mesh mesh;
  std::vector<Mesh::Vertex_index> vertices;
  for (std::size_t i = 0; i < flat.vertex_count; ++i) {
    const FlatPoint& p = flat.vertices[i];
    vertices.push_back(mesh.add_vertex(Kernel::Point_3(p.x, p.y, p.z)));
  }
  for (std::size_t f = 0; f < flat.facets; ++f) {
    const auto* corner = &flat.corners[3 * f];
    const auto face = mesh.add_face(vertices[corner[0]], vertices[corner[1]], vertices[corner[2]]);
    require(face != Mesh::null_face(), "a face that CGAL does not take");
  }
  return mesh;
}

}  // namespace

CgalResult cgal_self_intersections(const FlatMesh& flat) {
  const Mesh mesh = surface_of(flat);
  std::vector<std::pair<Mesh::Face_index, Mesh::Face_index>> pairs;
  CgalResult result;
  result.seconds =
      seconds_of([&] { CGAL::Polygon_mesh_processing::self_intersections(mesh, std::back_inserter(pairs)); });
  result.pairs = pairs.size();
  return result;
}
