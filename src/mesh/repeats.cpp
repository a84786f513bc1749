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

struct CornerPairHash {
  std::size_t operator()(const CornerPair& pair) const {
    return static_cast<std::size_t>(mix_hash((std::uint64_t{static_cast<std::uint32_t>(pair.next)} << 32) |
                                             static_cast<std::uint32_t>(pair.prev)));
  }
};

// Position of the node in the element, the last where it occurs more than once; -1 when it does not occur.
int last_position(const trElement& t, int node) {
  for (int k = 2; k >= 0; --k) {
    if (t[k] == node) return k;
  }
  return -1;
}

// The elements of one node by their other two corners, each group in the order of the node's list.
struct HubElements {
  struct Group {
    std::vector<int> elements;
    std::size_t dead = 0;  // elements before this are deleted for good
  };
  std::unordered_map<CornerPair, Group, CornerPairHash> groups;
};

class TwinSearch {
 public:
  explicit TwinSearch(const trTriBlock& block) : block_(block) {}

  // The first valid element other than i in the list of `hub` whose corners after and before `hub` are the given pair; 0 if none.
  int find(int i, int hub, CornerPair pair) {
    int steps = 0;
    trIntListIT it(block_.node(hub).elements);
    while (++it) {
      if (it() != i && matches(it(), hub, pair)) return it();
      if (++steps > longest_walk) return find_in_hub(i, hub, pair);
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

  int find_in_hub(int i, int hub, CornerPair pair) {
    HubElements& index = hub_index(hub);
    const auto found = index.groups.find(pair);
    if (found == index.groups.end()) return 0;
    HubElements::Group& group = found->second;
    while (group.dead < group.elements.size() && !block_.element(group.elements[group.dead]).valid()) ++group.dead;
    for (std::size_t k = group.dead; k < group.elements.size(); ++k) {
      const int j = group.elements[k];
      if (j != i && block_.element(j).valid()) return j;
    }
    return 0;
  }

  HubElements& hub_index(int hub) {
    const auto inserted = hubs_.try_emplace(hub);
    HubElements& index = inserted.first->second;
    if (!inserted.second) return index;
    trIntListIT it(block_.node(hub).elements);
    while (++it) {
      const trElement& t = block_.element(it());
      const int k = t.valid() ? last_position(t, hub) : -1;
      if (k >= 0) index.groups[{t[(k + 1) % 3], t[(k + 2) % 3]}].elements.push_back(it());
    }
    return index;
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
