#pragma once

#include <vector>

#include "platform/containers/large_vector.h"
#include "platform/spatial/float_box.h"

/// The numbers 0 to boxes.size() - 1 in the order of the box centres along a Morton curve (G. Morton, "A computer
/// oriented geodetic data base", 1966), so that numbers that are near in the list mostly belong to boxes that are near
/// in space. Equal codes keep the order of their numbers; boxes that overlap nothing come last.
///
/// The curve fills the box of the bulk of the centres with 2^21 steps an axis; what lies far outside goes to its
/// border, so that a few stray boxes do not cost the resolution where the others are. Cost: O(n), by radix sort; 32
/// bytes a box while it runs.
std::vector<int> morton_order(const std::vector<FloatBox>& boxes);
std::vector<int> morton_order(const coLargeVector<FloatBox>& boxes);
