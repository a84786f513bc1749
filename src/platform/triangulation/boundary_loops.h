#pragma once

#include <utility>
#include <vector>

/// Directed edges, put in order loop by loop.
///
/// Nodes get new numbers 0, 1, ... along the loops: a loop starts at the lowest given number not yet in one, loops
/// follow each other in that order, and node `next(i)` follows node i.
class BoundaryLoops {
 public:
  enum class Fault { none, open, repeated };

  /// On a fault the object is of no use. Cost: O(n log n). May throw std::bad_alloc.
  Fault build(std::vector<std::pair<int, int>> edges);

  int node_count() const { return static_cast<int>(numbers_.size()); }
  /// The number by which a node was given.
  int number(int node) const { return numbers_[static_cast<std::size_t>(node)]; }
  int next(int node) const { return next_[static_cast<std::size_t>(node)]; }

 private:
  std::vector<int> numbers_;
  std::vector<int> next_;
};
