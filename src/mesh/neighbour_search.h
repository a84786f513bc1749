#pragma once

#include <unordered_map>
#include <vector>

#include "mesh/measures.h"
#include "mesh/tri_block.h"

/// Unit normal of an element by the right-hand rule; 0 for an element too small or too thin to have a direction worth using.
inline int element_normal(const trTriBlock& block, int e, giVector3& n) {
  constexpr double degenerate_cross = 1e-6;  // longest cross vector without a direction, in model units squared
  const trElement& t = block.element(e);
  return tr_compute_normal(block.point(t[0]), block.point(t[1]), block.point(t[2]), degenerate_cross, n);
}

/// Finds the element across a directed edge, by the walk along a node's element list; lists longer than a bound are indexed by the
/// node that precedes the hub, so that a search costs O(1) there too.
///
/// The element lists must be current. Elements may be deleted, and made under new numbers, between two searches, as long as each new
/// one is announced by `entered`; they must not be changed in any other way.
class NeighbourSearch {
 public:
  explicit NeighbourSearch(const trTriBlock& block) : block_(block) {}

  /// The first valid element other than i in u's list that has v immediately followed by u; 0 when there is none.
  int find(int i, int u, int v);

  /// Element e was made and stands at the front of its nodes' lists.
  void entered(int e);

 private:
  static constexpr int longest_walk = 64;

  // The elements that run from a node to the hub, as chains in the order of the hub's list. Chain 0 is empty.
  struct Hub {
    struct Entry {
      int element;
      int next;
    };
    std::unordered_map<int, int> chain_from;
    std::vector<Entry> entries{{0, 0}};

    void insert_front(int from, int e) {
      int& head = chain_from[from];
      entries.push_back({e, head});
      head = static_cast<int>(entries.size()) - 1;
    }
  };

  bool runs(int j, int from, int to) const {
    const trElement& t = block_.element(j);
    if (!t.valid()) return false;
    return (t[0] == from && t[1] == to) || (t[1] == from && t[2] == to) || (t[2] == from && t[0] == to);
  }
  int find_in_hub(int i, int u, int v);
  void fill(Hub& hub, int u) const;

  const trTriBlock& block_;
  std::unordered_map<int, Hub> hubs_;
};
