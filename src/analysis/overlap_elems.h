#pragma once

#include "analysis/elem_list_tol.h"

/// Neighbours that enclose an angle below a tolerance, in degrees; the result is the sharpest angle, in degrees.
class MENDEX_EXPORT trOverlapElems : public trElemListTol {
 public:
  trOverlapElems(trTriBlock* block, double tolerance) : trElemListTol(block, tolerance) {}
  ~trOverlapElems() override;

  /// Prints the extreme measure, the tolerance and the count; does not search.
  void print() const;

 protected:
  double find_elements_tol() override;
};
