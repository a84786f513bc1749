#include "analysis/isect_elems.h"

#include "mesh/tri_block.h"

trIsectElems::~trIsectElems() = default;

void trIsectElems::find_elements() { triblock->find_intersecting(elements_, limit_); }

void trIsectElems::print() const { print_count("  Intersecting triangles: "); }
