#pragma once

#include "analysis/elem_list_tol.h"

/// Triangles lower than a tolerance (model units); the result is the least height.
class MENDEX_EXPORT trSmallElems : public trElemListTol {
 public:
  trSmallElems(trTriBlock* block, double tolerance) : trElemListTol(block, tolerance) {}
  ~trSmallElems() override;

  /// Prints the extreme measure, the tolerance and the count; does not search.
  void print() const;

 protected:
  double find_elements_tol() override;
};
