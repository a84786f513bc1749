#pragma once

#include <vector>

#include "mesh/tri_block.h"

/// The search for triangles on crowded edges as its rules read, node by node and entry by entry, on plain vectors. The
/// element lists of the block must be current.
/// @param node_end  the first node that is not visited any more
/// @return element numbers in the order in which they are reported, repeats included
std::vector<int> reported_sick_literal(const trTriBlock& block, int mode, int node_end);

/// The same for all nodes, sorted and without repeats.
std::vector<int> sick_literal(const trTriBlock& block, int mode);

struct LiteralEdge {
  int start;
  int end;
  std::vector<int> elements;  // in the order of entry, without repeats
  bool operator==(const LiteralEdge& other) const {
    return start == other.start && end == other.end && elements == other.elements;
  }
};

/// The crowded edges, found among all edges of the sick triangles by search from the start.
std::vector<LiteralEdge> sick_edges_literal(const trTriBlock& block, int mode);

/// The neighbour across each side of each triangle, by trying all pairs; see digTriUtils::get_tri_links for the rule.
std::vector<std::vector<int>> links_literal(const trTriBlock& block);

/// The fins, ascending.
std::vector<int> fins_literal(const trTriBlock& block);
