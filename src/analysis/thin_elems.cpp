#include "analysis/thin_elems.h"

#include "mesh/tri_block.h"

trThinElems::~trThinElems() = default;

double trThinElems::find_elements_tol() { return triblock->find_thin(tolerance(), 1, elements_); }

void trThinElems::print() const {
  print_measure({"  Aspect ratio of thinnest triangle: ", "  Current aspect ratio tol: ", nullptr});
}
