// The one place where the mesh knows the journal: it reports what an edit is about to change.

#include "mesh/tri_block.h"
#include "undo/undo.h"

void trTriBlock::report_node(int i) {
  ++edit_count_;
  if (undo != nullptr) undo->store_node(i);
}

void trTriBlock::report_element(int e) {
  ++edit_count_;
  if (undo != nullptr) undo->store_element(e);
}
