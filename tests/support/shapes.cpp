#include "support/shapes.h"

#include <algorithm>
#include <cmath>

#include "support/random.h"

namespace {

constexpr double pi = 3.14159265358979323846;

int size_of(const std::vector<giPoint3>& points) { return static_cast<int>(points.size()); }

const giPoint3& point_of(const Shape& shape, int index) { return shape.points[static_cast<std::size_t>(index)]; }

// Two triangles for the quadrilateral a, b, c, d.
void add_quad(Shape& shape, int a, int b, int c, int d) {
  shape.triangles.push_back({a, b, c});
  shape.triangles.push_back({a, c, d});
}

}  // namespace

Shape closed_box(const giPoint3& corner, double lx, double ly, double lz) {
  Shape box;
  for (int k = 0; k < 8; ++k) {
    box.points.emplace_back(corner.x + (k & 1 ? lx : 0), corner.y + (k & 2 ? ly : 0), corner.z + (k & 4 ? lz : 0));
  }
  add_quad(box, 0, 2, 3, 1);
  add_quad(box, 4, 5, 7, 6);
  add_quad(box, 0, 1, 5, 4);
  add_quad(box, 2, 6, 7, 3);
  add_quad(box, 0, 4, 6, 2);
  add_quad(box, 1, 3, 7, 5);
  return box;
}

Shape sphere(int rings) {
  const int segments = 2 * rings;
  Shape ball;
  ball.points.emplace_back(0, 0, -1);
  for (int r = 1; r < rings; ++r) {
    const double latitude = pi * r / rings - pi / 2;
    for (int s = 0; s < segments; ++s) {
      const double longitude = 2 * pi * s / segments;
      ball.points.emplace_back(std::cos(latitude) * std::cos(longitude), std::cos(latitude) * std::sin(longitude),
                               std::sin(latitude));
    }
  }
  const int north = size_of(ball.points);
  ball.points.emplace_back(0, 0, 1);
  const auto at = [&](int r, int s) { return 1 + (r - 1) * segments + s % segments; };
  for (int s = 0; s < segments; ++s) {
    ball.triangles.push_back({0, at(1, s + 1), at(1, s)});
    for (int r = 1; r + 1 < rings; ++r) add_quad(ball, at(r, s), at(r, s + 1), at(r + 1, s + 1), at(r + 1, s));
    ball.triangles.push_back({north, at(rings - 1, s), at(rings - 1, s + 1)});
  }
  return ball;
}

Shape punctured_sphere(int rings, int holes) {
  Shape ball = sphere(rings);
  std::vector<bool> taken(ball.points.size());
  const auto is_free = [&](const std::array<int, 3>& t) {
    return std::none_of(t.begin(), t.end(), [&](int i) { return taken[static_cast<std::size_t>(i)]; });
  };
  std::vector<std::array<int, 3>> kept;
  for (const auto& t : ball.triangles) {
    if (holes > 0 && is_free(t)) {
      for (int i : t) taken[static_cast<std::size_t>(i)] = true;
      --holes;
    } else {
      kept.push_back(t);
    }
  }
  ball.triangles = kept;
  return ball;
}

Shape torus(int around, int across) {
  Shape ring;
  for (int i = 0; i < around; ++i) {
    for (int j = 0; j < across; ++j) {
      const double u = 2 * pi * i / around;
      const double v = 2 * pi * j / across;
      const double radius = 2 + std::cos(v);
      ring.points.emplace_back(radius * std::cos(u), radius * std::sin(u), std::sin(v));
    }
  }
  const auto at = [&](int i, int j) { return i % around * across + j % across; };
  for (int i = 0; i < around; ++i) {
    for (int j = 0; j < across; ++j) add_quad(ring, at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1));
  }
  return ring;
}

Shape cone_fan(int n) {
  Shape cone;
  cone.points.emplace_back(0, 0, 1);
  for (int k = 0; k < n; ++k) {
    cone.points.emplace_back(std::cos(2 * pi * k / n), std::sin(2 * pi * k / n), 0);
    cone.triangles.push_back({0, 1 + k, 1 + (k + 1) % n});
  }
  return cone;
}

Shape bumpy_sphere(int n) {
  int rings = 2;
  while (4 * rings * (rings - 1) < n) ++rings;
  Shape ball = sphere(rings);
  for (giPoint3& p : ball.points) {
    const double radius = 1 + 0.1 * std::sin(7 * p.x) * std::cos(5 * p.y) * std::sin(6 * p.z);
    p = giPoint3(radius * p.x, radius * p.y, radius * p.z);
  }
  return ball;
}

Shape flat_sheet(int nx, int ny) {
  Shape sheet;
  for (int j = 0; j <= ny; ++j) {
    for (int i = 0; i <= nx; ++i) sheet.points.emplace_back(double(i) / nx, double(j) / ny, 0);
  }
  const auto at = [&](int i, int j) { return j * (nx + 1) + i; };
  for (int j = 0; j < ny; ++j) {
    for (int i = 0; i < nx; ++i) add_quad(sheet, at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1));
  }
  return sheet;
}

Shape exploded(const Shape& shape) {
  Shape loose;
  for (const auto& t : shape.triangles) {
    const int first = size_of(loose.points);
    for (int i : t) loose.points.push_back(point_of(shape, i));
    loose.triangles.push_back({first, first + 1, first + 2});
  }
  return loose;
}

Shape shuffled(Shape shape, std::uint64_t seed) {
  Random random(seed);
  auto& triangles = shape.triangles;
  for (std::size_t k = triangles.size(); k > 1; --k) {
    std::swap(triangles[k - 1], triangles[static_cast<std::size_t>(random.below(static_cast<int>(k)))]);
  }
  for (auto& t : triangles) std::rotate(t.begin(), t.begin() + random.below(3), t.end());
  return shape;
}

Shape clustered_soup(Random& random, int triangles, double jitter) {
  Shape soup;
  const auto coordinate = [&] { return random.below(4) + (random.one_in(2) ? random.between(-jitter, jitter) : 0.0); };
  for (int k = 0; k < triangles; ++k) {
    for (int corner = 0; corner < 3; ++corner) soup.points.emplace_back(coordinate(), coordinate(), coordinate());
    soup.triangles.push_back({3 * k, 3 * k + 1, 3 * k + 2});
  }
  return soup;
}

void add_to(trTriBlock& block, const Shape& shape) {
  const int first = block.node_count();
  for (const giPoint3& p : shape.points) block.set_node(block.node_count(), p);
  for (const auto& t : shape.triangles)
    block.set_element(block.element_count(), first + t[0], first + t[1], first + t[2]);
}
