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
  members_.assign(4, e);  // with room for its neighbours
  member_count_ = 1;
}

void trOrientGroup::find_connected_group() {
  if (no_seed()) return;
  EdgeLinks* const links = orienter->links();
  if (links == nullptr) return;
  for (int at = 0; at < member_count_; ++at) {
    if (tr_interrupt()) return;
    look_ahead(*links, at);
    if (!expand(*links, member(at))) return;
  }
}

// First the links of an element that will be taken, then the states of its neighbours: in a shuffled mesh each is a cache miss.
void trOrientGroup::look_ahead(const EdgeLinks& links, int at) const {
  constexpr int far_ahead = 32;
  constexpr int near_ahead = 16;
  if (at + far_ahead < member_count_) links.fetch(member(at + far_ahead));
  if (at + near_ahead >= member_count_) return;
  for (int k = 0; k < 3; ++k) {
    const int link = links.link(member(at + near_ahead), k);
    if (link != EdgeLinks::crowd) co_prefetch_for_writing(&orienter->status_.at(std::abs(link)));
  }
}

// An element that runs an edge back agrees with the one it is reached from; one that runs it in the same direction is against it.
bool trOrientGroup::expand(EdgeLinks& links, int e) {
  const int s = orienter->status(e);
  make_room();
  for (int k = 0; k < 3; ++k) {
    const int link = links.link(e, k);
    if (link == EdgeLinks::crowd) {
      if (!reach_crowd(links.take_crowd(e, k), e)) return false;
    } else if (link != 0) {
      if (tr_interrupt()) return false;
      enter(std::abs(link), link < 0 ? -s : s);
    }
  }
  return true;
}

// Among three elements at an edge two run it in the same direction, and then the third cannot suit both.
bool trOrientGroup::reach_crowd(const std::vector<int>& members, int from) {
  orientable = 0;
  const int s = orienter->status(from);
  for (int member : members) {
    if (std::abs(member) == from) continue;
    if (tr_interrupt()) return false;
    make_room();
    enter(std::abs(member), member < 0 ? -s : s);
  }
  make_room();
  return true;
}

int trOrientGroup::add_to_group(int e, trOrientStatus s, int) {
  make_room();
  return enter(e, s);
}

// Room for the three neighbours of an element, so that entering needs no test.
void trOrientGroup::make_room() {
  const std::size_t needed = static_cast<std::size_t>(member_count_) + 3;
  if (members_.size() < needed) members_.resize(std::max(needed, 2 * members_.size()));
}

// Whether an element is new cannot be predicted, so nothing here depends on it by a branch.
bool trOrientGroup::enter(int e, int s) {
  int& state = orienter->status_.at(e);
  const bool fresh = state == tr_orient_unset;
  orientable &= fresh | (state == s);
  state = fresh ? s : state;
  members_[static_cast<std::size_t>(member_count_)] = e;
  member_count_ += fresh;
  num_opposite += fresh & (s == tr_orient_opposite);
  num_same += fresh & (s != tr_orient_opposite);
  if (tr_current_break_handler != nullptr && fresh) {
    tr_report_triangles(num_same + num_opposite, orienter->num_elements(), 0.0, 100.0);
  }
  return fresh;
}

int trOrientGroup::do_reversals() {
  if (num_reverse() == 0) return 0;
  const trOrientStatus minority = num_same < num_opposite ? tr_orient_same : tr_orient_opposite;
  std::vector<int> reversed;
  for (int k = 0; k < member_count_; ++k) {
    const int e = member(k);
    if (orienter->status(e) == minority) reversed.push_back(e);
    orienter->set_status(e, tr_orient_done);
  }
  sort_numbers(reversed);
  for (int e : reversed) orienter->reverse_element(e);
  return 1;
}
