#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "mesh/tri_block.h"

class Random;

/// A shape as tests build it: points and triangles of indices into them, counted from 0.
struct Shape {
  std::vector<giPoint3> points;
  std::vector<std::array<int, 3>> triangles;
};

/// Box of the given edge lengths with its least corner at `corner`: 8 points, 12 triangles facing outward.
Shape closed_box(const giPoint3& corner = {}, double lx = 1.0, double ly = 1.0, double lz = 1.0);

/// Closed sphere of radius 1 about the origin: `rings` bands between the poles, twice as many segments; 4 rings (rings
/// - 1) triangles facing outward.
Shape sphere(int rings);

/// The sphere without `holes` triangles, no two of which share a point: every hole is a loop of three free edges.
Shape punctured_sphere(int rings, int holes);

/// Closed torus about the z axis, 2 * around * across triangles facing outward.
Shape torus(int around, int across);

/// n triangles round one apex (point 0), rim points 1 to n on the unit circle; the rim is open.
Shape cone_fan(int n);

/// Closed star-shaped surface with bumps, of at least n triangles.
Shape bumpy_sphere(int n);

/// Flat sheet of 2 * nx * ny triangles over the unit square, facing up.
Shape flat_sheet(int nx, int ny);

/// Every triangle gets three points of its own, in the order of the triangles, as an STL file has them.
Shape exploded(const Shape& shape);

/// The same triangles in another order, each starting at a random corner.
Shape shuffled(Shape shape, std::uint64_t seed);

/// Loose triangles whose corners lie on a coarse grid, moved by at most `jitter`: many points nearly coincide.
Shape clustered_soup(Random& random, int triangles, double jitter);

/// Adds the shape to the block through set_node and set_element, after what the block holds.
void add_to(trTriBlock& block, const Shape& shape);

/// A block with one shape in it: point k is node k + 1, triangle k element k + 1.
struct BlockOf : trTriBlock {
  explicit BlockOf(const Shape& shape) { add_to(*this, shape); }
};
