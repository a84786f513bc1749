// Elements that repeat another, or lie back to back with it.

#include <unordered_map>
#include <vector>

#include "mesh/tri_block.h"
#include "mesh/memory_guard.h"
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
  HubElements(const trTriBlock& block, int hub) : block_(block) {
    trIntListIT it(block.node(hub).elements);
    while (++it) {
      const trElement& t = block.element(it());
      const int k = t.valid() ? last_position(t, hub) : -1;
      if (k >= 0) entries_.push_back({{t[(k + 1) % 3], t[(k + 2) % 3]}, it(), -1});
    }
    std::size_t size = 1;
    while (size < 2 * entries_.size()) size *= 2;
    heads_.assign(size, -1);
    // From the last to the first, so that each chain comes to be in the order of the list.
    for (std::size_t k = entries_.size(); k-- > 0;) {
      int& head = head_of(entries_[k].pair);
      entries_[k].next = head;
      head = static_cast<int>(k);
    }
  }

  // The first valid element of that pair other than i; 0 if none.
  int find(int i, CornerPair pair) {
    if (entries_.empty()) return 0;
    int& head = head_of(pair);
    while (head >= 0 && entry(head).next >= 0 && !is_valid(head)) head = entry(head).next;  // deleted for good
    for (int k = head; k >= 0; k = entry(k).next) {
      if (entry(k).element != i && is_valid(k)) return entry(k).element;
    }
    return 0;
  }

 private:
  struct Entry {
    CornerPair pair;
    int element;
    int next;  // entry of the same pair; -1 at the end
  };

  const Entry& entry(int k) const { return entries_[static_cast<std::size_t>(k)]; }
  bool is_valid(int k) const { return block_.element(entry(k).element).valid(); }

  // Where the search for a pair starts. Neighbours round a hub mostly have numbers near each other, and so come to lie in the same two
  // lines of the cache; no more than 256 pairs share those, whatever the mesh.
  static std::size_t first_slot(CornerPair pair) {
    constexpr int shift = 4;
    const auto next = static_cast<std::uint32_t>(pair.next), prev = static_cast<std::uint32_t>(pair.prev);
    const std::uint64_t block = mix_hash((std::uint64_t{next >> shift} << 32) | (prev >> shift));
    return (block << (shift + 1)) | ((2 * next + 13 * prev) & ((2u << shift) - 1));
  }

  int& head_of(CornerPair pair) {
    const std::size_t mask = heads_.size() - 1;
    std::size_t slot = first_slot(pair) & mask;
    while (heads_[slot] >= 0 && !(entry(heads_[slot]).pair == pair)) slot = (slot + 1) & mask;
    return heads_[slot];
  }

  const trTriBlock& block_;
  std::vector<Entry> entries_;
  std::vector<int> heads_;  // first entries of chains, by open addressing, at most half full; -1 where none is
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
