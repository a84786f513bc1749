#pragma once

#include "mesh/tri_block.h"
#include "platform/utilities/export.h"

class trUndoHist;

/// One saved triangle: its state on the other side of an operation from the one that the mesh is in.
class MENDEX_EXPORT trUndoElement {
 public:
  /// The element's number.
  int index = 0;
  /// Its colour; -1 for an element that was deleted or did not exist.
  int colour = NO_COLOUR;
  /// Its node numbers; three zeros stand for an element that was deleted or did not exist.
  trElement element;

  /// Copies element e, which must be below the block's count.
  void set(trUndoHist* hist, int e);
  /// Notes that element e did not exist.
  void set_absent(int e) {
    index = e;
    colour = NO_COLOUR;
    element.set(0, 0, 0);
  }
  /// Exchanges the saved state with the element's present one; nothing for a number beyond the block's count. The
  /// colour of an element that goes stays where it is, and colours come to no block that has none.
  void swap(trUndoHist* hist);

 private:
  friend class trUndo;

  void copy(const trTriBlock& block, int e) {
    const trElement& t = block.element(e);
    if (!t.valid()) return set_absent(e);
    index = e;
    colour = block.get_element_colour(e);
    element = t;
  }
  static void give_colour(trTriBlock& block, int e, int colour);
};
