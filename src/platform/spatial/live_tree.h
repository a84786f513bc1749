#pragma once

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <new>
#include <utility>
#include <vector>

#include "platform/containers/flat_array.h"
#include "platform/geometry/box3.h"
#include "platform/spatial/float_box.h"
#include "platform/spatial/morton_order.h"

inline giBox3 live_box(const giPoint3& p) { return giBox3(p, p); }
inline const giBox3& live_box(const giBox3& box) { return box; }

/// Points or boxes of fixed places that can be taken out one by one, for searches that may also end early, or go by number.
///
/// Items with a coordinate that is not a number are out from the start, and so are empty boxes.
/// Method: the items are sorted along a Morton curve, eight by eight, and bounded by a tree of boxes, four below each, that counts
/// what is left below each and knows the least number there. The four lie side by side, so that a search waits for memory once a
/// level. Nothing recurses.
/// Cost: O(n) to build, O(log n) a removal; 50 bytes a point, 74 a box.
template <class Item>
class LiveTree {
 public:
  explicit LiveTree(const std::vector<Item>& items) : places_(items.size()) {
    sort(items);
    std::size_t total = 0;
    for (std::size_t count = (items.size() + width - 1) / width; count > 0; count = (count + arity - 1) / arity) {
      levels_.push_back({total, count});
      total += count;
      if (count == 1) break;
    }
    allocate(nodes_, total);
    for (Node& node : nodes_) node = Node();
    for (std::size_t at = 0; at < entries_.size(); ++at) add(nodes_[at / width], entries_[at]);
    for (std::size_t level = 1; level < levels_.size(); ++level) {
      for (std::size_t k = 0; k < levels_[level - 1].count; ++k) {
        const Node& child = node(level - 1, k);
        Node& parent = node(level, k / arity);
        parent.box.merge(child.box);
        parent.left += child.left;
        parent.least = std::min(parent.least, child.least);
      }
    }
  }

  /// Items that are left.
  int left() const { return levels_.empty() ? 0 : root().left; }

  bool has(int i) const { return entries_[places_[static_cast<std::size_t>(i)]].number >= 0; }

  /// Calls visit(i) for the items that are left, neighbours in space one after the other, until it returns false. What is taken out
  /// meanwhile may still be met.
  template <class Visit>
  void visit_along_curve(Visit visit) const {
    for (const Entry& entry : entries_) {
      if (entry.number >= 0 && !visit(entry.number)) return;
    }
  }

  /// Takes out item i, counted from 0 as they were given; out already, it stays so.
  void remove(int i) {
    const std::size_t at = places_[static_cast<std::size_t>(i)];
    if (entries_[at].number < 0) return;
    entries_[at].number = -1;
    std::size_t k = at / width;
    for (std::size_t level = 0; level < levels_.size(); ++level, k /= arity) {
      Node& holder = node(level, k);
      --holder.left;
      if (holder.least == i) holder.least = least_below(level, k);
    }
  }

  /// Calls visit(i) for the items that are left, in no stated order, until it returns false. Those in a box, or whose
  /// own box, rejects(box) turns down are passed over: it may be asked about any box that holds them.
  /// @return whether it came to the end
  template <class Rejects, class Visit>
  bool visit(Rejects rejects, Visit visit) const {
    if (levels_.empty() || is_out(root(), rejects)) return true;
    Place stack[max_pending];
    int pending = 0;
    stack[pending++] = {levels_.size() - 1, 0};
    while (pending > 0) {
      const Place at = stack[--pending];
      if (at.level == 0) {
        if (!visit_leaf(at.k * width, rejects, visit)) return false;
        continue;
      }
      const std::size_t first = at.k * arity;
      for (std::size_t k = std::min(first + arity, levels_[at.level - 1].count); k-- > first;) {
        if (!is_out(node(at.level - 1, k), rejects)) stack[pending++] = {at.level - 1, k};
      }
    }
    return true;
  }

  template <class Rejects>
  class Ascending;

 private:
  static constexpr std::size_t width = 8;
  static constexpr std::size_t arity = 4;
  static constexpr int max_pending = 128;  // three for each of up to 32 levels, and one more
  struct Entry {
    Item item;
    int number;  // -1: out
  };
  struct Node {
    giBox3 box;
    int left = 0;
    int least = INT_MAX;  // of the numbers left; the largest int when none is
  };
  struct Level {
    std::size_t first, count;  // of its nodes
  };
  // A node by its level, from the leaves up, and its place there. Its children have the places from arity * k on.
  struct Place {
    std::size_t level, k;
  };

  // Large pages, since a search jumps about in it.
  template <class T>
  static void allocate(coFlatArray<T>& array, std::size_t n) {
    coFlatArray<T>(n).swap(array);
    if (array.size() < n) throw std::bad_alloc();
  }

  const Node& root() const { return node(levels_.size() - 1, 0); }
  Node& node(std::size_t level, std::size_t k) { return nodes_[levels_[level].first + k]; }
  const Node& node(std::size_t level, std::size_t k) const { return nodes_[levels_[level].first + k]; }

  template <class Rejects>
  static bool is_out(const Node& node, Rejects& rejects) {
    return node.left == 0 || rejects(node.box);
  }

  void sort(const std::vector<Item>& items) {
    std::vector<giPoint3> sample;
    for (std::size_t i = 0; i < items.size(); i += items.size() / 100 + 1) sample.push_back(live_box(items[i]).min());
    const FloatFrame frame = FloatFrame::about_middle(sample);
    std::vector<FloatBox> rough;
    rough.reserve(items.size());
    for (const Item& item : items) rough.push_back(frame.map(live_box(item).min(), live_box(item).max()));
    allocate(entries_, items.size());
    std::size_t at = 0;
    for (const int i : morton_order(rough)) {
      const Item& item = items[static_cast<std::size_t>(i)];
      const giBox3& box = live_box(item);
      const bool ordered = box.min().x <= box.max().x && box.min().y <= box.max().y && box.min().z <= box.max().z;
      places_[static_cast<std::size_t>(i)] = at;
      entries_[at++] = {item, ordered ? i : -1};
    }
  }

  static void add(Node& leaf, const Entry& entry) {
    if (entry.number < 0) return;
    leaf.box.merge(live_box(entry.item));
    ++leaf.left;
    leaf.least = std::min(leaf.least, entry.number);
  }

  int least_below(std::size_t level, std::size_t k) const {
    int least = INT_MAX;
    if (level == 0) {
      for (std::size_t at = k * width; at < std::min(k * width + width, entries_.size()); ++at) {
        if (entries_[at].number >= 0) least = std::min(least, entries_[at].number);
      }
    } else {
      for (std::size_t at = k * arity; at < std::min(k * arity + arity, levels_[level - 1].count); ++at) {
        least = std::min(least, node(level - 1, at).least);
      }
    }
    return least;
  }

  template <class Rejects, class Visit>
  bool visit_leaf(std::size_t first, Rejects rejects, Visit visit) const {
    const std::size_t end = std::min(first + width, entries_.size());
    for (std::size_t at = first; at < end; ++at) {
      const Entry& entry = entries_[at];
      if (entry.number >= 0 && !rejects(live_box(entry.item)) && !visit(entry.number)) return false;
    }
    return true;
  }

  coFlatArray<Entry> entries_;       // along the curve
  std::vector<std::size_t> places_;  // of each item in entries_
  coFlatArray<Node> nodes_;          // the leaves first, the root last
  std::vector<Level> levels_;
};

/// The items left in a tree that a test of boxes does not turn down, by number and one at a time: for those who want but the first
/// few of very many. Items may be taken out of the tree meanwhile; some of those may still be named.
/// Cost: O(log n) for each box that is looked into, and those are only the ones that hold a number below the next to be named.
template <class Item>
template <class Rejects>
class LiveTree<Item>::Ascending {
 public:
  /// rejects(box) may be asked about any box that holds items, as in visit().
  Ascending(const LiveTree& tree, Rejects rejects) : tree_(tree), rejects_(rejects) {
    if (!tree_.levels_.empty()) push_node(tree_.levels_.size() - 1, 0);
  }

  /// The next item, or -1 at the end.
  int next() {
    while (!pending_.empty()) {
      std::pop_heap(pending_.begin(), pending_.end(), std::greater<>());
      const Pending first = pending_.back();
      pending_.pop_back();
      if (first.at.level == item_level) return first.least;
      open(first.at);
    }
    return -1;
  }

 private:
  // A node of the tree, or an item.
  struct Pending {
    int least;
    Place at;
    bool operator>(const Pending& other) const { return least > other.least; }
  };
  static constexpr std::size_t item_level = SIZE_MAX;

  void push(const Pending& pending) {
    pending_.push_back(pending);
    std::push_heap(pending_.begin(), pending_.end(), std::greater<>());
  }

  void push_node(std::size_t level, std::size_t k) {
    const Node& node = tree_.node(level, k);
    if (!is_out(node, rejects_)) push({node.least, {level, k}});
  }

  void open(Place at) {
    if (at.level == 0) {
      tree_.visit_leaf(at.k * width, rejects_, [this](int number) { return push({number, {item_level, 0}}), true; });
      return;
    }
    const std::size_t end = std::min(at.k * arity + arity, tree_.levels_[at.level - 1].count);
    for (std::size_t k = at.k * arity; k < end; ++k) push_node(at.level - 1, k);
  }

  const LiveTree& tree_;
  Rejects rejects_;
  std::vector<Pending> pending_;  // a heap
};
