#pragma once

#include <cstdint>
#include <utility>

#include "platform/containers/cell_pool.h"
#include "platform/containers/memory_scope.h"

class intcoSListBcoIterator;

/// Singly linked list of numbers: four bytes and, for n entries, n - 1 cells of the common pool.
class MENDEX_EXPORT intcoSListB {
 public:
  using coIterator = intcoSListBcoIterator;
  using Link = coCellPool::Link;

  intcoSListB() = default;
  intcoSListB(const intcoSListB&) = delete;
  intcoSListB& operator=(const intcoSListB&) = delete;
  ~intcoSListB() { clear(); }

  bool empty() const { return head_ == 0; }

  /// The first entry; the list must not be empty.
  int front() const { return coCellPool::value(head_); }

  /// Inserts v before all others. Without memory the list stays as it is and 0 is returned.
  int insert_front(int v) {
    const Link link = coCellPool::prepend(v, head_);
    if (link == 0) {
      co_entry_lost();
      return 0;
    }
    head_ = link;
    return 1;
  }

  /// Removes and returns the first entry; the list must not be empty.
  int remove_front() {
    ++edits_;
    const Link link = head_;
    const int v = coCellPool::value(link);
    head_ = coCellPool::next(link);
    coCellPool::release(link);
    return v;
  }

  /// Removes every entry. Cost: O(n).
  void clear() {
    while (head_ != 0) remove_front();
  }

  /// Number of entries. Cost: O(n).
  int count() const {
    int n = 0;
    for (Link link = head_; link != 0; link = coCellPool::next(link)) ++n;
    return n;
  }

  void swap(intcoSListB& other) {
    ++edits_;
    std::swap(head_, other.head_);
  }

  /// Counts removals of every kind from any list, except `unlink`: an index over a list is stale when this has moved on.
  static std::int64_t edits() { return edits_; }

  /// Where the list starts in the pool; for walks that must stay cheap.
  Link head() const { return head_; }

  /// Takes out the entry at `link`, whose predecessor is `before` (0 when it is the first). The order of the rest stays.
  void unlink(Link link, Link before) {
    const Link after = coCellPool::next(link);
    if (before == 0) {
      head_ = after;
    } else {
      coCellPool::cell(before).next = after;
    }
    coCellPool::release(link);
  }

  /// To be called by users of `unlink` that keep no index of their own.
  static void count_edit() { ++edits_; }

 private:
  static std::int64_t edits_;
  Link head_ = 0;
};

/// Walks a list from its front: `while (++it) use(it());`. Entries inserted at the front during the walk are not visited.
class intcoSListBcoIterator {
 public:
  explicit intcoSListBcoIterator(const intcoSListB& list) : list_(&list) {}

  /// Steps to the next entry, or to the first when not started; returns whether there is one.
  int operator++() {
    at_ = started_ ? (at_ == 0 ? 0 : coCellPool::next(at_)) : list_->head();
    started_ = true;
    return at_ != 0;
  }

  /// Starts over; returns whether there is an entry.
  int do_first() {
    started_ = false;
    return ++*this;
  }

  /// The current entry; 0 before the first step and after the last.
  int operator()() const { return at_ == 0 ? 0 : coCellPool::value(at_); }

 private:
  const intcoSListB* list_;
  coCellPool::Link at_ = 0;
  bool started_ = false;
};
