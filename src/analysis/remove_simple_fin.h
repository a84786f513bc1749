#pragma once

#include "mesh/containers.h"
#include "platform/containers/int_set.h"
#include "platform/containers/int_table.h"
#include "platform/geometry/tri_block_base.h"
#include "platform/utilities/export.h"

/// Removes fins: loose flaps on edges that more than two triangles share.
///
/// A triangle on such an edge is a fin when it has no neighbours, or only one and that on the same edge.
class MENDEX_EXPORT trRemoveSimpleFin {
 public:
  /// @param edge_list  the crowded edges, in the block's numbering; copied
  /// @param block      not owned
  trRemoveSimpleFin(const trEdgeConnectioncoPageArr& edge_list, giTriBlock* block);

  /// Deletes the fins and makes the triangles that are left on each edge neighbours of one another, in the links of
  /// digTriUtils::get_tri_links, which stay in the block.
  ///
  /// Of more than two that are left, each becomes a neighbour of the first in the edge's order, and the first one of
  /// the last.
  /// @param node_map, elem_map  receive the numbers that changed, see digDeleteTriangles; may be null
  /// @return the number of fins
  /// Cost: O(n log n).
  int remove_fins(intintcoTable* node_map, intintcoTable* elem_map) const;

  /// The side of the triangle that joins the two nodes, in either direction; -1 when it has no such side.
  int find_bad_edge_side(const giTriangle& tri, const int* edge) const;

 private:
  intcoSet find_fins(const giLinkcoPageArr& links) const;
  void relink(const intcoSet& fins, const intintcoTable& node_map, const intintcoTable& elem_map) const;

  giTriBlock* triblock;
  trEdgeConnectioncoPageArr edges;
};
