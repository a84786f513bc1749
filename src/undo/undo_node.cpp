#include "undo/undo_node.h"

#include "mesh/tri_block.h"
#include "undo/undo_hist.h"

namespace {

giPoint3 absent_point() {
  giPoint3 p;
  p.set_invalid();
  return p;
}

}  // namespace

void trUndoNode::set_absent(int n) {
  index = n;
  data_index = -1;
  point = absent_point();
}

void trUndoNode::set(trUndoHist* hist, int n) {
  const trTriBlock& block = *hist->triblock;
  const trNode& node = block.node(n);
  index = n;
  data_index = -1;
  point = node.invalid ? absent_point() : *node.coords;
  if (block.node_data_size() == 0) return;
  data_index = hist->allocate_data();
  const trNodeDataTuplecoPageArr& tuples = block.node_data_->tuples;
  if (n >= tuples.count()) return;  // never written: all zeros, as the new slot is
  trNodeDataTuple& kept = hist->saved_data.data(data_index);
  kept = tuples[n];
  kept.weight = tuples[n].weight;
}

// Attributes are exchanged as they stand, weights included, so that a number that is given up reads as it did before it
// was taken.
void trUndoNode::swap(trUndoHist* hist) {
  trTriBlock& block = *hist->triblock;
  if (index < 0 || index >= block.node_count()) return;
  trNode& node = block.node(index);
  const giPoint3 saved = point;
  point = absent_point();
  if (!node.invalid) {
    point = *node.coords;
    node.set_invalid();
  }
  if (!saved.invalid()) {
    *node.coords = saved;
    node.invalid = 0;
  }
  if (block.node_data_size() == 0) return;
  if (data_index < 0) {
    if (saved.invalid() && point.invalid()) return;
    data_index = hist->allocate_data();
  }
  hist->saved_data.data(data_index).swap(block.node_data(index));
}
