#include "mesh/loop_it.h"

#include "mesh/tri_block.h"

trLoopIT::trLoopIT(const trTriBlock* block, int node) : trIntListIT(block->node(node).elements), node_(node), block_(block) {}

int trLoopIT::index_node(const trElement& element) const {
  for (int k = 0; k < 3; ++k) {
    if (element[k] == node_) return k;
  }
  return 3;
}

int trLoopIT::neighbour(int step) const {
  const trElement& element = block_->element((*this)());
  const int at = index_node(element);
  if (!element.valid() || at == 3) return 0;
  return element[(at + step) % 3];
}
