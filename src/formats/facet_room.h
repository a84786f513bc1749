#pragma once

#include <climits>

#include "mesh/tri_block.h"

/// Whether the mesh may take another facet with three nodes of its own. Numbers end at a quarter of the largest int, so that sums and
/// threefold numbers of the work that follows stay within int.
inline bool has_facet_room(const trTriBlock& mesh) {
  constexpr int highest = INT_MAX / 4;
  return mesh.node_count() + 2 <= highest && mesh.element_count() <= highest;
}
