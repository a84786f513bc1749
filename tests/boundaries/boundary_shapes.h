#pragma once

#include <vector>

#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "support/random.h"
#include "support/shapes.h"

/// The start nodes that the iteration yields; ends at the cycle's size at the latest.
inline std::vector<int> nodes_of(const trCycle& cycle) {
  std::vector<int> nodes;
  trCycleIT it(&cycle);
  while (++it && nodes.size() < 100000) nodes.push_back(it.s_node());
  return nodes;
}

/// The nodes of all live cycles.
inline std::vector<std::vector<int>> all_cycles(const trCycleArray& set) {
  set.num_boundaries();
  std::vector<std::vector<int>> all;
  for (int i = 0; i < set.cycles.count(); ++i) {
    if (set.cycles[i].start != -1) all.push_back(nodes_of(set.cycles[i]));
  }
  return all;
}

/// Selects every live cycle, without the marks.
inline void select_all(trCycleArray& set) {
  set.num_boundaries();
  set.selection.clear();
  for (int i = 0; i < set.cycles.count(); ++i) {
    if (set.cycles[i].start != -1) set.selection.add(i);
  }
}

/// Triangles between few points, in any order and orientation, so that edges meet in every way; coordinates on a coarse
/// grid.
inline Shape random_tangle(Random& random, int points, int triangles, int grid) {
  Shape shape;
  for (int k = 0; k < points; ++k)
    shape.points.emplace_back(random.below(grid), random.below(grid), random.below(grid));
  while (static_cast<int>(shape.triangles.size()) < triangles) {
    const int a = random.below(points), b = random.below(points), c = random.below(points);
    if (a != b && b != c && c != a) shape.triangles.push_back({a, b, c});
  }
  return shape;
}

/// Loose triangles beside one another: triangle k has nodes 3k + 1 to 3k + 3.
inline Shape loose_triangles(int n) {
  Shape shape;
  for (int k = 0; k < n; ++k) {
    shape.points.emplace_back(3 * k, 0, 0);
    shape.points.emplace_back(3 * k + 1, 0, 0);
    shape.points.emplace_back(3 * k, 1, 0);
    shape.triangles.push_back({3 * k, 3 * k + 1, 3 * k + 2});
  }
  return shape;
}
