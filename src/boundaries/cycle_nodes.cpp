#include "boundaries/cycle_nodes.h"

namespace {

// Picks are few, and the nodes along a closing line some tens.
constexpr int page_shift = 4;

}  // namespace

intcoPageArr* trCycleNodes::made() {
  if (nodes_ == nullptr) nodes_.reset(new (std::nothrow) intcoPageArr(page_shift, 5, 10));
  return nodes_.get();
}

trCycleNodes& trCycleNodes::operator=(const intcoPageArr& other) {
  if (&other == nodes_.get()) return *this;
  clear();
  if (other.count() == 0) return *this;
  if (made() == nullptr) {
    co_entry_lost();
    return *this;
  }
  nodes_->copy(other, other.count(), 0, 0);
  return *this;
}

void trCycleNodes::append(int node) {
  if (made() == nullptr) return co_entry_lost();
  (*nodes_)[nodes_->count()] = node;
}

void trCycleNodes::shrink(int n) {
  if (nodes_ != nullptr) nodes_->shrink(n, 0);
}

int trCycleNodes::member(int node) const {
  for (int k = 0; k < count(); ++k) {
    if ((*this)[k] == node) return 1;
  }
  return 0;
}

const intcoPageArr& trCycleNodes::array() const {
  static const intcoPageArr none;
  return nodes_ == nullptr ? none : *nodes_;
}
