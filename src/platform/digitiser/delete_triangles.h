#pragma once

#include "platform/containers/int_set.h"
#include "platform/containers/int_table.h"
#include "platform/geometry/tri_block_base.h"
#include "platform/utilities/export.h"

/// Deletes a set of triangles from a block and tells what became of the numbers.
class MENDEX_EXPORT digDeleteTriangles {
 public:
  /// Neither the block nor the set is owned. Numbers that the block does not have are passed over.
  digDeleteTriangles(giTriBlock& block, const intcoSet& triangles) : block_(block), triangles_(triangles) {}

  /// Deletes the triangles.
  ///
  /// A block that deletes in place keeps all its numbers and nodes, and the maps are left as they are. In any other
  /// block the triangles behind a gap close up in their order, with their colours.
  /// @param delete_nodes  where gaps are closed: whether nodes that no triangle uses any more go too, with their normals
  /// @param keep_links    whether the links that the block holds, if any, are brought in step: those to deleted triangles are open
  /// @param node_map, elem_map  receive the new number of every node and triangle that got another one; may be null
  /// @return 0; 1 when the block has no triangles feature
  /// Cost: O(n).
  int delete_triangles(int delete_nodes, int keep_links, intintcoTable* node_map, intintcoTable* elem_map) const;

 private:
  giTriBlock& block_;
  const intcoSet& triangles_;
};
