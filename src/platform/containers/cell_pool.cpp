#include "platform/containers/cell_pool.h"

#include "platform/containers/int_slist.h"
#include "platform/containers/page_heap.h"

coCellPool::Cell* coCellPool::slabs_[slab_limit] = {};
coCellPool::Link coCellPool::freed_ = 0;
coCellPool::Link coCellPool::fresh_ = 0;
coCellPool::Link coCellPool::fresh_end_ = 0;
std::int64_t coCellPool::live_ = 0;

std::int64_t intcoSListB::edits_ = 0;

coCellPool::Link coCellPool::open_slab() noexcept {
  const Link ordinal = fresh_end_ >> slab_shift;
  if (ordinal >= static_cast<Link>(slab_limit)) return 0;
  if (slabs_[ordinal] == nullptr) {
    slabs_[ordinal] = static_cast<Cell*>(coPageHeap::allocate_slab(ordinal > 0));
    if (slabs_[ordinal] == nullptr) return 0;
  }
  fresh_ = ordinal == 0 ? 1 : ordinal << slab_shift;
  fresh_end_ = (ordinal + 1) << slab_shift;
  return fresh_++;
}

// Everything is free: start again from the first slab, which is kept, and return the others to the system.
void coCellPool::release_slabs() noexcept {
  for (Link k = 1; k < (fresh_end_ >> slab_shift); ++k) {
    coPageHeap::release_slab(slabs_[k]);
    slabs_[k] = nullptr;
  }
  freed_ = 0;
  fresh_ = 1;
  fresh_end_ = slab_cells;
}
