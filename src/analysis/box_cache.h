#pragma once

#include <vector>

#include "mesh/tri_block.h"
#include "platform/utilities/export.h"

/// The boxes of a block's elements, each computed when it is first asked for. The block must not change meanwhile.
class MENDEX_EXPORT trBoxCache {
 public:
  /// Sized for the elements that the block has now.
  explicit trBoxCache(const trTriBlock* block);

  /// In the workplane when one is in use; empty for a deleted element. The number is not checked.
  const giBox3& element_box(int e) const;
  /// Number of elements, slot 0 included.
  int size() const { return static_cast<int>(boxes_.size()); }
  const trTriBlock* triblock() const { return block_; }

 private:
  const trTriBlock* block_;
  mutable std::vector<giBox3> boxes_;
};
