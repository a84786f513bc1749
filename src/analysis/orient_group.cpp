#include "analysis/orient_group.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "analysis/edge_links.h"
#include "progress/progress.h"

namespace {

// Sorts different numbers; where they lie densely, by setting a bit for each, which costs O(range / 64 + n).
void sort_numbers(std::vector<int>& numbers) {
  if (numbers.empty()) return;
  const auto ends = std::minmax_element(numbers.begin(), numbers.end());
  const int least = *ends.first;
  const auto words = static_cast<std::size_t>(*ends.second - least) / 64 + 1;
  if (words > numbers.size()) {
    std::sort(numbers.begin(), numbers.end());
    return;
  }
  std::vector<std::uint64_t> bits(words);
  for (int number : numbers) {
    const auto at = static_cast<std::size_t>(number - least);
    bits[at / 64] |= std::uint64_t{1} << (at % 64);
  }
  std::size_t k = 0;
  for (std::size_t w = 0; w < words; ++w) {
    for (std::uint64_t rest = bits[w]; rest != 0; rest &= rest - 1) {
      numbers[k++] = least + static_cast<int>(64 * w) + __builtin_ctzll(rest);
    }
  }
}

}  // namespace

trOrientGroup::trOrientGroup(trOrienter* owner) : orienter(owner), group_index(owner->group_counter++) {}

void trOrientGroup::find_seed() {
  const int e = orienter->next_unset();
  if (e < 0) return;
  seed = e;
  orienter->set_status(e, tr_orient_same);
  num_same = 1;
  members_.assign(1, e);
}

void trOrientGroup::find_connected_group() {
  if (no_seed()) return;
  EdgeLinks* const links = orienter->links();
  if (links == nullptr) return;
  for (std::size_t at = 0; at < members_.size(); ++at) {
    if (tr_interrupt()) return;
    look_ahead(*links, at);
    if (!expand(*links, members_[at])) return;
  }
}

// First the links of an element that will be taken, then the states of its neighbours: in a shuffled mesh each is a cache miss.
void trOrientGroup::look_ahead(const EdgeLinks& links, std::size_t at) const {
  constexpr std::size_t far_ahead = 16;
  constexpr std::size_t near_ahead = 8;
  if (at + far_ahead < members_.size()) links.prefetch(members_[at + far_ahead]);
  if (at + near_ahead >= members_.size()) return;
  for (int k = 0; k < 3; ++k) {
    const int link = links.link(members_[at + near_ahead], k);
    if (link != EdgeLinks::crowd) co_prefetch_for_writing(&orienter->status_.at(std::abs(link)));
  }
}

// Among three elements at an edge two run it in the same direction, and then the third cannot suit both: a crowd is never orientable.
bool trOrientGroup::expand(EdgeLinks& links, int e) {
  for (int k = 0; k < 3; ++k) {
    const int link = links.link(e, k);
    if (link == 0) continue;
    if (link != EdgeLinks::crowd) {
      if (!reach(link, e)) return false;
      continue;
    }
    orientable = 0;
    for (int member : links.take_crowd(e, k)) {
      if (std::abs(member) != e && !reach(member, e)) return false;
    }
  }
  return true;
}

// An element that runs the edge back agrees with the one it is reached from; one that runs it in the same direction is against it.
bool trOrientGroup::reach(int link, int from) {
  if (tr_interrupt()) return false;
  const int s = orienter->status(from);
  add_to_group(std::abs(link), static_cast<trOrientStatus>(link < 0 ? -s : s), from);
  return true;
}

int trOrientGroup::add_to_group(int e, trOrientStatus s, int) {
  const trOrientStatus before = orienter->status(e);
  if (before != tr_orient_unset) {
    if (before != s) orientable = 0;
    return 0;
  }
  ++(s == tr_orient_opposite ? num_opposite : num_same);
  orienter->set_status(e, s);
  members_.push_back(e);
  tr_report_triangles(num_same + num_opposite, orienter->num_elements(), 0.0, 100.0);
  return 1;
}

int trOrientGroup::do_reversals() {
  if (num_reverse() == 0) return 0;
  const trOrientStatus minority = num_same < num_opposite ? tr_orient_same : tr_orient_opposite;
  std::vector<int> reversed;
  for (int e : members_) {
    if (orienter->status(e) == minority) reversed.push_back(e);
    orienter->set_status(e, tr_orient_done);
  }
  sort_numbers(reversed);
  for (int e : reversed) orienter->reverse_element(e);
  return 1;
}
