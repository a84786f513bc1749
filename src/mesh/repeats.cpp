// Elements that repeat another, or lie back to back with it.

#include <cstdint>
#include <new>
#include <unordered_map>
#include <vector>

#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "platform/containers/flat_array.h"
#include "platform/spatial/hash_mix.h"
#include "progress/progress.h"

namespace {

// Lists longer than this are indexed instead of walked for each of their elements.
constexpr int longest_walk = 64;

// The other two corners of an element at a node, in its orientation.
struct CornerPair {
  int next;
  int prev;
  bool operator==(const CornerPair& other) const { return next == other.next && prev == other.prev; }
};

// Position of the node in the element, the last where it occurs more than once; -1 when it does not occur.
int last_position(const trElement& t, int node) {
  for (int k = 2; k >= 0; --k) {
    if (t[k] == node) return k;
  }
  return -1;
}

// The elements of one node by their other two corners, those of a pair in the order of the node's list.
class HubElements {
 public:
  HubElements(const trTriBlock& block, int hub) : block_(block), entries_(1) {
    trIntListIT it(block.node(hub).elements);
    while (++it) {
      const trElement& t = block.element(it());
      const int k = t.valid() ? last_position(t, hub) : -1;
      if (k >= 0) entries_.push_back({{t[(k + 1) % 3], t[(k + 2) % 3]}, it(), 0});
    }
    std::size_t lanes = 1;
    while (lanes * lane < 2 * entries_.size()) lanes *= 2;
    coFlatArray<Slot>(lanes * lane).swap(slots_);
    if (slots_.size() == 0) throw std::bad_alloc();
    last_lane_ = lanes - 1;
    // From the last to the first, so that each chain comes to be in the order of the list.
    for (std::size_t k = entries_.size() - 1; k > 0; --k) {
      Slot& slot = slot_of(entries_[k].pair);
      entries_[k].next = slot.first;
      slot.first = static_cast<int>(k);
    }
  }

  // The first valid element of that pair other than i; 0 if none.
  int find(int i, CornerPair pair) {
    int& first = slot_of(pair).first;
    while (entry(first).next != 0 && !is_valid(first)) first = entry(first).next;  // deleted for good
    for (int k = first; k != 0; k = entry(k).next) {
      if (entry(k).element != i && is_valid(k)) return entry(k).element;
    }
    return 0;
  }

 private:
  // Numbered from 1.
  struct Entry {
    CornerPair pair;
    int element;
    int next;  // entry of the same pair; 0 at the end
  };
  struct Slot {
    int first;  // entry of a chain; 0 where none is
    std::uint32_t tag;
  };
  static constexpr std::size_t lane = 32;

  const Entry& entry(int k) const { return entries_[static_cast<std::size_t>(k)]; }
  bool is_valid(int k) const { return block_.element(entry(k).element).valid(); }

  // Where a pair is or would be. Neighbours round a hub mostly have numbers near each other; in the order of those numbers they come to
  // lie side by side. Tags keep entries of other pairs out of it. Pairs that find their lane full part to others.
  Slot& slot_of(CornerPair pair) {
    constexpr int shift = 4;
    const auto next = static_cast<std::uint32_t>(pair.next), prev = static_cast<std::uint32_t>(pair.prev);
    const auto tag = static_cast<std::uint32_t>(mix_hash((std::uint64_t{next} << 32) | prev) >> 32);
    std::size_t place = (next >> shift) + mix_hash((next >> shift) - (prev >> shift));
    for (;; place += tag | 1) {
      Slot* const slots = &slots_[(place & last_lane_) * lane];
      for (std::size_t k = 0; k < lane; ++k) {
        Slot& slot = slots[(2 * next + 13 * prev + k) % lane];
        if (slot.first != 0 && (slot.tag != tag || !(entry(slot.first).pair == pair))) continue;
        slot.tag = tag;
        return slot;
      }
    }
  }

  const trTriBlock& block_;
  std::vector<Entry> entries_;
  coFlatArray<Slot> slots_;  // by open addressing in lanes, at most half full
  std::size_t last_lane_ = 0;
};

class TwinSearch {
 public:
  explicit TwinSearch(const trTriBlock& block) : block_(block) {}

  // The first valid element other than i in the list of `hub` whose corners after and before `hub` are the given pair; 0 if none.
  int find(int i, int hub, CornerPair pair) {
    const auto known = hubs_.find(hub);
    if (known != hubs_.end()) return known->second.find(i, pair);
    int steps = 0;
    trIntListIT it(block_.node(hub).elements);
    while (++it) {
      if (it() != i && matches(it(), hub, pair)) return it();
      if (++steps > longest_walk) return hubs_.try_emplace(hub, block_, hub).first->second.find(i, pair);
    }
    return 0;
  }

 private:
  bool matches(int j, int hub, CornerPair pair) const {
    const trElement& t = block_.element(j);
    if (!t.valid()) return false;
    const int k = last_position(t, hub);
    return k >= 0 && t[(k + 1) % 3] == pair.next && t[(k + 2) % 3] == pair.prev;
  }

  const trTriBlock& block_;
  std::unordered_map<int, HubElements> hubs_;
};

}  // namespace

int trTriBlock::remove_repeats(int same, int both) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0, [&] { return remove_repeats(same, both); });
  reference_elements();
  if (tr_interrupt()) return 0;
  TwinSearch twins(*this);
  int removed = 0;
  for (int i = 0; i < element_count(); ++i) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(i, element_count(), 0.0, 100.0);
    const trElement t = element(i);
    if (!t.valid()) continue;
    const int twin = twins.find(i, t[0], same ? CornerPair{t[1], t[2]} : CornerPair{t[2], t[1]});
    if (twin == 0) continue;
    const bool delete_twin = !same && both;
    if (delete_twin) delete_element(twin);
    removed += delete_twin ? 2 : 1;
    delete_element(i);
  }
  if (same && removed) mark_changed();
  return removed > 0;
}
