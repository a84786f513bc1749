#include "mesh/list_batch.h"

#include "mesh/tri_block.h"

ElementListBatch::ElementListBatch(const trTriBlock& block, const std::vector<int>* numbers)
    : block_(block), numbers_(numbers),
      counts_(numbers == nullptr ? static_cast<std::size_t>(block.node_count()) : numbers->size()) {}

int ElementListBatch::announced_at_hub(int slot) const {
  const auto beyond = counts_beyond_.find(slot);
  return beyond == counts_beyond_.end() ? counter_full : counter_full + beyond->second;
}

void ElementListBatch::lay_out() {
  const int n = static_cast<int>(counts_.size());
  std::int64_t total = 0;
  for (int slot = 0; slot < n; ++slot) total += announced(slot);
  coFlatArray<Link>(counts_.size()).swap(cursors_);
  if (cursors_.size() == counts_.size()) first_cell_ = coCellPool::take_run(total);
  if (first_cell_ == 0) return;
  Link end = first_cell_;
  for (int slot = 0; slot < n; ++slot) {
    end += static_cast<Link>(announced(slot));
    cursors_[static_cast<std::size_t>(slot)] = end;
  }
}

void ElementListBatch::insert_directly(int slot, int value) { block_.node(node_of(slot)).elements.insert_front(value); }

void ElementListBatch::close() {
  if (first_cell_ == 0) return;
  Link start = first_cell_;
  for (int slot = 0; slot < static_cast<int>(counts_.size()); ++slot) {
    const Link end = start + static_cast<Link>(announced(slot));
    if (end != start) close_slot(slot, start, end);
    start = end;
  }
}

// The cells from the cursor to the end hold the slot's new numbers in list order. The last of an otherwise empty list needs no cell.
void ElementListBatch::close_slot(int slot, Link start, Link end) {
  trIntList& list = block_.node(node_of(slot)).elements;
  const Link filled = cursors_[static_cast<std::size_t>(slot)];
  Link next = list.head();
  for (Link at = end; at-- > filled;) {
    if (next == 0) {
      next = coCellPool::inline_link(coCellPool::cell(at).value);
      coCellPool::release(at);
    } else {
      coCellPool::cell(at).next = next;
      next = at;
    }
  }
  list.set_head(next);
  for (Link at = start; at < filled; ++at) coCellPool::release(at);
}
