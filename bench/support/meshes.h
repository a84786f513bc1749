#pragma once

#include <array>
#include <memory>
#include <vector>

#include "mesh/tri_block.h"
#include "support/floors.h"

/// A mesh with shared points, whose triangles name them from 0.
struct Mesh {
  std::vector<giPoint3> points;
  std::vector<std::array<int, 3>> triangles;
};

/// As a block, nodes and elements in the same order, or elements in a random one.
std::unique_ptr<trTriBlock> block_of(Mesh mesh, FacetOrder order);

/// The valid elements of a block, and the nodes in the order in which they name them.
FlatMesh flat_of(const trTriBlock& block);
Mesh mesh_of(const FlatMesh& flat);

/// Every triangle with three points of its own.
Mesh unmerged(const FlatPoint* corners, std::size_t facets);

/// A square sheet in a plane that lies askew, of cells that are all alike.
Mesh flat_sheet(std::size_t facets);
/// A wavy ring round a hole, whose cells grow with the distance from the centre to 4000 times their size at the hole.
Mesh graded_ring(std::size_t facets);
/// A cone of triangles that all meet at its apex.
Mesh fan(std::size_t facets);
/// Triangles in space that keep away from each other, in no order.
Mesh loose_triangles(std::size_t facets);

/// Two bumpy surfaces of half the size each, the second moved so that they run through each other: three corners a facet.
Buffer<FlatPoint> two_surfaces(const Model& model);
