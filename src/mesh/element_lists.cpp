// The lists that say which elements use a node.

#include <algorithm>
#include <vector>

#include "mesh/list_batch.h"
#include "mesh/memory_guard.h"
#include "mesh/survivor_map.h"
#include "mesh/tri_block.h"
#include "progress/progress.h"

namespace {

// How many elements ahead memory is fetched: in a shuffled mesh every node is a cache miss.
constexpr int far_ahead = 24;
constexpr int near_ahead = 12;

// Polls now and then, in loops whose steps are so short that a poll at each would be most of their time.
bool interrupted_at(int step) { return step % 1024 == 0 && tr_interrupt(); }

// Calls f(node) for each corner of a valid element that names a node of the block.
template <class F>
void for_each_corner(const trTriBlock& block, int e, F f) {
  const trElement& t = block.element(e);
  if (!t.valid()) return;
  const unsigned n = static_cast<unsigned>(block.node_count());
  for (int k = 0; k < 3; ++k) {
    if (static_cast<unsigned>(t[k]) < n) f(t[k]);
  }
}

// What becomes of the corners of one element after a merge.
struct Replacement {
  int slot[3];         // of the survivor; 0: the corner stays
  bool names_deleted;  // a corner's node is deleted, whether or not there is a survivor
};

// Which nodes of a block are deleted, a byte each, so that very many corners can be asked without a node record each. Good for nothing
// when interrupted.
std::vector<char> deleted_nodes(const trTriBlock& block) {
  std::vector<char> deleted(static_cast<std::size_t>(block.node_count()));
  for (int i = 0; i < block.node_count() && !interrupted_at(i); ++i) deleted[static_cast<std::size_t>(i)] = block.node(i).invalid != 0;
  return deleted;
}

// Looks ahead along the elements, so that each is examined once and what its survivors need is fetched in time.
class ReplacementWindow {
 public:
  /// `deleted` tells of each node whether it is deleted.
  ReplacementWindow(const trTriBlock& block, const SurvivorMap& map, const std::vector<char>& deleted)
      : block_(block), map_(map), deleted_(deleted), last_(block.element_count() - 1) {
    for (int e = 1; e < 1 + far_ahead && e <= last_; ++e) examine(e);
  }

  int last() const { return last_; }
  const Replacement& at(int e) const { return ring_[e & ring_mask]; }

  // Examines the element far ahead of e and returns it; the last one again near the end.
  const Replacement& advance(int e) {
    const int far = e + far_ahead;
    if (far <= last_) examine(far);
    return at(far <= last_ ? far : last_);
  }
  const Replacement& near(int e) const { return at(e + near_ahead <= last_ ? e + near_ahead : last_); }

 private:
  static constexpr int ring_mask = 31;
  static_assert(far_ahead <= ring_mask, "the window must hold every element between this one and the one far ahead");

  void examine(int e) {
    Replacement& r = ring_[e & ring_mask];
    r = Replacement{{0, 0, 0}, false};
    const trElement& t = block_.element(e);
    if (!t.valid()) return;
    for (int k = 0; k < 3; ++k) {
      const auto corner = static_cast<std::size_t>(static_cast<unsigned>(t[k]));
      if (corner >= deleted_.size() || !deleted_[corner]) continue;
      r.names_deleted = true;
      r.slot[k] = map_.slot(t[k]);
    }
  }

  const trTriBlock& block_;
  const SurvivorMap& map_;
  const std::vector<char>& deleted_;
  int last_;
  Replacement ring_[ring_mask + 1];
};

template <class F>
void for_each_survivor(const Replacement& r, F f) {
  for (int slot : r.slot) {
    if (slot != 0) f(slot);
  }
}

}  // namespace

// Where memory runs out half-way, the lists no longer tell of every element.
void trTriBlock::enter_in_lists(int e) const {
  elements_referenced = 0;
  for_each_corner(*this, e, [&](int i) { node(i).elements.insert_front(e); });
  elements_referenced = 1;
}

void trTriBlock::reference_elements() const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { reference_elements(); });
  if (elements_referenced) return;
  for (int i = 1; i < node_count(); ++i) {
    if (tr_interrupt()) return;
    if (!node(i).invalid) node(i).elements.clear();
  }
  ElementListBatch lists(*this, nullptr);
  const int last = element_count() - 1;
  for (int e = 1; e <= last; ++e) {
    if (interrupted_at(e)) return;
    for_each_corner(*this, std::min(e + far_ahead, last), [&](int i) { lists.prefetch_counter(i); });
    for_each_corner(*this, e, [&](int i) { lists.announce(i); });
  }
  lists.lay_out();
  int e = 1;
  for (; e <= last && !tr_interrupt(); ++e) {
    for_each_corner(*this, std::min(e + far_ahead, last), [&](int i) { lists.prefetch_cursor(i); });
    for_each_corner(*this, std::min(e + near_ahead, last), [&](int i) { lists.prefetch_place(i); });
    for_each_corner(*this, e, [&](int i) { lists.insert(i, e); });
  }
  elements_referenced = e > last && lists.close();
}

void trTriBlock::reference_new_nodes(const intcoPageArr& map) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { return reference_new_nodes(map); });
  replace_nodes(SurvivorMap(map));
}

void trTriBlock::replace_nodes(const SurvivorMap& map) {
  const std::vector<char> deleted = deleted_nodes(*this);
  ElementListBatch lists(*this, map.numbers());
  if (elements_referenced) announce_replacements(map, deleted, lists);
  if (tr_interrupt()) return;
  ReplacementWindow window(*this, map, deleted);
  int e = 1;
  for (; e <= window.last() && !tr_interrupt(); ++e) {
    const Replacement& far = window.advance(e);
    if (elements_referenced) {
      for_each_survivor(far, [&](int slot) { lists.prefetch_cursor(slot); });
      for_each_survivor(window.near(e), [&](int slot) { lists.prefetch_place(slot); });
    }
    const Replacement& r = window.at(e);
    if (!r.names_deleted) continue;
    report_element(e);
    for (int k = 0; k < 3; ++k) {
      if (r.slot[k] != 0) element(e)[k] = elements_referenced ? lists.insert(r.slot[k], e) : map.number(r.slot[k]);
    }
  }
  if (elements_referenced) elements_referenced = e > window.last() && lists.close();
}

void trTriBlock::announce_replacements(const SurvivorMap& map, const std::vector<char>& deleted, ElementListBatch& lists) const {
  ReplacementWindow window(*this, map, deleted);
  for (int e = 1; e <= window.last(); ++e) {
    if (interrupted_at(e)) return;
    for_each_survivor(window.advance(e), [&](int slot) { lists.prefetch_counter(slot); });
    for_each_survivor(window.at(e), [&](int slot) { lists.announce(slot); });
  }
  lists.lay_out();
}
