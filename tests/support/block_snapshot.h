#pragma once

#include <string>
#include <vector>

#include "mesh/tri_block.h"

/// What undo and redo must bring back, to the last bit: counts, places and validity of nodes, attributes with their
/// weights, elements and colours. Attributes and colours of deleted entities do not matter.
class BlockSnapshot {
 public:
  explicit BlockSnapshot(const trTriBlock& block);

  /// What differs in the other state, in words; empty when nothing does.
  std::string difference(const BlockSnapshot& other) const;

  /// Fills an empty block with this state: what derives from it is made by the primitives of the block alone.
  void rebuild(trTriBlock& block) const;

 private:
  struct NodeState {
    int invalid = 1;
    giPoint3 p;
    int weight = 0;
    double values[trNodeDataTuple::max_values] = {0, 0, 0, 0, 0};
    bool operator==(const NodeState& other) const;
  };
  struct ElementState {
    int nodes[3] = {0, 0, 0};
    int colour = NO_COLOUR;
    bool operator==(const ElementState& other) const;
  };

  int attribute_size_ = 0;
  int default_colour_ = NO_COLOUR;
  std::vector<NodeState> nodes_;
  std::vector<ElementState> elements_;
};
