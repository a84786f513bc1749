#pragma once

#include "mesh/element.h"
#include "mesh/int_list.h"

class trTriBlock;

/// Walks the elements that use a node, in the order of its list (newest first), not by angle: `while (++it) ...`.
class MENDEX_EXPORT trLoopIT : public trIntListIT {
 public:
  /// The element lists of the block must be current.
  trLoopIT(const trTriBlock* block, int node);

  /// Position of the centre node in the element, 0 to 2; 3 when it is not there.
  int index_node(const trElement& element) const;

  /// The node after the centre in the current element's order; 0 when the element is deleted or lacks the centre.
  int next_node() const { return neighbour(1); }
  /// The node before it.
  int prev_node() const { return neighbour(2); }

 private:
  int neighbour(int step) const;

  int node_;
  const trTriBlock* block_;
};
