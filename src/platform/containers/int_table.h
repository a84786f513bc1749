#pragma once

#include "platform/containers/int_slots.h"

class intintcoTablecoIterator;

/// Map from number to number; keys and values may be any int.
///
/// A walk meets the keys in the order that `intcoSet` documents. An empty table allocates nothing.
class intintcoTable {
 public:
  using coIterator = intintcoTablecoIterator;

  /// @param log2  log2 of the slots of the fresh table
  /// @param load  percentage of filled slots at which the table doubles
  explicit intintcoTable(int log2 = 4, int load = 50) noexcept : slots_(log2, load, coIntSlots::Payload::number) {}

  /// Number of keys.
  int count() const { return slots_.count(); }

  /// Maps `key` to `value`, in place of an earlier value. 1 when the key is new, 0 when it was there or there is no memory.
  int set(int key, int value) {
    int slot = slots_.find(key);
    const int fresh = slot < 0;
    if (fresh && (slot = slots_.insert(key)) < 0) return 0;
    slots_.set_value(slot, value);
    return fresh;
  }

  int member(int key) const noexcept { return slots_.find(key) >= 0; }

  /// The value of `key`, or `absent` when it has none.
  int value(int key, int absent) const noexcept {
    const int slot = slots_.find(key);
    return slot < 0 ? absent : slots_.value(slot);
  }

  /// 1 when the key was removed, 0 when it was absent. Safe in the middle of a walk.
  int remove(int key) noexcept {
    const int slot = slots_.find(key);
    if (slot < 0) return 0;
    slots_.remove_at(slot);
    return 1;
  }

  /// Removes every key and goes back to the table size of construction.
  void clear() noexcept { slots_.clear(); }

 private:
  friend class intintcoTablecoIterator;
  coIntSlots slots_;
};

/// Walks a table: `while (++it) use(it(), it.value());`. Stepping a finished iterator starts again.
class intintcoTablecoIterator {
 public:
  explicit intintcoTablecoIterator(const intintcoTable& table) : table_(&table) {}

  /// Moves to the first key; 0 when the table is empty.
  int do_first() {
    slot_ = -1;
    return ++*this;
  }

  /// Steps to the next key, or to the first when not started; returns whether there is one.
  int operator++() {
    slot_ = table_->slots_.next_used(slot_ + 1);
    return slot_ >= 0;
  }

  /// The current key and its value; valid only after a step that returned 1.
  int operator()() const { return table_->slots_.key(slot_); }
  int value() const { return table_->slots_.value(slot_); }

 private:
  const intintcoTable* table_;
  int slot_ = -1;
};
