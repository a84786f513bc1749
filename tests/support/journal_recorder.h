#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "support/block_snapshot.h"
#include "undo/undo_hist.h"

/// A journal for tests: from construction to the first call of `restores_the_start`, or to destruction, a record is
/// attached to the block.
class JournalRecorder {
 public:
  explicit JournalRecorder(trTriBlock& block);

  /// Numbers in the order reported.
  struct Reports {
    std::vector<int> nodes;
    std::vector<int> elements;
    bool operator==(const Reports& other) const { return nodes == other.nodes && elements == other.elements; }
  };
  Reports reports() const;

  /// Sorts reports in which nodes stand as they are and elements negated.
  static Reports sorted(const std::vector<int>& mixed);

  /// Whether the edits since the start, taken back, leave the block as it was when recording began, and done again as
  /// it is now, to the last bit. What derives from the mesh is then no longer built.
  testing::AssertionResult restores_the_start();

 private:
  trTriBlock& block_;
  BlockSnapshot start_;
  trUndoHist history_;
};
