// OpenMesh.
#include <OpenMesh/Core/IO/MeshIO.hh>
#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>

#include <vector>

#include "peers/driver.h"
#include "support/check.h"
#include "support/floors.h"

namespace {

using Mesh = OpenMesh::TriMesh_ArrayKernelT<>;

// Points only: the faces are what is timed.
std::vector<Mesh::VertexHandle> add_points(Mesh& mesh, const FlatMesh& flat) {
  mesh.reserve(flat.vertex_count, 3 * flat.facets / 2, flat.facets);
  std::vector<Mesh::VertexHandle> vertices;
  for (std::size_t i = 0; i < flat.vertex_count; ++i) {
    const FlatPoint& p = flat.vertices[i];
    vertices.push_back(mesh.add_vertex(Mesh::Point(float(p.x), float(p.y), float(p.z))));
  }
  return vertices;
}

void add_faces(Mesh& mesh, const FlatMesh& flat, const std::vector<Mesh::VertexHandle>& vertices) {
  for (std::size_t f = 0; f < flat.facets; ++f) {
    const auto* corner = &flat.corners[3 * f];
    mesh.add_face(vertices[corner[0]], vertices[corner[1]], vertices[corner[2]]);
  }
}

double border_edges(const Mesh& mesh) {
  double count = 0.0;
  for (const auto edge : mesh.edges()) count += mesh.is_boundary(edge);
  return count;
}

Report read(const char* input, const char*) {
  Mesh mesh;
  OpenMesh::IO::Options options = OpenMesh::IO::Options::Binary;
  bool done = false;
  const Cost cost = cost_of([&] { done = OpenMesh::IO::read_mesh(mesh, input, options); });
  require(done, "read_mesh failed");
  return {cost, {double(mesh.n_faces()), double(mesh.n_vertices())}};
}

Report topology(const char* input, const char*) {
  const FlatMesh flat = load_flat(input);
  Mesh mesh;
  const auto vertices = add_points(mesh, flat);
  const Cost cost = cost_of([&] { add_faces(mesh, flat, vertices); });
  return {cost, {double(mesh.n_faces()), border_edges(mesh)}};
}

Report manifold(const char* input, const char*) {
  const FlatMesh flat = load_flat(input);
  Mesh mesh;
  add_faces(mesh, flat, add_points(mesh, flat));
  double found = 0.0;
  const Cost cost = cost_of([&] {
    for (const auto vertex : mesh.vertices()) found += !mesh.is_manifold(vertex);
  });
  return {cost, {double(mesh.n_faces()), found}};
}

Report write(const char* input, const char* output) {
  const FlatMesh flat = load_flat(input);
  Mesh mesh;
  add_faces(mesh, flat, add_points(mesh, flat));
  bool done = false;
  const Cost cost = cost_of([&] { done = OpenMesh::IO::write_mesh(mesh, output, OpenMesh::IO::Options::Binary); });
  require(done, "write_mesh failed");
  return {cost, {}};
}

}  // namespace

int main(int argc, char** argv) {
  return run_driver(argc, argv, {{"read", read}, {"topology", topology}, {"manifold", manifold}, {"write", write}});
}
