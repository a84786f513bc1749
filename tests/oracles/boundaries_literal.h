#pragma once

#include <utility>
#include <vector>

#include "mesh/tri_block.h"

/// The cycles of a block as their rule is worded, from its elements alone: the nodes of each, its first node not
/// repeated.
std::vector<std::vector<int>> cycles_literal(const trTriBlock& block);

struct GapLiteral {
  double distance;  ///< the largest double when there is no pair
  giPoint3 from, to;
};

/// The gap as its rule is worded: every node against every edge of every cycle.
GapLiteral measure_distance_literal(const trTriBlock& block, const std::vector<std::vector<int>>& cycles);

/// Segments between numbered points, (-1, -1) for cancelled ones, chained as their rule is worded.
std::vector<std::vector<int>> trace_literal(std::vector<std::pair<int, int>> segments, int points);
