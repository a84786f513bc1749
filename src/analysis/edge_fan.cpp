#include "analysis/edge_fan.h"

#include <algorithm>

void EdgeFan::gather(int node) {
  count_ = 0;
  plain_ = true;
  for (auto link = block_.node(node).elements.head(); link != 0; link = coCellPool::next(link)) {
    const int e = coCellPool::value(link);
    const trElement& t = block_.element(e);
    if (!t.valid()) continue;
    const int corner = t[0] == node ? 0 : (t[1] == node ? 1 : 2);
    if (t[corner] != node) continue;  // rewritten since it was listed
    const int next = t[(corner + 1) % 3];
    const int prev = t[(corner + 2) % 3];
    if (count_ == longest_plain || next == prev || next == node || prev == node) return gather_uses(node);
    element_[count_] = e;
    corner_[count_] = corner;
    next_[count_] = next;
    prev_[count_] = prev;
    ++count_;
  }
}

void EdgeFan::gather_uses(int node) {
  plain_ = false;
  uses_.clear();
  for (auto link = block_.node(node).elements.head(); link != 0; link = coCellPool::next(link)) {
    const int e = coCellPool::value(link);
    const trElement& t = block_.element(e);
    if (!t.valid()) continue;
    for (int k = 0; k < 3; ++k) {
      const int to = t[(k + 1) % 3];
      if (t[k] == node) uses_.push_back({to, e, k, true});
      if (to == node) uses_.push_back({t[k], e, k, false});
    }
  }
  std::stable_sort(uses_.begin(), uses_.end(), [](const EdgeUse& a, const EdgeUse& b) { return a.other < b.other; });
}

void EdgeFan::gather_crowd(int far_end) {
  uses_.clear();
  for (int j = 0; j < count_; ++j) {
    if (next_[j] == far_end) uses_.push_back({far_end, element_[j], corner_[j], true});
    if (prev_[j] == far_end) uses_.push_back({far_end, element_[j], (corner_[j] + 2) % 3, false});
  }
}
