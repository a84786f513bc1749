#pragma once

#include "analysis/elem_list_tol.h"

/// Triangles with an aspect ratio below a tolerance; the result is the least ratio.
class MENDEX_EXPORT trThinElems : public trElemListTol {
 public:
  trThinElems(trTriBlock* block, double tolerance) : trElemListTol(block, tolerance) {}
  ~trThinElems() override;

  /// Prints the extreme measure, the tolerance and the count; does not search.
  void print() const;

 protected:
  double find_elements_tol() override;
};
