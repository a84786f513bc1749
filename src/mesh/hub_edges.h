#pragma once

#include <unordered_map>

#include "mesh/int_list.h"

/// Index over the few edge lists that grow long (a node with hundreds of unpaired half-edges), so that pairing stays
/// O(1) there.
///
/// A list's order is never touched: the index only knows, for each value, its entry nearest the front, and each entry's
/// predecessor. An index is stale, and is rebuilt on its next use, when its list was changed by anything but this
/// class.
class HubEdges {
 public:
  using Link = coCellPool::Link;

  /// Lists up to this length are searched entry by entry.
  static constexpr int longest_plain_list = 64;

  bool empty() const { return hubs_.empty(); }
  bool contains(int node) const { return hubs_.count(node) != 0; }

  /// Removes the first entry equal to v from the long list of `node`; returns whether there was one.
  bool remove(int node, trIntList& list, int v);
  /// Inserts v at the front of the indexed list of `node`.
  void insert_front(int node, trIntList& list, int v);
  void clear() { hubs_.clear(); }

  /// Drops the index of one node, whose list is about to change in some other way.
  void forget(int node) {
    if (!hubs_.empty()) hubs_.erase(node);
  }
  /// Runs an edit that changes no indexed list, so that the indexes stay as good as they are whatever it removes
  /// elsewhere.
  template <class F>
  void disregard(F edit) {
    const std::int64_t before = intcoSListB::edits();
    edit();
    disregarded_ += intcoSListB::edits() - before;
  }

 private:
  struct Hub {
    std::unordered_map<int, Link> first;       // value -> its entry nearest the front
    std::unordered_map<Link, Link> same_next;  // entry -> the next entry of the same value
    std::unordered_map<Link, Link> before;     // entry -> its predecessor; the first entry has none
    Link head = 0;
    std::int64_t edits = 0;
  };

  void build(Hub& hub, const trIntList& list) const;
  static void enter_front(Hub& hub, Link link, Link old_head);
  Hub& current(int node, const trIntList& list);
  std::int64_t edits() const { return intcoSListB::edits() - disregarded_; }

  std::unordered_map<int, Hub> hubs_;
  std::int64_t disregarded_ = 0;  // removals that are known to concern no indexed list
};
