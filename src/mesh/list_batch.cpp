#include "mesh/list_batch.h"

#include "mesh/tri_block.h"
#include "progress/progress.h"

ElementListBatch::ElementListBatch(const trTriBlock& block, const std::vector<int>* numbers)
    : block_(block), numbers_(numbers),
      counts_(numbers == nullptr ? static_cast<std::size_t>(block.node_count()) : numbers->size()) {}

int ElementListBatch::announced_at_hub(int slot) const {
  const auto beyond = counts_beyond_.find(slot);
  return beyond == counts_beyond_.end() ? counter_full : counter_full + beyond->second;
}

void ElementListBatch::lay_out() {
  const int n = static_cast<int>(counts_.size());
  coFlatArray<Cursor>(counts_.size()).swap(cursors_);
  if (cursors_.size() != counts_.size()) return;
  std::uint64_t end = 0;
  for (int slot = 0; slot < n; ++slot) {
    end += static_cast<std::uint32_t>(announced(slot));
    cursors_[static_cast<std::size_t>(slot)] = {static_cast<std::uint32_t>(end), node_of(slot)};
  }
  if (end <= UINT32_MAX) coFlatArray<int>(end).swap(values_);
}

int ElementListBatch::insert_directly(int slot, int value) {
  const int node = node_of(slot);
  block_.node(node).elements.insert_front(value);
  return node;
}

bool ElementListBatch::close() {
  if (values_.size() == 0) return true;
  std::uint32_t end = 0;
  for (int slot = 0; slot < static_cast<int>(counts_.size()); ++slot) {
    if (slot % 1024 == 0 && tr_interrupt()) return false;
    end += static_cast<std::uint32_t>(announced(slot));
    const Cursor& cursor = cursors_[static_cast<std::size_t>(slot)];
    if (cursor.place == end) continue;
    trIntList& list = block_.node(cursor.node).elements;
    for (std::uint32_t at = end; at-- > cursor.place;) list.insert_front(values_[at]);
  }
  return true;
}
