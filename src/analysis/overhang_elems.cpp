#include "analysis/overhang_elems.h"

#include "mesh/tri_block.h"

trOverhangElems::~trOverhangElems() = default;

void trOverhangElems::set_up_vector(const giUnitVec3& v) {
  if (v != up_vector_) invalidate();
  up_vector_ = v;
}

void trOverhangElems::find_elements() { triblock->find_overhanging(elements_, up_vector_); }

void trOverhangElems::print() const { print_count("  Overhanging elements: "); }
