// CGAL's polygon mesh processing.
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/IO/STL.h>
#include <CGAL/Polygon_mesh_processing/border.h>
#include <CGAL/Polygon_mesh_processing/internal/Snapping/snap.h>
#include <CGAL/Polygon_mesh_processing/manifoldness.h>
#include <CGAL/Polygon_mesh_processing/orient_polygon_soup.h>
#include <CGAL/Polygon_mesh_processing/repair_polygon_soup.h>
#include <CGAL/Polygon_mesh_processing/self_intersections.h>
#include <CGAL/Polygon_mesh_processing/stitch_borders.h>
#include <CGAL/Polygon_mesh_processing/triangulate_hole.h>
#include <CGAL/Surface_mesh.h>
#include <CGAL/boost/graph/IO/STL.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <utility>
#include <vector>

#include "peers/driver.h"
#include "support/check.h"
#include "support/floors.h"

namespace {

namespace PMP = CGAL::Polygon_mesh_processing;
using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Point = Kernel::Point_3;
using Mesh = CGAL::Surface_mesh<Point>;

struct PolygonSoup {
  std::vector<Point> points;
  std::vector<std::array<std::size_t, 3>> polygons;
};

std::vector<Mesh::Vertex_index> add_points(Mesh& mesh, const FlatMesh& flat) {
  mesh.reserve(flat.vertex_count, 3 * flat.facets / 2, flat.facets);
  std::vector<Mesh::Vertex_index> vertices;
  for (std::size_t i = 0; i < flat.vertex_count; ++i) {
    const FlatPoint& p = flat.vertices[i];
    vertices.push_back(mesh.add_vertex(Point(p.x, p.y, p.z)));
  }
  return vertices;
}

void add_faces(Mesh& mesh, const FlatMesh& flat, const std::vector<Mesh::Vertex_index>& vertices) {
  for (std::size_t f = 0; f < flat.facets; ++f) {
    const auto* corner = &flat.corners[3 * f];
    mesh.add_face(vertices[corner[0]], vertices[corner[1]], vertices[corner[2]]);
  }
}

Mesh surface_of(const char* file) {
  const FlatMesh flat = load_flat(file);
  Mesh mesh;
  add_faces(mesh, flat, add_points(mesh, flat));
  require(mesh.number_of_faces() == flat.facets, "a face that CGAL does not take");
  return mesh;
}

double border_edges(const Mesh& mesh) {
  double count = 0.0;
  for (const auto h : mesh.halfedges()) count += mesh.is_border(h);
  return count;
}

Report merge(const char* input, const char*) {
  const FlatSoup facets = parse_flat(input);
  PolygonSoup soup;
  for (std::size_t i = 0; i < 3 * facets.facets; ++i) {
    soup.points.emplace_back(facets.corners[3 * i], facets.corners[3 * i + 1], facets.corners[3 * i + 2]);
    if (i % 3 == 2) soup.polygons.push_back({i - 2, i - 1, i});
  }
  const Cost cost = cost_of([&] { PMP::merge_duplicate_points_in_polygon_soup(soup.points, soup.polygons); });
  return {cost, {double(soup.points.size())}};
}

Report topology(const char* input, const char*) {
  const FlatMesh flat = load_flat(input);
  Mesh mesh;
  const auto vertices = add_points(mesh, flat);
  const Cost cost = cost_of([&] { add_faces(mesh, flat, vertices); });
  return {cost, {double(mesh.number_of_faces()), border_edges(mesh)}};
}

Report manifold(const char* input, const char*) {
  const Mesh mesh = surface_of(input);
  std::vector<Mesh::Halfedge_index> found;
  const Cost cost = cost_of([&] { PMP::non_manifold_vertices(mesh, std::back_inserter(found)); });
  return {cost, {double(mesh.number_of_faces()), double(found.size())}};
}

double volume_of(const PolygonSoup& soup) {
  double sum = 0.0;
  for (const auto& t : soup.polygons) {
    const Point &a = soup.points[t[0]], &b = soup.points[t[1]], &c = soup.points[t[2]];
    sum += a.x() * (b.y() * c.z() - b.z() * c.y()) + a.y() * (b.z() * c.x() - b.x() * c.z()) + a.z() * (b.x() * c.y() - b.y() * c.x());
  }
  return std::abs(sum) / 6.0;
}

// Finds the neighbours as well: it starts from triangles alone.
Report orient(const char* input, const char*) {
  const FlatMesh flat = load_flat(input);
  PolygonSoup soup;
  for (std::size_t i = 0; i < flat.vertex_count; ++i) soup.points.emplace_back(flat.vertices[i].x, flat.vertices[i].y, flat.vertices[i].z);
  for (std::size_t f = 0; f < flat.facets; ++f) {
    const auto* corner = &flat.corners[3 * f];
    soup.polygons.push_back({corner[0], corner[1], corner[2]});
    if (f % 3 == 0) std::swap(soup.polygons.back()[0], soup.polygons.back()[1]);
  }
  const Cost cost = cost_of([&] { PMP::orient_polygon_soup(soup.points, soup.polygons); });
  require(soup.points.size() == flat.vertex_count, "points are doubled");
  return {cost, {volume_of(soup)}};
}

// How many faces intersect another, all pairs being found, with exact predicates.
Report intersections(const char* input, const char*) {
  const Mesh mesh = surface_of(input);
  std::vector<std::pair<Mesh::Face_index, Mesh::Face_index>> pairs;
  const Cost cost = cost_of([&] { PMP::self_intersections(mesh, std::back_inserter(pairs)); });
  std::set<Mesh::Face_index> faces;
  for (const auto& [one, other] : pairs) faces.insert({one, other});
  return {cost, {double(faces.size())}};
}

Report fill(const char* input, const char*) {
  Mesh mesh = surface_of(input);
  std::vector<Mesh::Halfedge_index> holes;
  PMP::extract_boundary_cycles(mesh, std::back_inserter(holes));
  require(!holes.empty(), "there is no hole");
  std::vector<Mesh::Face_index> patch;
  const Cost cost = cost_of([&] {
    for (const auto hole : holes) PMP::triangulate_hole(mesh, hole, std::back_inserter(patch));
  });
  return {cost, {border_edges(mesh)}};
}

// Borders whose edges are alike.
Report stitch(const char* input, const char*) {
  Mesh mesh = surface_of(input);
  require(border_edges(mesh) > 0.0, "there is no border");
  const Cost cost = cost_of([&] { PMP::stitch_borders(mesh); });
  return {cost, {border_edges(mesh)}};
}

// Borders with nodes on the edges of others: the edges are split there, then the borders are alike.
Report snap_and_stitch(const char* input, const char* tol) {
  Mesh mesh = surface_of(input);
  require(border_edges(mesh) > 0.0, "there is no border");
  const CGAL::Constant_property_map<Mesh::Vertex_index, double> tolerance(std::strtod(tol, nullptr));
  const Cost cost = cost_of([&] {
    PMP::experimental::snap_borders(mesh, tolerance);
    PMP::stitch_borders(mesh);
  });
  return {cost, {border_edges(mesh)}};
}

Report read(const char* input, const char*) {
  PolygonSoup soup;
  bool done = false;
  const Cost cost = cost_of([&] { done = CGAL::IO::read_STL(std::string(input), soup.points, soup.polygons); });
  require(done, "read_STL failed");
  return {cost, {double(soup.polygons.size())}};
}

Report write(const char* input, const char* output) {
  const Mesh mesh = surface_of(input);
  const Cost cost = cost_of([&] { CGAL::IO::write_STL(std::string(output), mesh); });
  return {cost, {}};
}

}  // namespace

int main(int argc, char** argv) {
  return run_driver(argc, argv,
                    {{"merge", merge},
                     {"topology", topology},
                     {"manifold", manifold},
                     {"orient", orient},
                     {"intersections", intersections},
                     {"fill", fill},
                     {"stitch", stitch},
                     {"snap_and_stitch", snap_and_stitch},
                     {"read", read},
                     {"write", write}});
}
