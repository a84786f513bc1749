#include "analysis/edge_links.h"

#include <algorithm>
#include <utility>

#include "platform/containers/memory_scope.h"

EdgeLinks::EdgeLinks(const trTriBlock& block) : links_(static_cast<std::size_t>(block.element_count())) {
  if (links_.size() == 0) co_entry_lost();
  complete_ = links_.size() > 0 && EdgeFan(block).visit_nodes(*this);
}

std::vector<int> EdgeLinks::take_crowd(int e, int k) {
  const int number = crowd_of_[static_cast<std::size_t>(e)][static_cast<std::size_t>(k)];
  return std::exchange(crowds_[static_cast<std::size_t>(number)], {});
}

// An element may use an edge more than once; it is the number of different elements that makes a crowd.
void EdgeLinks::crowd_at(const EdgeUse* first, const EdgeUse* last) {
  const EdgeUse* const other = std::find_if(first, last, [&](const EdgeUse& use) { return use.element != first->element; });
  if (other == last) return;
  const bool more = std::any_of(
      other, last, [&](const EdgeUse& use) { return use.element != first->element && use.element != other->element; });
  if (more) {
    link_crowd(first, last);
  } else {
    link_two(first, other, last);
  }
}

// Of an element that uses the edge in both directions, the first of its sides decides how others see it.
void EdgeLinks::link_two(const EdgeUse* first, const EdgeUse* other, const EdgeUse* last) {
  for (const EdgeUse* use = first; use != last; ++use) {
    const EdgeUse* const across = use->element == first->element ? other : first;
    if (use->leaves) pair(*use, across->element, across->leaves);
  }
}

void EdgeLinks::link_crowd(const EdgeUse* first, const EdgeUse* last) {
  if (crowd_of_.empty()) crowd_of_.resize(links_.size());
  const int number = static_cast<int>(crowds_.size());
  crowds_.emplace_back();
  std::vector<int>& members = crowds_.back();
  members.reserve(static_cast<std::size_t>(last - first));
  for (const EdgeUse* use = first; use != last; ++use) {
    members.push_back(use->leaves ? -use->element : use->element);
    if (!use->leaves) continue;
    set(*use, crowd);
    crowd_of_[static_cast<std::size_t>(use->element)][static_cast<std::size_t>(use->corner)] = number;
  }
}
