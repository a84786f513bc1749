#include "analysis/overlap_elems.h"

#include "mesh/tri_block.h"

trOverlapElems::~trOverlapElems() = default;

double trOverlapElems::find_elements_tol() {
  return triblock->find_overlapping(giAngle::from_degrees(tolerance()), elements_).degrees();
}

void trOverlapElems::print() const {
  print_measure({"  Sharpest angle between adjacent triangles: ", "  Current overlap angular tol: ", " degrees"});
}
