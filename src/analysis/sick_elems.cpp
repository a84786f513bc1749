#include "analysis/sick_elems.h"

#include "mesh/tri_block.h"

trSickElems::~trSickElems() = default;

void trSickElems::find_elements() { triblock->find_sick(elements_, 0); }

void trSickElems::print() const { print_count("  Sick elements: "); }
