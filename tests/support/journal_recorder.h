#pragma once

#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "mesh/tri_block.h"
#include "undo/undo.h"

/// A journal for tests: attached to a block from construction to destruction, it keeps the state of each entity that is
/// reported, as it is at that moment, and so before the change.
class JournalRecorder : public trUndo {
 public:
  explicit JournalRecorder(trTriBlock& block);
  ~JournalRecorder() override { block_.undo = nullptr; }

  void store_node(int n) override;
  void store_element(int e) override;

  /// Every report in order: nodes as they are, elements negated.
  const std::vector<int>& reports() const { return reports_; }

  /// Whether the reports suffice to take the edits back and to do them again: putting back the first stored state of
  /// each entity and cutting the arrays to their former counts restores the block as it was when recording began, to
  /// the last bit (nodes, attributes, elements, colours), and every entity that was made since is known.
  testing::AssertionResult restores_the_start() const;

 private:
  // The default states are those of deleted entities, whose attributes and colour do not matter.
  struct NodeState {
    int invalid = 1;
    double coords[3] = {0, 0, 0};
    int weight = 0;
    double values[5] = {0, 0, 0, 0, 0};
    bool same_as(const NodeState& other) const;
  };
  struct ElementState {
    int nodes[3] = {0, 0, 0};
    int colour = -1;
    bool same_as(const ElementState& other) const;
  };

  NodeState node_now(int i) const;
  ElementState element_now(int e) const;

  trTriBlock& block_;
  int attributes_at_start_;
  std::vector<NodeState> nodes_at_start_;
  std::vector<ElementState> elements_at_start_;
  std::map<int, NodeState> first_nodes_;
  std::map<int, ElementState> first_elements_;
  std::vector<int> reports_;
};
