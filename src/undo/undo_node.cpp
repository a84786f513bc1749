#include "undo/undo_node.h"

#include "mesh/tri_block.h"
#include "undo/undo_hist.h"

void trUndoNode::set(trUndoHist* hist, int n) {
  copy(*hist->triblock, n);
  if (hist->triblock->node_data_size() != 0) save_data(hist);
}

int trUndoNode::save_data(trUndoHist* hist) {
  data_index = hist->allocate_data();
  if (data_index < 0) return 0;
  const trNodeDataTuplecoPageArr& tuples = hist->triblock->node_data_->tuples;
  if (index >= tuples.count()) return 1;  // never written: all zeros, as the new slot is
  trNodeDataTuple& kept = hist->saved_data.data(data_index);
  kept = tuples[index];
  kept.weight = tuples[index].weight;
  return 1;
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
  // Without memory the attributes of this side are lost, those of the other stay.
  if (data_index < 0 || !block.node_data_->tuples.get_block(index >> block.node_data_->tuples.page_shift())) return;
  hist->saved_data.data(data_index).swap(block.node_data(index));
}
