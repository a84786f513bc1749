#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/geometry/box3.h"
#include "platform/spatial/float_box.h"
#include "platform/spatial/morton_order.h"

inline giBox3 live_box(const giPoint3& p) { return giBox3(p, p); }
inline const giBox3& live_box(const giBox3& box) { return box; }

/// Points or boxes of fixed places that can be taken out one by one, for searches that may also end early.
///
/// Items with a coordinate that is not a number are out from the start, and so are empty boxes.
/// Method: the items are sorted along a Morton curve, eight by eight, and bounded by a binary tree of boxes that counts
/// what is left below each. Nothing recurses. Cost: O(n) to build, O(log n) a removal; 40 bytes a point, 64 a box.
template <class Item>
class LiveTree {
 public:
  explicit LiveTree(const std::vector<Item>& items) : places_(items.size()), leaf_count_((items.size() + width - 1) / width) {
    sort(items);
    nodes_.resize(2 * std::max<std::size_t>(leaf_count_, 1));
    for (std::size_t at = 0; at < entries_.size(); ++at) add(nodes_[leaf_count_ + at / width], entries_[at]);
    for (std::size_t n = leaf_count_; n-- > 1;) {
      for (const Node& child : {nodes_[2 * n], nodes_[2 * n + 1]}) {
        nodes_[n].box.merge(child.box);
        nodes_[n].left += child.left;
      }
    }
  }

  /// Items that are left.
  int left() const { return leaf_count_ == 0 ? 0 : nodes_[1].left; }

  /// Takes out item i, counted from 0 as they were given; out already, it stays so.
  void remove(int i) {
    const std::size_t at = places_[static_cast<std::size_t>(i)];
    if (entries_[at].number < 0) return;
    entries_[at].number = -1;
    for (std::size_t n = leaf_count_ + at / width; n >= 1; n /= 2) --nodes_[n].left;
  }

  /// Calls visit(i) for the items that are left, in no stated order, until it returns false. Those in a box, or whose
  /// own box, rejects(box) turns down are passed over: it may be asked about any box that holds them.
  /// @return whether it came to the end
  template <class Rejects, class Visit>
  bool visit(Rejects rejects, Visit visit) const {
    std::size_t stack[max_depth];
    int pending = 0;
    if (leaf_count_ > 0) stack[pending++] = 1;
    while (pending > 0) {
      const std::size_t n = stack[--pending];
      if (nodes_[n].left == 0 || rejects(nodes_[n].box)) continue;
      if (n < leaf_count_) {
        stack[pending++] = 2 * n + 1;
        stack[pending++] = 2 * n;
      } else if (!visit_leaf((n - leaf_count_) * width, rejects, visit)) {
        return false;
      }
    }
    return true;
  }

 private:
  static constexpr std::size_t width = 8;
  static constexpr int max_depth = 80;  // one for each level of the tree and one more
  struct Entry {
    Item item;
    int number;  // -1: out
  };
  struct Node {
    giBox3 box;
    int left = 0;
  };

  void sort(const std::vector<Item>& items) {
    std::vector<giPoint3> sample;
    for (std::size_t i = 0; i < items.size(); i += items.size() / 100 + 1) sample.push_back(live_box(items[i]).min());
    const FloatFrame frame = FloatFrame::about_middle(sample);
    std::vector<FloatBox> rough;
    rough.reserve(items.size());
    for (const Item& item : items) rough.push_back(frame.map(live_box(item).min(), live_box(item).max()));
    entries_.reserve(items.size());
    for (const int i : morton_order(rough)) {
      const Item& item = items[static_cast<std::size_t>(i)];
      const giBox3& box = live_box(item);
      const bool ordered = box.min().x <= box.max().x && box.min().y <= box.max().y && box.min().z <= box.max().z;
      places_[static_cast<std::size_t>(i)] = entries_.size();
      entries_.push_back({item, ordered ? i : -1});
    }
  }

  static void add(Node& leaf, const Entry& entry) {
    if (entry.number < 0) return;
    leaf.box.merge(live_box(entry.item));
    ++leaf.left;
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

  std::vector<Entry> entries_;        // along the curve
  std::vector<std::size_t> places_;   // of each item in entries_
  std::size_t leaf_count_;
  std::vector<Node> nodes_;  // leaf k is node leaf_count_ + k, the children of n are 2n and 2n + 1, the root is 1
};
