// Triangles on edges that more than two triangles share, found node by node.

#include <algorithm>
#include <functional>
#include <vector>

#include "analysis/checker.h"
#include "mesh/memory_guard.h"
#include "platform/containers/int_set.h"
#include "progress/progress.h"

namespace {

// Lists longer than this are indexed instead of searched for each of their entries.
constexpr int longest_plain_list = 64;
// How many nodes ahead memory is fetched: first where a node's list starts, then its elements.
constexpr int list_ahead = 16;
constexpr int elements_ahead = 8;
constexpr int window_mask = 15;
static_assert(elements_ahead <= window_mask,
              "the window must hold every node up to the one whose elements are fetched");

// The list of a node, front first; `is_long` when it does not fit.
struct NodeEntries {
  int length = 0;
  bool is_long = false;
  int elements[longest_plain_list];
};

// Fetches the lists and elements of the nodes ahead, so that each is there when its node's turn comes.
class NodeWindow {
 public:
  explicit NodeWindow(const trTriBlock& block) : block_(block) {
    for (int i = 1; i < 1 + elements_ahead; ++i) gather(i);
  }

  const NodeEntries& advance(int i) {
    if (i + list_ahead < block_.node_count()) coCellPool::prefetch(block_.node(i + list_ahead).elements.head());
    gather(i + elements_ahead);
    return ring_[i & window_mask];
  }

 private:
  void gather(int i) {
    NodeEntries& entries = ring_[i & window_mask];
    entries.length = 0;
    entries.is_long = false;
    if (i >= block_.node_count() || block_.node(i).invalid) return;
    coCellPool::Link link = block_.node(i).elements.head();
    for (; link != 0 && entries.length < longest_plain_list; link = coCellPool::next(link)) {
      const int e = coCellPool::value(link);
      entries.elements[entries.length++] = e;
      co_prefetch_for_reading(&block_.element(e));
    }
    entries.is_long = link != 0;
  }

  const trTriBlock& block_;
  NodeEntries ring_[window_mask + 1];
};

bool has_corner(const trElement& t, int i) { return t[0] == i || t[1] == i || t[2] == i; }

// Whether three of the numbers are equal. (For the dozen numbers of an ordinary node nothing beats comparing all.)
bool has_three_alike(const int* numbers, int n) {
  int most = 0;
  for (int a = 0; a < n; ++a) {
    int alike = 0;
    for (int b = 0; b < n; ++b) alike += numbers[a] == numbers[b];
    most = std::max(most, alike);
  }
  return most > 2;
}

// Whether the node may have a crowded edge, or needs a closer look for another reason. Never false when it has one.
bool is_suspect(const trTriBlock& block, int i, const NodeEntries& entries) {
  if (entries.is_long) return true;
  int others[2 * longest_plain_list];
  int n = 0;
  for (int k = 0; k < entries.length; ++k) {
    const int e = entries.elements[k];
    if (k > 0 && e >= entries.elements[k - 1]) return true;  // it may hold a number twice
    const trElement& t = block.element(e);
    if (t[0] == 0 || !has_corner(t, i)) continue;
    for (int corner = 0; corner < 3; ++corner) {
      if (t[corner] != i) others[n++] = t[corner];
    }
  }
  return has_three_alike(others, n);
}

// Enters the elements of a node, in the order of its list, on the edges that leave it.
class NodeSearch {
 public:
  NodeSearch(const trTriBlock& block, intcoPageArr& out, int mode) : block_(block), checker_(&block, &out, mode) {}

  void check(int i) {
    elements_.clear();
    trIntListIT it(block_.node(i).elements);
    while (++it) elements_.push_back(it());
    elements_.resize(examined_length());
    checker_.start_node();
    for (int e : elements_) {
      const trElement& t = block_.element(e);
      if (t[0] == 0 || !has_corner(t, i)) continue;
      for (int corner = 0; corner < 3; ++corner) checker_.enter(i, e, t[corner]);
    }
  }

 private:
  // How many entries of the list are examined: a live element whose number comes again further on stops the walk.
  std::size_t examined_length() const {
    std::size_t length = elements_.size();
    const auto rise = std::adjacent_find(elements_.begin(), elements_.end(), std::less_equal<int>());
    if (rise == elements_.end()) return length;  // a list in falling order holds no number twice
    intcoSet behind;
    for (std::size_t k = elements_.size(); k-- > 0;) {
      const bool comes_again = !behind.add(elements_[k]);
      if (comes_again && block_.element(elements_[k])[0] != 0) length = k;
    }
    return length;
  }

  const trTriBlock& block_;
  Checker checker_;
  std::vector<int> elements_;
};

// Sorts element numbers and drops repeats; every sick element is found from two nodes at least.
void sort_without_repeats(intcoPageArr& list, int element_count) {
  std::vector<bool> listed(static_cast<std::size_t>(element_count));
  for (int k = 0; k < list.count(); ++k) listed[static_cast<std::size_t>(list.at(k))] = true;
  int kept = 0;
  for (int e = 1; e < element_count; ++e) {
    if (listed[static_cast<std::size_t>(e)]) list.at(kept++) = e;
  }
  list.shrink(kept, 0);
}

}  // namespace

void trTriBlock::find_sick(intcoPageArr& out, int mode) const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { find_sick(out, mode); });
  out.clear(0);
  reference_elements();
  if (tr_interrupt()) return;
  NodeWindow window(*this);
  NodeSearch search(*this, out, mode);
  for (int i = 1; i < node_count(); ++i) {
    if (tr_interrupt()) return;
    tr_report_nodes(i, node_count(), 0.0, 100.0);
    const NodeEntries& entries = window.advance(i);
    if (!node(i).invalid && is_suspect(*this, i, entries)) search.check(i);
  }
  if (out.count() > 0) sort_without_repeats(out, element_count());
}

int trTriBlock::cure_sick(int mode) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0, [&] { return cure_sick(mode); });
  intcoPageArr list;
  find_sick(list, mode);
  if (tr_interrupt()) return 0;
  for (int k = 0; k < list.count(); ++k) {
    if (tr_interrupt()) return 0;
    delete_element(list[k]);
  }
  if (list.count() == 0) return 0;
  mark_changed();
  return 1;
}
