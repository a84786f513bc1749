#pragma once

#include <vector>

#include "analysis/orienter.h"

/// The elements that can be reached from a seed across edges, and which of them are oriented against it.
class MENDEX_EXPORT trOrientGroup {
 public:
  explicit trOrientGroup(trOrienter* owner);

  trOrienter* orienter;  ///< not owned
  int num_same = 0;      ///< elements oriented like the seed
  int num_opposite = 0;  ///< elements oriented against it
  int seed = -1;         ///< -1: none was found
  int group_index;
  int orientable = 1;    ///< 0: the group contradicts itself, as a Moebius strip does and wherever three elements meet at an edge

  /// The lowest unset element becomes the seed, where there is one.
  void find_seed();
  bool no_seed() const { return seed == -1; }

  /// Gives every element that can be reached from the seed its status, nearest first. Stops when interrupted.
  void find_connected_group();
  /// Takes element e, which was reached from another, into the group; 1 when it was unset. A status other than the one it has shows
  /// that the group is not orientable.
  int add_to_group(int e, trOrientStatus s, int from);

  bool non_orientable() const { return !orientable; }
  /// How many elements are in the minority.
  int num_reverse() const { return num_same < num_opposite ? num_same : num_opposite; }
  /// Reverses the minority, in ascending number, and settles the group; 0 when there is none, and the group stays as it is. On a tie the
  /// seed's orientation wins. Elements of other groups are not touched.
  int do_reversals();

 private:
  int member(int k) const { return members_[static_cast<std::size_t>(k)]; }
  void look_ahead(const EdgeLinks& links, int at) const;
  bool expand(EdgeLinks& links, int e);
  bool reach_crowd(const std::vector<int>& members, int from);
  void make_room();
  bool enter(int e, int s);

  std::vector<int> members_;  // in the order in which they were reached, which makes them the queue of the search as well
  int member_count_ = 0;      // entries beyond it are room for more
};
