#pragma once

#include <algorithm>
#include <vector>

#include "mesh/tri_block.h"
#include "progress/progress.h"

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

  /// Visits every node that has elements, ascending; false when interrupted.
  ///
  /// Calls `visitor.pair(side, neighbour, same)` for each side that leaves the node and has exactly one other element on its edge; `same`
  /// says whether that element runs the edge in the same direction. Calls `visitor.crowd_at(first, last)` with all uses of any other
  /// edge that more than one use; edges at a long list are all given that way.
  /// Calls `visitor.passes(node)` for every node, and `visitor.fetch(e)` some time before element e is given.
  template <class Visitor>
  bool visit_nodes(Visitor& visitor) {
    const int n = block_.node_count();
    for (int first = 0; first < n;) {
      const int last = first + std::min(chunk, n - first);
      for (start_count_ = 0; first < last; ++first) {
        if (tr_interrupt()) return false;
        visitor.passes(first);
        starts_[start_count_] = {first, block_.node(first).elements.head()};
        start_count_ += starts_[start_count_].head != 0;
      }
      visit_chunk(visitor);
    }
    return true;
  }

 private:
  static constexpr int longest_plain = 64;
  static constexpr int looked_ahead = 12;
  static constexpr unsigned one_use = 1u << 16;  // above the sum of all places in a short list

  static constexpr int chunk = 1024;
  static constexpr int nodes_ahead = 8;

  // Where the list of a node starts.
  struct Start {
    int node;
    intcoSListB::Link head;
  };

  void gather(const Start& start);
  void gather_uses(const Start& start);
  void gather_crowd(int far_end);

  template <class Visitor>
  void visit_chunk(Visitor& visitor) {
    for (int k = 0; k < std::min(nodes_ahead, start_count_); ++k) fetch(starts_[k], visitor);
    for (int k = 0; k < start_count_; ++k) {
      if (k + nodes_ahead < start_count_) fetch(starts_[k + nodes_ahead], visitor);
      gather(starts_[k]);
      if (plain_) {
        visit_plain(visitor);
      } else {
        visit_sorted(visitor);
      }
    }
  }

  template <class Visitor>
  void fetch(const Start& start, Visitor& visitor) const {
    intcoSListB::Link link = start.head;
    for (int k = 0; k < looked_ahead && link != 0; ++k, link = coCellPool::next(link)) {
      trElement& t = block_.element(coCellPool::value(link));
      co_prefetch_for_reading(&t[0]);
      co_prefetch_for_reading(&t[2]);  // may lie across two cache lines
      visitor.fetch(coCellPool::value(link));
    }
  }

  // Counts the uses of each side's edge by other elements; one is the rule.
  template <class Visitor>
  void visit_plain(Visitor& visitor) {
    for (int i = 0; i < count_; ++i) {
      const int far_end = next_[i];
      unsigned tally = 0;
      for (int j = 0; j < count_; ++j) {
        const bool uses = (prev_[j] == far_end) | ((next_[j] == far_end) & (j != i));
        tally += uses ? one_use + static_cast<unsigned>(j) : 0u;
      }
      const unsigned found = tally / one_use;
      const unsigned at = tally % one_use;  // the place of the one, if it is one
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
  // The nodes of a chunk that have elements: most numbers of a merged mesh have none.
  int start_count_ = 0;
  Start starts_[chunk];
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
