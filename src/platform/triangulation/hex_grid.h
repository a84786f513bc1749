#pragma once

#include <vector>

#include "platform/geometry/point2.h"

/// The points of a hexagonal grid inside an area.
///
/// The grid's rows run along x, one of its points lies at `centre`, and each point is displaced by a ten-thousandth of
/// the spacing at most, so that no four of them share a circle. `points` and `next` are the area's boundary: loops that
/// neither touch nor cross. No points when the area is so much thinner than the spacing that crossing its rows would
/// take longer than using them.
/// @param expected  about how many points there will be, at least 0
/// Cost: O(n log n) in boundary edges, rows crossed and points.
std::vector<giPoint2> hex_grid_points(const std::vector<giPoint2>& points, const std::vector<int>& next, double spacing,
                                      double expected);
