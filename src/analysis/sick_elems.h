#pragma once

#include "analysis/element_list.h"

/// Triangles on edges that more than two triangles share.
class MENDEX_EXPORT trSickElems : public trElementList {
 public:
  explicit trSickElems(trTriBlock* block) : trElementList(block) {}
  ~trSickElems() override;

  /// Prints a line with the count; does not search.
  void print() const;

 protected:
  void find_elements() override;
};
