#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <new>
#include <utility>

#include "platform/containers/buffer_guard.h"
#include "platform/containers/memory_scope.h"

template <class T>
class coDynArrcoIterator;

/// Growing array in one piece; growth moves the entries, so addresses hold only until the next growth.
///
/// The capacity that is reported grows in whole increments. The storage behind it at least doubles, so that n appends cost O(n).
/// Entries between the count and the capacity exist and keep their values when the count falls (`clear(0)`, `shrink(n, 0)`);
/// growing the capacity makes them default-constructed again.
template <class T>
class coDynArr {
 public:
  using coIterator = coDynArrcoIterator<T>;

  /// @param cap  initial capacity; 0 or less allocates nothing
  /// @param inc  increment of the capacity; 0 is not allowed and counts, like a negative one, as 1
  explicit coDynArr(int cap = 0, int inc = 10) : increment_(std::max(inc, 1)) {
    if (cap > 0 && restore(cap)) capacity_ = cap;
  }
  coDynArr(const coDynArr&) = delete;
  coDynArr& operator=(const coDynArr&) = delete;
  ~coDynArr() { delete[] data_; }

  int count() const { return count_; }
  int capacity() const { return capacity_; }
  int increment() const { return increment_; }

  /// Makes the capacity at least n. 1 on success, 0 when there is no memory.
  int reserve(int n) { return n <= capacity_ ? 1 : resize(n - 1); }

  /// Moves the capacity by whole increments to capacity + inc * ((i - capacity) / inc + 1): at least one increment up for an i at
  /// or beyond the capacity, and possibly down for a smaller one, but never below the count. 0 when there is no memory.
  int resize(int i) {
    const std::int64_t steps = (std::int64_t{i} - capacity_) / increment_ + 1;
    const std::int64_t wanted = std::max<std::int64_t>(capacity_ + increment_ * steps, count_);
    if (wanted > INT_MAX) return 0;
    const int fresh = static_cast<int>(wanted);
    if (fresh > stored_) {
      const int doubled = stored_ > INT_MAX / 2 ? INT_MAX : 2 * stored_;
      if (!restore(std::max(fresh, doubled)) && !restore(fresh)) return 0;
    } else {
      for (int k = count_; k < capacity_; ++k) data_[k] = T();
    }
    capacity_ = fresh;
    return 1;
  }

  /// Entry i; an index at or beyond the count raises the count to i + 1. Without memory the count stays, and a scratch entry is
  /// returned whose value is lost with the next such failure.
  T& operator[](int i) {
    if (i >= capacity_ && !resize(i)) return lost_entry();
    if (i >= count_) count_ = i + 1;
    return data_[i];
  }
  /// Entry i without growth; i must be below the count.
  const T& operator[](int i) const { return data_[i]; }

  /// Makes sure that entries below n exist and raises the count to n if it is lower. 0 when there is no memory.
  int expand(int n) {
    if (!reserve(n)) {
      co_entry_lost();
      return 0;
    }
    count_ = std::max(count_, n);
    return 1;
  }

  /// Lowers the count to n if it is higher. With `free` the storage and the capacity shrink to exactly n; n 0 is `clear(free)`.
  void shrink(int n, int free) {
    if (n <= 0) return clear(free);
    const int kept = std::min(count_, n);
    if (free && n < capacity_) {
      count_ = kept;
      if (restore(n)) capacity_ = n;
    }
    count_ = kept;
  }

  /// Count 0; with `free` also frees the storage and sets the capacity to 0.
  void clear(int free) {
    count_ = 0;
    if (!free) return;
    capacity_ = 0;
    stored_ = 0;
    delete[] std::exchange(data_, nullptr);
  }

  /// Moves an owner to the end: what the slot there held is dropped, and the argument is left empty. Appending the very entry that
  /// already stands there only raises the count.
  /// @return  the index of the entry, -1 when there is no memory (the argument then keeps what it owns)
  int append(T& owner) {
    if (count_ == capacity_) return append_growing(owner);
    T& slot = data_[count_];
    if (&slot != &owner) slot = std::move(owner);
    return count_++;
  }

  void swap(coDynArr& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(stored_, other.stored_);
    std::swap(capacity_, other.capacity_);
    std::swap(count_, other.count_);
    std::swap(increment_, other.increment_);
  }

 private:
  friend class coDynArrcoIterator<T>;

  // The argument may be an entry of this array, so it is emptied before the entries move.
  int append_growing(T& owner) {
    T held = std::move(owner);
    if (!resize(count_)) {
      owner = std::move(held);
      co_entry_lost();
      return -1;
    }
    data_[count_] = std::move(held);
    return count_++;
  }

  // New storage for n entries, with those below the count carried over.
  int restore(int n) {
    coBufferGuard<T> fresh(new (std::nothrow) T[static_cast<std::size_t>(n)]());
    if (fresh.get() == nullptr) return 0;
    for (int k = 0; k < count_; ++k) fresh.get()[k] = std::move(data_[k]);
    delete[] std::exchange(data_, fresh.release());
    stored_ = n;
    return 1;
  }

  static T& lost_entry() {
    co_entry_lost();
    alignas(T) static unsigned char place[sizeof(T)];
    static T* entry = new (place) T();  // never destroyed: a host's global objects may outlive any of ours
    *entry = T();
    return *entry;
  }

  T* data_ = nullptr;
  int stored_ = 0;    // entries that data_ holds, all constructed
  int capacity_ = 0;  // what is reported, at most stored_
  int count_ = 0;
  int increment_;
};

/// Walks a dynamic array: `while (++it) use(it());`. Stepping a finished iterator starts again.
template <class T>
class coDynArrcoIterator {
 public:
  explicit coDynArrcoIterator(const coDynArr<T>& array) : array_(&array) {}

  /// Moves to the first entry; 0 when the array is empty.
  int do_first() {
    index_ = 0;
    return check_end();
  }

  /// Steps to the next entry, or to the first when not started; returns whether there is one.
  int operator++() {
    ++index_;
    return check_end();
  }

  /// The current entry; valid only after a step that returned 1.
  T& operator()() const { return array_->data_[index_]; }

 private:
  int check_end() {
    if (index_ < array_->count()) return 1;
    index_ = -1;
    return 0;
  }

  const coDynArr<T>* array_;
  int index_ = -1;
};

