// The line that closes a part of a hole: nodes on it, and the ladder of triangles between it and its neighbour.

#include <algorithm>
#include <cmath>

#include "boundaries/cycle_array.h"

namespace {

constexpr int most_segments = 1000000;

// Segments at about max_length on the longer of two lines. A length that is not above 0, or lines without an end, ask for one.
int segment_count(double first, double second, double max_length) {
  if (!(max_length > 0.0) || !(first > max_length || second > max_length)) return 1;
  const double wanted = std::floor(std::max(first, second) / max_length + 0.5);
  return wanted < most_segments ? static_cast<int>(wanted) : most_segments;
}

}  // namespace

int trTriBlock::create_hole_subdivision(int a0, int a1, int b0, int b1, double max_length, intcoPageArr& a_nodes,
                                        intcoPageArr& b_nodes, const giVector3& direction, int nodes_only) const {
  a_nodes.clear(0);
  b_nodes.clear(0);
  for (int n : {a0, a1, b0, b1}) {
    if (!has_node(n)) return 0;
  }
  const int m = segment_count(point(a0).distance(point(a1)), point(b0).distance(point(b1)), max_length);
  trTriBlock& block = *self();
  int last_a = a0;
  int last_b = b0;
  for (int k = 1; k < m; ++k) {
    const double t = static_cast<double>(k) / m;
    const int a = block.interpolate_node(a0, a1, t, direction);
    const int b = block.interpolate_node(b0, b1, t, direction);
    if (a < 1 || b < 1) break;
    a_nodes[a_nodes.count()] = a;
    b_nodes[b_nodes.count()] = b;
    if (!nodes_only) {
      block.generate(last_a, a, last_b);
      block.generate(a, b, last_b);
    }
    last_a = a;
    last_b = b;
  }
  if (!nodes_only) {
    block.generate(last_a, a1, last_b);
    block.generate(a1, b1, last_b);
  }
  return 1;
}

int trCycleArray::create_hole_subdivision_nodes(trCycle& cycle, int* const ends, double max_length, const giVector3& direction) {
  const int start = ends[0], after_start = ends[1], before_end = ends[2], end = ends[3];
  if (start < 1 || after_start < 1 || before_end < 1 || end == 0) return 0;
  intcoPageArr on_line;
  intcoPageArr beside;
  block->create_hole_subdivision(start, end, after_start, before_end, max_length, on_line, beside, direction, 1);
  cycle.set_subrange_nodes(on_line);
  return 1;
}
