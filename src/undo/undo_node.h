#pragma once

#include <cfloat>

#include "mesh/tri_block.h"
#include "platform/geometry/point3.h"
#include "platform/utilities/export.h"

class trUndoHist;

/// One saved node: its state on the other side of an operation from the one that the mesh is in.
class MENDEX_EXPORT trUndoNode {
 public:
  /// The node's number.
  int index = 0;
  /// Its tuple in the history's store; -1 until one was saved.
  int data_index = -1;
  /// Its coordinates; an invalid point (x the lowest double) stands for a node that was deleted or did not exist.
  giPoint3 point;

  /// Copies node n, which must be below the block's count, and its attributes when the block carries any.
  void set(trUndoHist* hist, int n);
  /// Notes that node n did not exist.
  void set_absent(int n) {
    index = n;
    data_index = -1;
    point = absent_point();
  }
  /// Exchanges the saved state with the node's present one; nothing for a number beyond the block's count. The node's
  /// lists end empty.
  void swap(trUndoHist* hist);

 private:
  friend class trUndo;

  static giPoint3 absent_point() { return giPoint3(-DBL_MAX, 0.0, 0.0); }

  void copy(const trTriBlock& block, int n) {
    const trNode& node = block.node(n);
    index = n;
    data_index = -1;
    point = node.invalid ? absent_point() : *node.coords;
  }
  int save_data(trUndoHist* hist);  // 0 when there is no memory
};
