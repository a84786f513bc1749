#include "analysis/edge_fan.h"

#include <algorithm>

namespace {

constexpr int after[] = {1, 2, 0, 0};
constexpr int before[] = {2, 0, 1, 1};

}  // namespace

void EdgeFan::gather(const Start& start) {
  const int node = start.node;
  count_ = 0;
  plain_ = true;
  for (auto link = start.head; link != 0; link = coCellPool::next(link)) {
    const int e = coCellPool::value(link);
    const trElement& t = block_.element(e);
    if (!t.valid()) continue;
    const int uses = (t[0] == node) + (t[1] == node) + (t[2] == node);
    if (uses == 0) continue;  // rewritten since it was listed
    // Without branches: in a shuffled mesh nobody could predict them.
    const int corner = (t[1] == node) + 2 * (t[2] == node);
    const int next = t[after[corner]];
    const int prev = t[before[corner]];
    if (count_ == longest_plain || uses > 1 || next == prev) return gather_uses(start);
    element_[count_] = e;
    corner_[count_] = corner;
    next_[count_] = next;
    prev_[count_] = prev;
    ++count_;
  }
}

void EdgeFan::gather_uses(const Start& start) {
  const int node = start.node;
  plain_ = false;
  uses_.clear();
  for (auto link = start.head; link != 0; link = coCellPool::next(link)) {
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
