#pragma once

#include <array>
#include <climits>
#include <vector>

#include "analysis/edge_fan.h"
#include "platform/containers/flat_array.h"
#include "platform/utilities/prefetch.h"

/// Which elements meet at each side of every element, and whether they run it in the same direction.
///
/// Twelve bytes an element, and more only where more than two elements meet at an edge. The element lists must be current.
class EdgeLinks {
 public:
  /// Runs over all nodes; stops when interrupted, and does nothing without memory.
  explicit EdgeLinks(const trTriBlock& block);
  bool complete() const { return complete_; }

  /// A link that stands for more than one other element.
  static constexpr int crowd = INT_MIN;

  /// The only other element at side k of element e: as it is when it runs the side back, negated when it runs it in the same direction.
  /// 0 for none, `crowd` for more.
  int link(int e, int k) const { return links_[static_cast<std::size_t>(e)][static_cast<std::size_t>(k)]; }

  /// All elements at a crowded side, e among them, in the order of the list of the node where it starts; negated as above. Each crowd is
  /// handed out once, to the first that asks: whoever reaches an edge reaches all that meet there.
  std::vector<int> take_crowd(int e, int k);

  // For the pass over the nodes.
  void passes(int) const {}
  void fetch(int e) const {
    const Sides& sides = links_[static_cast<std::size_t>(e)];
    co_prefetch_for_writing(&sides[0]);
    co_prefetch_for_writing(&sides[2]);  // may lie across two cache lines
  }
  void pair(const EdgeUse& side, int neighbour, bool same) { set(side, neighbour * (1 - 2 * same)); }
  void crowd_at(const EdgeUse* first, const EdgeUse* last);

 private:
  void set(const EdgeUse& side, int link) {
    links_[static_cast<std::size_t>(side.element)][static_cast<std::size_t>(side.corner)] = link;
  }
  void link_two(const EdgeUse* first, const EdgeUse* other, const EdgeUse* last);
  void link_crowd(const EdgeUse* first, const EdgeUse* last);

  using Sides = std::array<int, 3>;
  coFlatArray<Sides> links_;
  std::vector<Sides> crowd_of_;            // which crowd a side belongs to; empty while there are none
  std::vector<std::vector<int>> crowds_;   // emptied once handed out
  bool complete_ = false;
};
