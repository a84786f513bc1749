#pragma once

#include <gtest/gtest.h>

#include "mesh/tri_block.h"

/// What a block may be excused from.
struct Excuses {
  /// Splitting with edges built links its second element twice, which leaves half-edges that no element has.
  bool phantom_edges = false;
  /// A node was deleted that elements still name.
  bool dangling_corners = false;
};

/// Checks every invariant of a block against what its coordinates and elements say, using none of its derived state for
/// that: slot 0 invalid; coordinates in their slots; deleted nodes at the origin with empty lists (slot 0 may hold a host's first point); no corner without a
/// valid node; the box holds every node; element lists hold every use of every element while they are current;
/// half-edge lists hold exactly the surplus of each directed edge over its opposite while edges are built, and as many
/// enter each node as leave it; counts.
testing::AssertionResult is_sound(const trTriBlock& block, Excuses excuses = {});

/// The free edges of a block as sorted pairs, from its elements alone.
std::vector<std::pair<int, int>> expected_free_edges(const trTriBlock& block);

/// The same from the lists of its nodes.
std::vector<std::pair<int, int>> listed_free_edges(const trTriBlock& block);

/// The entries of a list from its front.
std::vector<int> entries(const trIntList& list);
