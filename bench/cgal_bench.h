#pragma once

#include <cstddef>

#include "support/floors.h"

/// CGAL's search for all intersecting pairs of faces (Polygon_mesh_processing::self_intersections, exact predicates):
/// how many it finds in an oriented manifold mesh, and the time of the search alone, the mesh being built.
struct CgalResult {
  std::size_t pairs = 0;
  double seconds = 0.0;
};
CgalResult cgal_self_intersections(const FlatMesh& mesh);
