#pragma once

#include <vector>

#include "mesh/tri_block.h"

/// One use of an edge at a node by one side of an element.
struct EdgeUse {
  int other;    ///< the node at the edge's far end
  int element;
  int corner;   ///< where the side starts in the element
  bool leaves;  ///< the side runs from the node to the far end, rather than back
};

/// The edges at one node after another, each with the elements that use it, in the order of the node's element list.
///
/// Every side of an element leaves one node, so a pass over all nodes meets every side once, and reads an element three times instead
/// of the eighteen that a walk round the nodes of each element costs. Long lists are sorted, so that a node of valence n costs
/// n log n. The element lists must be current.
class EdgeFan {
 public:
  explicit EdgeFan(const trTriBlock& block) : block_(block) {}

  /// Calls `visitor.pair(side, neighbour, same)` for each side that leaves the node and has exactly one other element on its edge; `same`
  /// says whether that element runs the edge in the same direction. Calls `visitor.crowd_at(first, last)` with all uses of any other edge
  /// that more than one use; edges at a long list are all given that way.
  template <class Visitor>
  void visit(int node, Visitor& visitor) {
    gather(node);
    if (plain_) {
      visit_plain(visitor);
    } else {
      visit_sorted(visitor);
    }
  }

  /// Calls f(element) for the first elements of the node's list, to fetch what will be needed for them.
  template <class F>
  void look_ahead(int node, F f) const {
    if (node >= block_.node_count()) return;
    intcoSListB::Link link = block_.node(node).elements.head();
    for (int k = 0; k < looked_ahead && link != 0; ++k, link = coCellPool::next(link)) f(coCellPool::value(link));
  }

  /// How many nodes ahead a pass does well to look.
  static constexpr int nodes_ahead = 8;

 private:
  static constexpr int longest_plain = 64;
  static constexpr int looked_ahead = 12;

  void gather(int node);
  void gather_uses(int node);
  void gather_crowd(int far_end);

  // Counts the uses of each side's edge by other elements; one is the rule.
  template <class Visitor>
  void visit_plain(Visitor& visitor) {
    for (int i = 0; i < count_; ++i) {
      const int far_end = next_[i];
      int found = 0;
      int at = 0;
      for (int j = 0; j < count_; ++j) {
        const bool uses = (prev_[j] == far_end) | ((next_[j] == far_end) & (j != i));
        found += uses;
        at = uses ? j : at;
      }
      if (found == 1) {
        if (element_[at] != element_[i]) visitor.pair(side(i), element_[at], next_[at] == far_end);
      } else if (found > 1 && first_to_leave(i)) {
        gather_crowd(far_end);
        visitor.crowd_at(uses_.data(), uses_.data() + uses_.size());
      }
    }
  }

  template <class Visitor>
  void visit_sorted(Visitor& visitor) {
    const EdgeUse* const end = uses_.data() + uses_.size();
    for (const EdgeUse* first = uses_.data(); first != end;) {
      const EdgeUse* last = first + 1;
      while (last != end && last->other == first->other) ++last;
      if (last - first > 1) visitor.crowd_at(first, last);
      first = last;
    }
  }

  EdgeUse side(int i) const { return {next_[i], element_[i], corner_[i], true}; }
  bool first_to_leave(int i) const {
    for (int j = 0; j < i; ++j) {
      if (next_[j] == next_[i]) return false;
    }
    return true;
  }

  const trTriBlock& block_;
  // The entries of a short list whose elements name the node once and have three different nodes.
  bool plain_ = true;
  int count_ = 0;
  int element_[longest_plain];
  int corner_[longest_plain];
  int next_[longest_plain];
  int prev_[longest_plain];
  // Uses of one edge, or of all edges, edge by edge; those of one edge stand in list order.
  std::vector<EdgeUse> uses_;
};
