#include "support/bumpy_torus.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "support/check.h"

namespace {

struct Vertex {
  float x, y, z;
};

constexpr double pi = 3.14159265358979323846;
constexpr double major_radius = 10.0;
constexpr double minor_radius = 3.0;

// u turns about the axis of the torus, v about the centre of the tube. The odd phases leave no two points with an equal
// coordinate.
Vertex torus_point(double u, double v) {
  const double bumps = 0.15 * std::sin(7.0 * u + 0.3) * std::cos(5.0 * v + 0.7);
  const double ripples = 0.03 * std::sin(23.0 * u - 11.0 * v + 1.1);
  const double r = minor_radius * (1.0 + bumps + ripples);
  const double from_axis = major_radius + r * std::cos(v);
  return {static_cast<float>(from_axis * std::cos(u)), static_cast<float>(from_axis * std::sin(u)),
          static_cast<float>(r * std::sin(v))};
}

// Points about the tube: the divisor of `vertices` that comes nearest to half as many as points along it.
std::size_t points_about_tube(std::size_t vertices) {
  auto candidate = static_cast<std::size_t>(std::sqrt(static_cast<double>(vertices) / 2.0));
  while (candidate > 1 && vertices % candidate != 0) --candidate;
  return candidate;
}

std::vector<Vertex> make_grid(std::size_t along, std::size_t about) {
  std::vector<Vertex> grid;
  grid.reserve(along * about);
  for (std::size_t i = 0; i < along; ++i) {
    for (std::size_t j = 0; j < about; ++j) {
      grid.push_back(torus_point(2.0 * pi * static_cast<double>(i) / static_cast<double>(along),
                                 2.0 * pi * static_cast<double>(j) / static_cast<double>(about)));
    }
  }
  return grid;
}

double distance(const float* a, const float* b) {
  const double x = static_cast<double>(a[0]) - b[0];
  const double y = static_cast<double>(a[1]) - b[1];
  const double z = static_cast<double>(a[2]) - b[2];
  return std::sqrt(x * x + y * y + z * z);
}

void put_facet(float* to, const Vertex& a, const Vertex& b, const Vertex& c) {
  const Vertex* corners[3] = {&a, &b, &c};
  for (int k = 0; k < 3; ++k) {
    to[3 * k] = corners[k]->x;
    to[3 * k + 1] = corners[k]->y;
    to[3 * k + 2] = corners[k]->z;
  }
}

// Fisher and Yates' shuffle. Facets are swapped whole; their corners keep their order.
void shuffle_facets(Soup& soup) {
  std::mt19937_64 random(20240229);
  for (std::size_t i = soup.facets; i > 1; --i) {
    const std::size_t j = random() % i;
    if (j == i - 1) continue;
    std::swap_ranges(&soup.corners[9 * (i - 1)], &soup.corners[9 * (i - 1)] + 9, &soup.corners[9 * j]);
  }
}

}  // namespace

Soup bumpy_torus(std::size_t facets, FacetOrder order) {
  Soup soup;
  soup.facets = facets;
  soup.vertices = facets / 2;
  const std::size_t about = points_about_tube(soup.vertices);
  const std::size_t along = soup.vertices / std::max<std::size_t>(about, 1);
  require(facets % 2 == 0 && about >= 3 && along >= 3, "no torus has " + std::to_string(facets) + " facets");

  const std::vector<Vertex> grid = make_grid(along, about);
  soup.corners = Buffer<float>(9 * facets);
  float* next = soup.corners.data();
  for (std::size_t i = 0; i < along; ++i) {
    for (std::size_t j = 0; j < about; ++j) {
      const std::size_t i1 = (i + 1) % along;
      const std::size_t j1 = (j + 1) % about;
      const Vertex& a = grid[i * about + j];
      const Vertex& b = grid[i1 * about + j];
      const Vertex& c = grid[i1 * about + j1];
      const Vertex& d = grid[i * about + j1];
      put_facet(next, a, b, c);
      put_facet(next + 9, a, c, d);
      next += 18;
    }
  }
  soup.shortest_edge = major_radius;
  for (std::size_t f = 0; f < facets; ++f) {
    const float* p = &soup.corners[9 * f];
    for (int k = 0; k < 3; ++k) {
      soup.shortest_edge = std::min(soup.shortest_edge, distance(p + 3 * k, p + 3 * ((k + 1) % 3)));
    }
  }
  if (order == FacetOrder::shuffled) shuffle_facets(soup);
  return soup;
}
