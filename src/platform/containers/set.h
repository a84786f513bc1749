#pragma once

#include <initializer_list>
#include <new>
#include <utility>

#include "platform/containers/base_set.h"
#include "platform/containers/hash.h"
#include "platform/containers/memory_scope.h"
#include "platform/utilities/ut_copy.h"

template <class T>
class coSetcoIterator;

// The spread of an entry: what its member co_spread returns where its type has one, else 0.
template <class T>
auto co_spread_or_zero(const T& entry, int) -> decltype(static_cast<int>(entry.co_spread())) {
  return entry.co_spread();
}
template <class T>
int co_spread_or_zero(const T&, long) {
  return 0;
}

/// Set of entries that have a default constructor (which makes the nil entry), an assignment, `==` and a member `int co_hash()`.
///
/// Where many unequal entries share a hash, a member `int co_spread()`, the same for equal entries, keeps them apart in the table.
/// Two entries count as the same when their hashes agree and `==` holds. The nil entry can be a member, but the answers that are
/// entries do not tell it from "none".
/// Walks meet the entries in table order; the order depends only on the hashes and the operations made so far, and a copy has the
/// order of its source. Adding and removing move entries about.
/// An empty set allocates nothing, yet reports the size that its table will have. Without memory an addition is dropped.
/// Cost: O(1) an operation when hashes differ, O(table size) a walk.
template <class T>
class coSet : public basecoSet, private coHash, private coArrInterface, private coObjInterface {
 public:
  using coIterator = coSetcoIterator<T>;

  /// @param log2  log2 of the slots of the table, 0 to 30
  /// @param load  percentage of filled slots at which the table doubles, 1 to 100
  explicit coSet(int log2 = 4, int load = 50)
      : basecoSet(log2, load), coHash(static_cast<coArrInterface&>(*this), static_cast<coObjInterface&>(*this)) {}
  coSet(std::initializer_list<T> entries) : coSet() {
    for (const T& entry : entries) add(entry);
  }
  coSet(utCopy tag, const coSet& other) : coSet() { become(tag, other); }
  ~coSet() override { delete[] table_; }

  /// Drops the own entries and becomes a copy of the other, slot by slot. Without memory the copy is empty.
  void become(utCopy, const coSet& other) {
    if (this == &other) return;
    free_table();
    max_load_ = other.max_load_;
    log2_size_ = other.log2_size_;
    if (other.count_ == 0) return;
    if (!make_table()) return co_entry_lost();
    for (int k = 0; k < table_size(); ++k) table_[k] = other.table_[k];
    coHash::copy_marks(other);
    count_ = other.count_;
    running_hash_ = other.running_hash_;
  }

  /// Inserts a copy and returns the nil entry; returns the equal entry, and changes nothing, when there is one.
  const T& add(const T& entry) {
    const int found = find_index(&entry);
    if (found >= 0) return table_[found];
    const bool has_table = make_table();
    if (has_table && count_ + 1 >= table_size()) update_size(count_ + 1);
    if (has_table && count_ + 1 < table_size()) {
      enter(entry);
    } else {
      co_entry_lost();
    }
    return nil();
  }

  /// The equal entry, or the nil entry. The reference holds until the set is changed.
  const T& find(const T& entry) const {
    const int slot = find_index(&entry);
    return slot < 0 ? nil() : table_[slot];
  }

  /// Removes the equal entry and returns it; the nil entry when there is none.
  T remove(const T& entry) { return take(find_index(&entry)); }

  /// Removes and returns the first entry in walking order; the nil entry when the set is empty.
  T remove_any() { return take(first_index()); }

  /// Whether every entry of this is in the other.
  int operator<=(const coSet& other) const {
    if (count_ > other.count_) return 0;
    for (int k = next_index(0); k >= 0; k = next_index(k + 1)) {
      if (other.find_index(&table_[k]) < 0) return 0;
    }
    return 1;
  }

  /// Union. The table grows to the other's size first.
  coSet& operator+=(const coSet& other) {
    if (this == &other) return *this;
    if (other.log2_size_ > log2_size_) rehash(other.log2_size_);
    for (int k = other.next_index(0); k >= 0; k = other.next_index(k + 1)) add(other.table_[k]);
    return *this;
  }

  /// Difference.
  coSet& operator-=(const coSet& other) {
    if (this == &other) {
      resize(log2_size_, 0);
      return *this;
    }
    for (int k = other.next_index(0); k >= 0; k = other.next_index(k + 1)) remove(other.table_[k]);
    return *this;
  }

  /// Intersection, in one pass: closing a gap brings an entry not yet seen into the slot at hand, or takes one already seen to the
  /// end of the table.
  coSet& operator*=(const coSet& other) {
    for (int k = next_index(0); k >= 0;) {
      const bool keep = other.find_index(&table_[k]) >= 0;
      if (!keep) take(k);
      k = next_index(keep ? k + 1 : k);
    }
    return *this;
  }

  /// The entry that stands for none.
  static const T& nil() {
    alignas(T) static unsigned char place[sizeof(T)];
    static const T* entry = new (place) T();  // never destroyed: a host's global sets may outlive any of ours
    return *entry;
  }

  /// Empties the set. With `realloc` 0 the table keeps its size; else its storage is freed and its size becomes 1 << log2.
  void resize(int log2, int realloc) {
    if (realloc) {
      free_table();
      log2_size_ = clamp_log2(log2);
      return;
    }
    for (int k = next_index(0); k >= 0; k = next_index(k + 1)) table_[k] = nil();
    if (allocated() && !coHash::allocate(log2_size_)) free_table();
    count_ = 0;
    running_hash_ = 0;
  }

  /// Rebuilds the table with 1 << log2 slots, or as many more as the load limit asks for. Without memory nothing changes.
  void rehash(int log2) {
    log2 = clamp_log2(log2);
    while (overloaded(count_, log2)) ++log2;
    if (table_ == nullptr) {
      log2_size_ = log2;
      return;
    }
    coSet fresh(log2, max_load_);
    if (!fresh.make_table()) return;
    for (int k = next_index(0); k >= 0; k = next_index(k + 1)) fresh.table_[fresh.insert_mark(mark(k))] = std::move(table_[k]);
    coHash::exchange(fresh);
    std::swap(table_, fresh.table_);
    log2_size_ = log2;
  }

  void update_size(int n) override {
    int log2 = log2_size_;
    while (overloaded(n, log2)) ++log2;
    if (log2 != log2_size_) rehash(log2);
  }

 private:
  friend class coSetcoIterator<T>;

  const void* obj_nil() const override { return &nil(); }
  int obj_compare(const void* a, const void* b) const override { return !(entry_at(a) == entry_at(b)); }
  void obj_assign(void* target, const void* source) const override { *static_cast<T*>(target) = entry_at(source); }
  int obj_hash(const void* entry) const override { return entry_at(entry).co_hash(); }
  int obj_spread(const void* entry) const override { return co_spread_or_zero(entry_at(entry), 0); }
  void arr_put_copy(int slot, const void* entry) override { obj_assign(&table_[slot], entry); }
  const void* arr_get(int slot) const override { return &table_[slot]; }
  void arr_move(int target, int source) override { table_[target] = std::move(table_[source]); }

  static const T& entry_at(const void* entry) { return *static_cast<const T*>(entry); }

  bool make_table() {
    if (table_ != nullptr) return true;
    table_ = new (std::nothrow) T[static_cast<std::size_t>(table_size())]();
    if (table_ == nullptr) return false;
    if (coHash::allocate(log2_size_)) return true;
    delete[] std::exchange(table_, nullptr);
    return false;
  }

  void free_table() {
    delete[] std::exchange(table_, nullptr);
    coHash::release();
    count_ = 0;
    running_hash_ = 0;
  }

  void enter(const T& entry) {
    running_hash_ ^= stored_hash(insert(&entry));
    update_size(++count_);
  }

  T take(int slot) {
    if (slot < 0) return nil();
    running_hash_ ^= stored_hash(slot);
    T gone = std::move(table_[slot]);
    remove_index(slot);
    --count_;
    return gone;
  }

  T* table_ = nullptr;
};

/// Walks a set: `while (++it) use(it());`. Stepping a finished iterator starts again. A change of the set during the walk may make
/// it meet an entry twice or not at all.
template <class T>
class coSetcoIterator {
 public:
  explicit coSetcoIterator(const coSet<T>& set) : set_(&set) {}

  /// Moves to the first entry; 0 when the set is empty.
  int do_first() {
    slot_ = -1;
    return ++*this;
  }

  /// Steps to the next entry, or to the first when not started; returns whether there is one.
  int operator++() {
    slot_ = set_->next_index(slot_ + 1);
    return slot_ >= 0;
  }

  /// The current entry; valid only after a step that returned 1.
  const T& operator()() const { return set_->table_[slot_]; }

 private:
  const coSet<T>* set_;
  int slot_ = -1;
};
