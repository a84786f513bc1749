#pragma once

#include <cstdint>

#include "boundaries/containers.h"
#include "boundaries/cycle_nodes.h"
#include "boundaries/cycle_rep.h"
#include "mesh/tri_block.h"
#include "platform/containers/int_set.h"
#include "platform/geometry/box3.h"

/// One closed boundary: a sequence of free edges, in the direction of the elements that own them.
///
/// A cycle of k edges occupies k + 1 entries of `rep`: its first node, the k - 1 others in order, and its first node
/// again. It may pass through a node more than once. Cycles are found by a `trCycleArray` and hold until any set
/// detects again: a cycle kept for longer must not be walked, but its own fields stay good. What walks a cycle follows
/// `trCycleIT`, so while an arc is set it describes the arc. Operations that are const but record picks edit through
/// self(): never define an object of this class as const. Kept small and free of allocations: a mesh of loose triangles
/// has a cycle for each.
class MENDEX_EXPORT trCycle {
 public:
  /// The node sequences of all cycles of all sets, one after another. Usable before main and after it.
  static trCycleRepcoPageArr& rep;

  trCycle() = default;
  /// Copies every field, the lists of nodes included.
  trCycle(const trCycle&) = default;
  trCycle(trCycle&&) noexcept = default;
  trCycle& operator=(const trCycle&) = default;
  trCycle& operator=(trCycle&&) noexcept = default;
  ~trCycle() = default;

  /// Index in `rep` of the first entry; -1 for a cycle that was removed (stitched, filled or capped).
  int start = -1;

 private:
  mutable std::uint32_t box_revision_ = 0;  // low bits of the block's geometry revision when the box was computed
  mutable giBox3 box_;                      // empty while not computed

 public:
  trTriBlock* block = nullptr;  ///< not owned
  int arc_start = -1;           ///< the picked nodes that bound the arc to be filled; -1 when there is no arc
  int arc_end = -1;
  int arc_forward = 1;  ///< 1: the arc from `arc_start` to `arc_end`; 0: the rest of the cycle
  int pick_mode = 2;    ///< 0: fill the forward arc; 1: the other one; 2: decide by the third pick, then by length
  int picks[3] = {-1, -1, -1};  ///< two ends of an arc, and a node on the side to be filled
  int selected = 0;             ///< 1 while the cycle is in the selection
  trCycleNodes valid_nodes;     ///< accepted picks in their order, at most three
  trCycleNodes subrange_nodes;  ///< nodes that close the arc, in the order of the walk; none: a direct edge closes it

  /// Number of edges that the iteration yields; 0 for a removed cycle. Cost: O(edges).
  int size() const;
  /// Box of the cycle's own nodes that the iteration yields; empty for a removed cycle. Computed on first use and again
  /// after a node of the block moved.
  const giBox3& box() const;
  /// Position of a node of the block; the origin for a number that the block does not have.
  giPoint3 position(int node) const;
  /// First node of the cycle; -1 for a removed one.
  int get_start_node() const { return holds_entry(start) ? rep.at(start).node : -1; }
  /// Mean length of the edges that the iteration yields; 0 without a block or without edges.
  double average_length() const;

  // --- the arc of a partial fill, chosen by up to three picked nodes ---
  /// Records one picked node. 0: accepted; -1: it is not on the cycle; -2: below 1.
  int add_holefilling_pick(int node) const;
  /// Records the first node along the cycle that is in the set, its first node being tried last. Returns that node; -1
  /// when there is none, -2 for an empty set.
  int add_holefilling_picks(const intcoSet& nodes) const;
  /// Records the first end that is on the cycle, a before b. 0 when one was, else -1.
  int add_holefilling_picked_edge(int node_a, int node_b) const;

  /// Sets the arc from the picks, or with 0 leaves arc mode. The outputs name the first pick in cycle order, its
  /// successor, the predecessor of the second pick, and that pick; each -1 where there is none. Without picks an arc
  /// that is set stays.
  void enable_holefilling(int enable, int& start_node, int& after_start, int& before_end, int& end_node);
  void enable_holefilling(int enable);
  /// Forgets all picks and leaves arc mode.
  void clear_holefilling_data();
  /// Adds up edge lengths: of all edges, and of those from whichever of a and b is met first up to the other (from the
  /// first node when a is -1). `reversed` tells that b was met first; `outside` is the rest.
  void eval_length(int a, int b, double& total, double& inside, double& outside, int& reversed) const;
  /// Position of the first accepted pick; the origin when there is none.
  giPoint3 holefilling_start_pick() const;
  /// Takes over the nodes on the line from the first pick to the second, in the order in which the iteration needs
  /// them.
  void set_subrange_nodes(const intcoPageArr& nodes);

 protected:
  /// 0: accepted; -1: below 1; -2: already accepted, where repeats are not allowed. Picking an end of the arc again
  /// flips its side.
  int add_holefilling_valid_node(int node, int allow_repeat) const;

 private:
  friend class trCycleIT;

  trCycle* self() const { return const_cast<trCycle*>(this); }
  static bool holds_entry(int i) { return i >= 0 && i < rep.count(); }
  void set_arc(int from, int to);
  void take_pick(int node);
  void set_picks(int first, int second, int third);
};

static_assert(sizeof(trCycle) <= 112, "with its four entries a cycle of three edges takes at most 144 bytes");
