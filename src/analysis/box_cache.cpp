#include "analysis/box_cache.h"

#include "analysis/element_box.h"

trBoxCache::trBoxCache(const trTriBlock* block)
    : block_(block), boxes_(static_cast<std::size_t>(block->element_count())) {}

const giBox3& trBoxCache::element_box(int e) const {
  giBox3& box = boxes_[static_cast<std::size_t>(e)];
  if (box.is_empty()) box = ::element_box(*block_, e);
  return box;
}
