#pragma once

#include "mesh/int_list.h"
#include "platform/geometry/point3.h"
#include "platform/utilities/export.h"

/// One node of a triangle block: its place in the coordinate array, its validity and the lists of what meets at it.
class MENDEX_EXPORT trNode {
 public:
  trNode() = default;
  trNode(const trNode&) = delete;

  /// Scratch mark. Slicing: 1 kept side, -1 discarded side, -100 on the plane. Boundary detection: 1 on a cycle.
  int side = 0;

  /// Unpaired outgoing half-edges: holds m exactly while the directed edge (this, m) of a live element has no opposite.
  /// Invariant while edges are built: over the whole block, as many half-edges enter a node as leave it.
  trIntList a_edges;

  /// Second edge list, which boundary detection fills from the first.
  trIntList d_edges;

  /// Numbers of the elements that use the node, newest first. Deleted elements stay listed.
  trIntList elements;

  /// The node's slot in the coordinate array; null in a fresh node.
  giPoint3* coords = nullptr;

  /// 1: deleted or never set; 0: in use.
  int invalid = 1;

  /// Deletes the node: coordinates to the origin, flag set, lists emptied.
  void set_invalid() {
    if (coords != nullptr) *coords = giPoint3();
    invalid = 1;
    a_edges.clear();
    d_edges.clear();
    elements.clear();
  }

  /// Empties both edge lists of a valid node; an invalid one is left alone.
  void reset_edges() {
    if (invalid) return;
    a_edges.clear();
    d_edges.clear();
  }

  /// Exchanges coordinates and validity, not the lists.
  void swap(trNode& other);

  /// Moves the other node here: copies its coordinates and validity, then deletes it. Lists are not taken over.
  trNode& operator=(trNode& other);
};
