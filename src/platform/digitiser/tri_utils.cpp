#include "platform/digitiser/tri_utils.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <vector>

namespace {

// One side of a triangle, by the ends of its edge.
struct Side {
  int low;
  int high;
  int triangle;
  int side : 3;
  unsigned runs_up : 1;  // from low to high

  bool same_edge(const Side& other) const { return low == other.low && high == other.high; }
  bool operator<(const Side& other) const {
    return std::tie(low, high, triangle) < std::tie(other.low, other.high, other.triangle);
  }
};

// The two lowest-numbered of the triangles entered in ascending order: one of them is other than any given one.
struct LowestTwo {
  int first = -1;
  int second = -1;

  void enter(int triangle) {
    if (first < 0) {
      first = triangle;
    } else if (second < 0 && triangle != first) {
      second = triangle;
    }
  }
  int other_than(int triangle) const { return first != triangle ? first : second; }
};

std::vector<Side> sides_of(const giTrianglecoPageArr& triangles) {
  std::vector<Side> sides;
  sides.reserve(3 * static_cast<std::size_t>(triangles.count()));
  for (int t = 0; t < triangles.count(); ++t) {
    const giTriangle& corners = triangles[t];
    if (corners[0] == UNSET_ELEMENT) continue;
    for (int k = 0; k < 3; ++k) {
      const int from = corners[k];
      const int to = corners[(k + 1) % 3];
      if (from != to) sides.push_back({std::min(from, to), std::max(from, to), t, k, from < to});
    }
  }
  return sides;
}

// Links the sides begin to end - 1, which lie on one edge and ascend by triangle.
void link_edge(const std::vector<Side>& sides, std::size_t begin, std::size_t end, giLinkcoPageArr& links) {
  LowestTwo all;
  LowestTwo running[2];
  for (std::size_t k = begin; k < end; ++k) {
    all.enter(sides[k].triangle);
    running[sides[k].runs_up].enter(sides[k].triangle);
  }
  for (std::size_t k = begin; k < end; ++k) {
    const Side& s = sides[k];
    const int opposite = running[!s.runs_up].other_than(s.triangle);
    links[s.triangle][s.side] = opposite >= 0 ? opposite : all.other_than(s.triangle);
  }
}

}  // namespace

giLinkcoPageArr& digTriUtils::get_tri_links(giTriBlock& block) {
  giLinkArrcoFeature link_feature;
  giTriArrcoFeature triangle_feature;
  block.check_out(link_feature);
  giLinkcoPageArr& links = link_feature.data()->links;
  links.clear(0);
  if (!block.find(triangle_feature)) return links;
  const giTrianglecoPageArr& triangles = triangle_feature.data()->triangles;
  links.expand(triangles.count());
  for (int t = 0; t < links.count(); ++t) links[t] = giLink();
  if (links.count() < triangles.count()) return links;  // there is no memory
  std::vector<Side> sides = sides_of(triangles);
  std::sort(sides.begin(), sides.end());
  for (std::size_t begin = 0, end = 0; begin < sides.size(); begin = end) {
    while (end < sides.size() && sides[end].same_edge(sides[begin])) ++end;
    link_edge(sides, begin, end, links);
  }
  return links;
}
