#include "analysis/small_elems.h"

#include "mesh/tri_block.h"

trSmallElems::~trSmallElems() = default;

double trSmallElems::find_elements_tol() { return triblock->find_thin(tolerance(), 0, elements_); }

void trSmallElems::print() const {
  print_measure({"  Height of smallest triangle: ", "  Current height tol: ", nullptr});
}
