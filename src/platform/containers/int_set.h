#pragma once

#include <initializer_list>

#include "platform/containers/int_slots.h"

class intcoSetcoIterator;

/// Set of numbers, 0 and negative ones included.
///
/// A walk meets the entries in table order. A number's place is its low bits (a collision moves it elsewhere), and the table has
/// more than twice as many slots as entries at the usual load of 50: so non-negative numbers below the table size come out
/// ascending. The order depends on nothing but the operations made so far; a copy is walked in the order of its source.
/// An empty set allocates nothing. Without memory an addition is dropped. Cost: O(1) an operation, O(table size) a walk.
class intcoSet {
 public:
  using coIterator = intcoSetcoIterator;

  /// @param log2  log2 of the slots of the fresh table
  /// @param load  percentage of filled slots at which the table doubles
  explicit intcoSet(int log2 = 4, int load = 50) noexcept : slots_(log2, load, coIntSlots::Payload::none) {}
  intcoSet(std::initializer_list<int> entries) : intcoSet() {
    for (int v : entries) add(v);
  }

  /// Number of entries.
  int count() const { return slots_.count(); }
  /// Exclusive-or of all entries; 0 for an empty set.
  int running_hash() const { return hash_; }
  int table_size() const { return 1 << slots_.log2_size(); }

  /// 1 when v was added, 0 when it was there already or there is no memory.
  int add(int v) {
    if (member(v) || slots_.insert(v) < 0) return 0;
    hash_ ^= v;
    return 1;
  }

  /// 1 when v was removed, 0 when it was absent. Safe in the middle of a walk.
  int remove(int v) noexcept {
    const int slot = slots_.find(v);
    if (slot < 0) return 0;
    slots_.remove_at(slot);
    hash_ ^= v;
    return 1;
  }

  int member(int v) const noexcept { return slots_.find(v) >= 0; }

  /// Removes every entry and goes back to the table size of construction.
  void clear() noexcept {
    slots_.clear();
    hash_ = 0;
  }

  /// Whether both hold the same numbers, whatever their order.
  int operator==(const intcoSet& other) const noexcept;
  int operator!=(const intcoSet& other) const noexcept { return !(*this == other); }

 private:
  friend class intcoSetcoIterator;
  coIntSlots slots_;
  int hash_ = 0;
};

/// Walks a set: `while (++it) use(it());`. Stepping a finished iterator starts again. After an addition during the walk, entries
/// may be met twice or not at all.
class intcoSetcoIterator {
 public:
  explicit intcoSetcoIterator(const intcoSet& set) : set_(&set) {}

  /// Moves to the first entry; 0 when the set is empty.
  int do_first() {
    slot_ = -1;
    return ++*this;
  }

  /// Steps to the next entry, or to the first when not started; returns whether there is one.
  int operator++() {
    slot_ = set_->slots_.next_used(slot_ + 1);
    return slot_ >= 0;
  }

  /// The current entry; valid only after a step that returned 1.
  int operator()() const { return set_->slots_.key(slot_); }

 private:
  const intcoSet* set_;
  int slot_ = -1;
};

inline int intcoSet::operator==(const intcoSet& other) const noexcept {
  if (count() != other.count() || hash_ != other.hash_) return 0;
  intcoSetcoIterator it(*this);
  while (++it) {
    if (!other.member(it())) return 0;
  }
  return 1;
}
