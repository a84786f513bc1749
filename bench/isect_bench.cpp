// The search for intersecting elements: closed surfaces, and meshes that search structures find hard.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <random>
#include <utility>

#include "measure.h"
#include "support/blocks.h"
#include "support/check.h"
#include "support/floors.h"
#include "support/timing.h"

#ifdef MENDEX_BENCH_CGAL
#include "cgal_bench.h"
#endif

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr int limit = 1000;  // that of the controller's list

// A mesh with shared points.
struct Mesh {
  std::vector<giPoint3> points;
  std::vector<std::array<int, 3>> triangles;
};

Block block_of(Mesh mesh, FacetOrder order) {
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

// A square sheet in a plane that lies askew, of cells that are all alike.
Mesh flat_sheet(std::size_t facets) {
  const int n = static_cast<int>(std::sqrt(static_cast<double>(facets) / 2.0));
  return grid_mesh(n + 1, n, false, [n](int i, int j) {
    const double x = 10.0 * i / n, y = 10.0 * j / n;
    return giPoint3(x, y, 0.375 * x - 0.25 * y);
  });
}

// A wavy ring round a hole, whose cells grow with the distance from the centre to 4000 times their size at the hole.
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

// A cone of triangles that all meet at its apex, a tenth as many as the model has.
Mesh fan(std::size_t facets) {
  const int n = static_cast<int>(facets / 10);
  Mesh mesh;
  mesh.points.emplace_back(0.1, 0.2, 3.0);
  for (int i = 0; i < n; ++i) {
    const double angle = 2.0 * pi * i / n;
    mesh.points.emplace_back(10.0 * std::cos(angle), 10.0 * std::sin(angle), 0.0);
    mesh.triangles.push_back({0, i + 1, (i + 1) % n + 1});
  }
  return mesh;
}

// Two of half the size, the second moved so that they run through each other.
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

double time_search(const trTriBlock& block, bool expect_some) {
  block.box();
  intcoPageArr found;
  const double seconds = seconds_of([&] { block.find_intersecting(found, limit); });
  require((found.count() > 0) == expect_some, "number of intersecting elements");
  return seconds;
}

double time_clean(const Model& model) { return time_search(*merged_block(model), false); }

double time_overlapping(const Model& model) {
  const Buffer<FlatPoint> points = two_surfaces(model);
  const FlatMesh flat = merge_flat(points.data(), points.size() / 3);
  return time_search(*block_of(mesh_of(flat), FacetOrder::ordered), true);
}

double time_sheet(const Model& model) {
  return time_search(*block_of(flat_sheet(model.facets()), model.order()), false);
}
double time_graded(const Model& model) {
  return time_search(*block_of(graded_ring(model.facets()), model.order()), false);
}
double time_fan(const Model& model) { return time_search(*block_of(fan(model.facets()), model.order()), false); }

#ifdef MENDEX_BENCH_CGAL
double time_cgal(const Buffer<FlatPoint>& points, bool expect_some) {
  const CgalResult result = cgal_self_intersections(merge_flat(points.data(), points.size() / 3));
  require((result.pairs > 0) == expect_some, "number of pairs that CGAL finds");
  return result.seconds;
}
double time_cgal_clean(const Model& model) { return time_cgal(corner_points(model.soup()), false); }
double time_cgal_overlapping(const Model& model) { return time_cgal(two_surfaces(model), true); }
#endif

}  // namespace

void add_isect_measures(std::vector<Measure>& list) {
#ifdef MENDEX_BENCH_CGAL
  list.push_back({"isect_clean_cgal", "", time_cgal_clean});
  list.push_back({"isect_overlapping_cgal", "", time_cgal_overlapping});
#endif
  list.push_back({"isect_clean", "flat_parse", time_clean});
  list.push_back({"isect_overlapping", "flat_parse", time_overlapping});
  list.push_back({"isect_sheet", "flat_parse", time_sheet});
  list.push_back({"isect_graded", "flat_parse", time_graded});
  list.push_back({"isect_fan", "flat_parse", time_fan});
}
