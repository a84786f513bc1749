// Half-edges that no opposite one cancels, and the primitives that keep them.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "mesh/hub_edges.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "platform/containers/flat_array.h"
#include "platform/utilities/prefetch.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

// How many elements ahead memory is fetched: in a shuffled mesh every node is a cache miss.
constexpr int far_elements_ahead = 24;
constexpr int near_elements_ahead = 12;

[[noreturn]] void end_on_undefined_node(int node) {
  std::fprintf(stderr, "%s%d\n", tr_brnknls("ERROR! Edge reference to undefined node #"), node);
  std::exit(8);
}

// Removes the first entry equal to v among the first entries of a list: 1 removed, 0 not there, -1 the list is too long to tell.
int remove_near_front(trIntList& list, int v) {
  coCellPool::Link before = 0;
  int steps = 0;
  for (coCellPool::Link link = list.head(); link != 0; before = link, link = coCellPool::next(link)) {
    if (coCellPool::value(link) == v) {
      list.unlink(link, before);
      return 1;
    }
    if (++steps > HubEdges::longest_plain_list) return -1;
  }
  return 0;
}

// Cancels a -> b with its opposite when b's list holds that (-1), else records it at the front of a's list (1).
int pair_half_edge(trIntList& of_a, int a, trIntList& of_b, int b, HubEdges& hubs) {
  int removed = hubs.empty() || !hubs.contains(b) ? remove_near_front(of_b, a) : -1;
  if (removed < 0) removed = hubs.remove(b, of_b, a);
  if (removed) return -1;
  if (!hubs.empty() && hubs.contains(a)) {
    hubs.insert_front(a, of_a, b);
  } else {
    of_a.insert_front(b);
  }
  return 1;
}

// The half-edge lists of a whole block while they are built: 4 bytes a node, side by side, instead of a node record each.
class HalfEdgeTable {
 public:
  explicit HalfEdgeTable(const trTriBlock& block)
      : lists_(static_cast<std::size_t>(block.node_count())), valid_(static_cast<std::size_t>(block.node_count())) {
    for (int i = 1; i < block.node_count(); ++i) valid_[at(i)] = !block.node(i).invalid;
  }

  bool has_memory() const { return lists_.size() == valid_.size(); }

  void link(const trElement& t, HubEdges& hubs) {
    for (int k = 0; k < 3; ++k) {
      if (!is_node(t[k])) end_on_undefined_node(t[k]);
    }
    for (int k = 0; k < 3; ++k) {
      const int a = t[k];
      const int b = t[k == 2 ? 0 : k + 1];
      pair_half_edge(lists_[at(a)], a, lists_[at(b)], b, hubs);
    }
  }

  void prefetch(const trElement& far, const trElement& near) const {
    for (int k = 0; k < 3; ++k) {
      if (is_number(far[k])) co_prefetch_for_writing(&lists_[at(far[k])]);
      if (is_number(near[k])) coCellPool::prefetch(lists_[at(near[k])].head());
    }
  }

  void hand_over(const trTriBlock& block) {
    for (int i = 1; i < block.node_count(); ++i) {
      if (!lists_[at(i)].empty()) block.node(i).a_edges.swap(lists_[at(i)]);
    }
  }

 private:
  static std::size_t at(int i) { return static_cast<std::size_t>(i); }
  bool is_number(int i) const { return at(i) < lists_.size(); }
  bool is_node(int i) const { return is_number(i) && valid_[at(i)]; }

  coFlatArray<trIntList> lists_;
  std::vector<bool> valid_;
};

}  // namespace

int trTriBlock::link(int a, int b) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, -1, [&] { return link(a, b); });
  if (!has_node(a) || node(a).invalid) end_on_undefined_node(a);
  if (!has_node(b) || node(b).invalid) end_on_undefined_node(b);
  return link_simple(a, b);
}

int trTriBlock::link_simple(int a, int b) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, -1, [&] { return link_simple(a, b); });
  return pair_half_edge(node(a).a_edges, a, node(b).a_edges, b, *hubs_);
}

// Where memory runs out half-way, the lists no longer tell of every element.
void trTriBlock::link_element(int a, int b, int c) {
  edges_built = 0;
  link_simple(a, b);
  link_simple(b, c);
  link_simple(c, a);
  edges_built = 1;
}

// Linking the reversed edges cancels the element's own.
void trTriBlock::unlink_element(int a, int b, int c) { link_element(b, a, c); }

void trTriBlock::reset_edges() {
  hubs_->clear();
  for (int i = 1; i < node_count(); ++i) {
    if (tr_interrupt()) return;
    node(i).reset_edges();
  }
}

void trTriBlock::build_edges() {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { build_edges(); });
  if (edges_built) return;
  reset_edges();
  if (tr_interrupt()) return;
  HalfEdgeTable table(*this);
  if (!table.has_memory()) return co_entry_lost();
  const int last = element_count() - 1;
  for (int e = 1; e <= last; ++e) {
    if (tr_interrupt()) return;
    table.prefetch(element(std::min(e + far_elements_ahead, last)), element(std::min(e + near_elements_ahead, last)));
    if (element(e).valid()) table.link(element(e), *hubs_);
  }
  table.hand_over(*this);
  edges_built = 1;
}

void trTriBlock::a_to_d() {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { a_to_d(); });
  for (int i = 1; i < node_count(); ++i) {
    trNode& n = node(i);
    if (n.invalid) continue;
    while (!n.a_edges.empty()) n.d_edges.insert_front(n.a_edges.remove_front());
  }
}
