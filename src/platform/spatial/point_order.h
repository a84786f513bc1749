#pragma once

#include <cstdint>
#include <vector>

/// Tells which of two points an unbalanced binary search tree over x would name first in preorder.
///
/// Keys are (x, order of insertion). Of two keys u < v, v comes first exactly when it was inserted before every other key in
/// [u, v]: the search tree is the Cartesian tree of the insertion numbers (J. Vuillemin, "A unifying look at data structures",
/// 1980). The least insertion number of a range comes from a treap, whose depth does not depend on the order of the points
/// (R. Seidel, C. Aragon, "Randomized search trees", 1996; priorities are a hash of the insertion number).
/// Cost: O(log n) expected time an operation, 32 bytes a point.
class PointOrder {
 public:
  /// Enters the next point; insertion numbers count from 0.
  void insert(double x);
  /// Whether the point inserted as number a comes before the one inserted as number b.
  bool precedes(int a, int b) const;

 private:
  struct Node {
    double x;
    std::uint32_t priority;
    int left;
    int right;
    int least;  // least insertion number in the subtree
  };

  bool less(int a, int b) const;
  void update(int node);
  int rotate_up(int child, int parent);
  int least_between(int low, int high) const;

  std::vector<Node> nodes_;  // by insertion number
  int root_ = -1;
  std::vector<int> path_;
};
