#pragma once

#include "mesh/tri_block.h"

/// Whether the directed edge from s to e is free; the block's edges must be built.
inline bool has_free_edge(const trTriBlock& block, int s, int e) {
  for (trIntListIT it(block.node(s).a_edges); ++it;) {
    if (it() == e) return true;
  }
  return false;
}

/// Whether the block has a node of that number: a cycle that closes an arc may name others.
inline bool has_boundary_node(const trTriBlock& block, int n) { return n > 0 && n < block.node_count(); }
