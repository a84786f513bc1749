#pragma once

#include <cstddef>
#include <vector>

#include "platform/geometry/point2.h"

/// The order in which points are best inserted into a triangulation, in rounds.
struct InsertionOrder {
  std::vector<int> order;              ///< indices of the points
  std::vector<std::size_t> round_end;  ///< where in `order` each round ends
};

/// Random rounds, each about twice as large as the one before, keep the expected work at n log n whatever the points
/// (N. Amenta, S. Choi, G. Rote, Incremental constructions con BRIO, 2003); inside a round the points follow a Hilbert
/// curve, so that each is found a few triangles from the last. The random bits are a function of the index: the order
/// is the same everywhere.
/// @param points  of finite coordinates
/// @param weight  none, or one for each point: when a k-th part of all has been inserted, so has the k-th part of largest
///                weight, about; those come in addition to the random ones
/// Cost: O(n log n) time, 24 bytes a point while it runs.
InsertionOrder insertion_order(const std::vector<giPoint2>& points, const std::vector<double>& weight = {});
