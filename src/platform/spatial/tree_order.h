#pragma once

#include <vector>

/// The shape of an unbalanced binary tree, without the tree.
///
/// Keys are (x, ordinal), ordinals being handed out in the order of insertion; an entry goes left of entries with a greater x and
/// right of all others, and no x is NaN. Such a tree is the Cartesian tree of its keys with the ordinals as heap priorities
/// (J. Vuillemin, A unifying look at data structures, 1980): an entry is the ancestor of exactly those between which and itself no
/// key has a smaller ordinal than its own. So every question about the shape is a search for the smallest ordinal in a range of
/// keys.
/// The keys are kept in sorted runs, each with a tree of minima over it; runs of like size are merged.
/// Cost: O(log n) amortised for an insertion, O(log^2 n) for a question, 24 bytes a key. Members may throw std::bad_alloc.
class TreeOrder {
 public:
  struct Key {
    double x;
    int ordinal;
    bool operator<(const Key& other) const { return x < other.x || (x == other.x && ordinal < other.ordinal); }
  };

  void add(Key key);

  /// Whether a stands before b in preorder; both must have been added.
  bool precedes(Key a, Key b) const;

  /// Whether a search for `x` that turns left where e.x + tol >= x and right where x >= e.x - tol can come from the root to the
  /// added key m.
  bool reachable(Key m, double x, double tol) const;

 private:
  struct Run {
    std::vector<Key> keys;    // ascending
    std::vector<int> minima;  // node i is the smaller of nodes 2i and 2i + 1; nodes from keys.size() on are the keys' ordinals
    void build_minima();
    int node(std::size_t i) const { return i < keys.size() ? minima[i] : keys[i - keys.size()].ordinal; }
    int lowest(std::size_t begin, std::size_t end) const;
  };

  template <class Before, class Within>
  int lowest(Before before, Within within) const;
  void flush();
  void merge_last_two();

  std::vector<Key> fresh_;  // keys not yet in a run, in no order
  std::vector<Run> runs_;   // each more than twice as long as the next
};
