#pragma once

#include "analysis/element_list.h"

/// Triangles that cut through others.
class MENDEX_EXPORT trIsectElems : public trElementList {
 public:
  /// @param limit  bounds what the search gathers at a time; see trTriBlock::find_intersecting
  trIsectElems(trTriBlock* block, int limit) : trElementList(block), limit_(limit) {}
  ~trIsectElems() override;

  /// Prints a line with the count; does not search.
  void print() const;

  int limit() const { return limit_; }

 protected:
  void find_elements() override;

  /// Another limit finds the same triangles, so the list stays as it is.
  void set_limit(int limit) { limit_ = limit; }

 private:
  friend class trControl;

  int limit_;
};
