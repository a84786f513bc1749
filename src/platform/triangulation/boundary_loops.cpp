#include "platform/triangulation/boundary_loops.h"

#include <algorithm>

namespace {

using Edges = std::vector<std::pair<int, int>>;

BoundaryLoops::Fault fault_of(const Edges& by_start, std::vector<int> ends) {
  std::sort(ends.begin(), ends.end());
  bool balanced = !ends.empty(), repeated = false;
  for (std::size_t i = 0; i < ends.size(); ++i) {
    balanced = balanced && by_start[i].first == ends[i];
    repeated = repeated || by_start[i].first == by_start[i].second || (i > 0 && ends[i] == ends[i - 1]);
  }
  if (!balanced) return BoundaryLoops::Fault::open;
  return repeated ? BoundaryLoops::Fault::repeated : BoundaryLoops::Fault::none;
}

}  // namespace

BoundaryLoops::Fault BoundaryLoops::build(Edges edges) {
  std::sort(edges.begin(), edges.end());
  std::vector<int> ends;
  ends.reserve(edges.size());
  for (const auto& edge : edges) ends.push_back(edge.second);
  const Fault fault = fault_of(edges, ends);
  if (fault != Fault::none) return fault;

  std::vector<char> visited(edges.size(), 0);
  numbers_.reserve(edges.size());
  next_.reserve(edges.size());
  for (std::size_t first = 0; first < edges.size(); ++first) {
    if (visited[first] != 0) continue;
    const int loop_start = node_count();
    for (std::size_t i = first; visited[i] == 0;) {
      visited[i] = 1;
      numbers_.push_back(edges[i].first);
      next_.push_back(node_count());
      const auto following = std::lower_bound(edges.begin(), edges.end(), edges[i].second,
                                              [](const auto& edge, int node) { return edge.first < node; });
      i = static_cast<std::size_t>(following - edges.begin());
    }
    next_.back() = loop_start;
  }
  return Fault::none;
}
