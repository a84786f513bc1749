#pragma once

#include <vector>

#include "platform/geometry/point2.h"

/// The order in which points are best inserted into a triangulation, as indices into `points`, whose coordinates are
/// finite.
///
/// Random rounds, each about twice as large as the one before, keep the expected work at n log n whatever the points
/// (N. Amenta, S. Choi, G. Rote, Incremental constructions con BRIO, 2003); inside a round the points follow a Hilbert
/// curve, so that each is found a few triangles from the last. The random bits are a function of the index: the order
/// is the same everywhere. Cost: O(n log n) time, 24 bytes a point while it runs.
std::vector<int> insertion_order(const std::vector<giPoint2>& points);
