#include "support/meshes.h"

#include <cmath>
#include <cstdint>
#include <random>
#include <utility>

namespace {

constexpr double pi = 3.14159265358979323846;

// Rows of points at place(i, j), joined into two triangles a cell; with `closed` the last row is the first.
template <class Place>
Mesh grid_mesh(int rows, int columns, bool closed, Place place) {
  Mesh mesh;
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j <= columns; ++j) mesh.points.push_back(place(i, j));
  }
  for (int i = 0; i + (closed ? 0 : 1) < rows; ++i) {
    for (int j = 0; j < columns; ++j) {
      const int a = i * (columns + 1) + j;
      const int b = (i + 1) % rows * (columns + 1) + j;
      mesh.triangles.push_back({a, b, b + 1});
      mesh.triangles.push_back({a, b + 1, a + 1});
    }
  }
  return mesh;
}

}  // namespace

std::unique_ptr<trTriBlock> block_of(Mesh mesh, FacetOrder order) {
  if (order == FacetOrder::shuffled) {
    std::mt19937_64 random(20240229);
    for (std::size_t i = mesh.triangles.size(); i > 1; --i)
      std::swap(mesh.triangles[i - 1], mesh.triangles[random() % i]);
  }
  auto block = std::make_unique<trTriBlock>();
  for (std::size_t i = 0; i < mesh.points.size(); ++i) block->set_node(static_cast<int>(i) + 1, mesh.points[i]);
  for (std::size_t f = 0; f < mesh.triangles.size(); ++f) {
    const auto& t = mesh.triangles[f];
    block->set_element(static_cast<int>(f) + 1, t[0] + 1, t[1] + 1, t[2] + 1);
  }
  return block;
}

FlatMesh flat_of(const trTriBlock& block) {
  FlatMesh mesh;
  mesh.facets = static_cast<std::size_t>(block.valid_elements());
  mesh.vertices = Buffer<FlatPoint>(static_cast<std::size_t>(block.valid_nodes()));
  mesh.corners = Buffer<std::uint32_t>(3 * mesh.facets);
  std::vector<std::uint32_t> index(static_cast<std::size_t>(block.node_count()), UINT32_MAX);
  std::size_t next = 0;
  for (int e = 1; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    if (!t.valid()) continue;
    for (int k = 0; k < 3; ++k) {
      std::uint32_t& known = index[static_cast<std::size_t>(t[k])];
      if (known == UINT32_MAX) {
        const giPoint3& p = block.point(t[k]);
        known = static_cast<std::uint32_t>(mesh.vertex_count);
        mesh.vertices[mesh.vertex_count++] = {p.x, p.y, p.z};
      }
      mesh.corners[next++] = known;
    }
  }
  return mesh;
}

Mesh mesh_of(const FlatMesh& flat) {
  Mesh mesh;
  for (std::size_t i = 0; i < flat.vertex_count; ++i) {
    mesh.points.emplace_back(flat.vertices[i].x, flat.vertices[i].y, flat.vertices[i].z);
  }
  for (std::size_t f = 0; f < flat.facets; ++f) {
    const auto corner = [&](std::size_t k) { return static_cast<int>(flat.corners[3 * f + k]); };
    mesh.triangles.push_back({corner(0), corner(1), corner(2)});
  }
  return mesh;
}

Mesh unmerged(const FlatPoint* corners, std::size_t facets) {
  Mesh mesh;
  for (std::size_t i = 0; i < 3 * facets; ++i) mesh.points.emplace_back(corners[i].x, corners[i].y, corners[i].z);
  for (int k = 0; k < static_cast<int>(facets); ++k) mesh.triangles.push_back({3 * k, 3 * k + 1, 3 * k + 2});
  return mesh;
}

Mesh flat_sheet(std::size_t facets) {
  const int n = static_cast<int>(std::sqrt(static_cast<double>(facets) / 2.0));
  return grid_mesh(n + 1, n, false, [n](int i, int j) {
    const double x = 10.0 * i / n, y = 10.0 * j / n;
    return giPoint3(x, y, 0.375 * x - 0.25 * y);
  });
}

Mesh graded_ring(std::size_t facets) {
  const double steps = std::log(4000.0);
  const int rows = static_cast<int>(std::sqrt(static_cast<double>(facets) / 2.0 * 2.0 * pi / steps));
  const int columns = static_cast<int>(static_cast<double>(facets) / 2.0 / rows);
  return grid_mesh(rows, columns, true, [=](int i, int j) {
    const double angle = 2.0 * pi * i / rows;
    const double r = 5.0 * std::exp(steps * j / columns);
    return giPoint3(r * std::cos(angle), r * std::sin(angle), 0.2 * r * std::sin(5.0 * angle + 0.3));
  });
}

Mesh fan(std::size_t facets) {
  const int n = static_cast<int>(facets);
  Mesh mesh;
  mesh.points.emplace_back(0.1, 0.2, 3.0);
  for (int i = 0; i < n; ++i) {
    const double angle = 2.0 * pi * i / n;
    const double r = 10.0 + std::cos(7.0 * angle);
    mesh.points.emplace_back(r * std::cos(angle), r * std::sin(angle), 0.0);
    mesh.triangles.push_back({0, i + 1, (i + 1) % n + 1});
  }
  return mesh;
}

Mesh loose_triangles(std::size_t facets) {
  const int n = static_cast<int>(facets);
  const int side = static_cast<int>(std::ceil(std::cbrt(static_cast<double>(facets))));
  std::mt19937_64 random(7);
  const auto jitter = [&] { return 0.3 * (static_cast<double>(random() >> 11) * 0x1p-53 - 0.5); };
  std::vector<int> cells(facets);
  for (int k = 0; k < n; ++k) cells[static_cast<std::size_t>(k)] = k;
  for (std::size_t i = facets; i > 1; --i) std::swap(cells[i - 1], cells[random() % i]);
  Mesh mesh;
  for (int k = 0; k < n; ++k) {
    const int cell = cells[static_cast<std::size_t>(k)];
    const giPoint3 corner(cell % side, cell / side % side, cell / side / side);
    for (int axis = 0; axis < 3; ++axis) {
      const giVector3 along(axis == 0 ? 0.5 : 0.0, axis == 1 ? 0.5 : 0.0, axis == 2 ? 0.5 : 0.0);
      mesh.points.push_back(corner + along + giVector3(jitter(), jitter(), jitter()));
    }
    mesh.triangles.push_back({3 * k, 3 * k + 1, 3 * k + 2});
  }
  return mesh;
}

Buffer<FlatPoint> two_surfaces(const Model& model) {
  const Soup half = bumpy_torus(model.facets() / 2, model.order());
  const Buffer<FlatPoint> one = corner_points(half);
  Buffer<FlatPoint> both(2 * one.size());
  for (std::size_t k = 0; k < one.size(); ++k) {
    both[k] = one[k];
    both[one.size() + k] = {one[k].x + 4.1, one[k].y - 0.7, one[k].z + 0.3};
  }
  return both;
}
