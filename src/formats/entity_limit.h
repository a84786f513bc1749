#pragma once

#include <climits>

#include "mesh/tri_block.h"

// Readers make no node or element beyond this number, so that sums of a few numbers never overflow.
constexpr int last_entity_number = INT_MAX / 4;

inline bool has_room_for_facet(const trTriBlock& mesh) {
  return mesh.node_count() <= last_entity_number - 2 && mesh.element_count() <= last_entity_number;
}
