#pragma once

#include <algorithm>
#include <initializer_list>
#include <new>
#include <utility>

#include "platform/containers/memory_scope.h"
#include "platform/containers/page_heap.h"
#include "platform/containers/page_pointers.h"
#include "platform/utilities/ut_copy.h"
#include "platform/utilities/ut_numeric_cast.h"

template <class T>
class coPageArrcoIterator;

/// Growing array kept in pages of a power-of-two number of entries.
///
/// Entry i lives in page i >> shift at slot i & (page size - 1). Indexing past the end grows the array. Entries never move:
/// addresses hold until `clear` or `shrink` with freeing, `repaginate`, or destruction. Pages are allocated whole, with every
/// entry default-constructed (numbers are zero).
/// An empty array allocates nothing, and one in static storage can be used before main. Cost: O(1) an entry; a page costs one
/// allocation.
template <class T>
class coPageArr {
 public:
  using coIterator = coPageArrcoIterator<T>;

  constexpr coPageArr() : coPageArr(8, 5, 10) {}

  /// @param shift  log2 of the entries in a page
  /// @param cap    initial capacity of the page-pointer array
  /// @param inc    its increment
  /// @param first  ordinal of its first page to the page heap, which gives cheaper memory to later pages: positive for an array that
  ///               is not expected to stay small
  constexpr coPageArr(int shift, int cap, int inc, int first = 0)
      : page_size_(1 << shift), page_shift_(shift), pages_(cap, inc), first_ordinal_(first) {}

  coPageArr(std::initializer_list<T> entries) : coPageArr() {
    const int n = ut_numeric_cast<int>(entries.size());
    for (int k = 0; k < n; ++k) (*this)[k] = entries.begin()[k];
  }

  coPageArr(utCopy tag, const coPageArr& other) : coPageArr() { become(tag, other); }
  coPageArr(const coPageArr&) = delete;
  coPageArr& operator=(const coPageArr&) = delete;
  ~coPageArr() { clear(1); }

  /// Number of entries in use: the highest index plus one.
  int count() const { return count_; }
  int pages() const { return pages_allocated_; }
  int page_size() const { return page_size_; }
  int page_shift() const { return page_shift_; }
  int current_block() const { return current_block_; }
  int page_capacity() const { return pages_.capacity(); }

  /// Entry i; an index at or beyond the count grows the array to hold it. Without memory a scratch entry is returned.
  T& operator[](int i) {
    if (i >= count_ && !grow_to(i)) return lost_entry();
    return at(i);
  }
  /// Entry i without growth; i must be below the count.
  const T& operator[](int i) const { return at(i); }

  /// Entry i of an existing page, without growth or test.
  T& at(int i) { return page(i >> page_shift_)[i & (page_size_ - 1)]; }
  const T& at(int i) const { return page(i >> page_shift_)[i & (page_size_ - 1)]; }

  /// Whether one more entry fits into the pages that there are.
  bool has_room() const { return (count_ >> page_shift_) < pages_allocated_; }
  /// Appends an entry where there is room; it holds what its slot held. For loops in which even the call of a rare growth would cost.
  T& append_in_room() { return at(count_++); }

  /// Start of page b, which must exist.
  T* page(int b) const { return static_cast<T*>(pages_[b]); }

  /// Makes sure that entries below n exist and raises the count to n. 0 when there is no memory.
  int expand(int n) {
    if (n > 0 && !get_block((n - 1) >> page_shift_)) {
      co_entry_lost();
      return 0;
    }
    count_ = std::max(count_, n);
    return 1;
  }

  /// Allocates pages until page b exists and makes it the current one. 0 when there is no memory.
  int get_block(int b) {
    if (b >= pages_allocated_) {
      if (!pages_.reserve(b + 1)) return 0;
      while (pages_allocated_ <= b) {
        T* fresh = make_page(pages_allocated_, page_size_);
        if (fresh == nullptr) return 0;
        pages_.set(pages_allocated_++, fresh);
      }
    }
    switch_block(b);
    return 1;
  }

  void switch_block(int b) {
    current_block_ = b;
    current_page_ = page(b);
  }

  /// Count 0; with `free` also destroys every page.
  void clear(int free) {
    if (free) {
      free_pages_from(0);
      pages_.clear();
    }
    count_ = 0;
  }

  /// Lowers the count to n if it was higher; with `free` also frees the pages that n entries do not need.
  void shrink(int n, int free) {
    n = std::max(n, 0);
    if (free) {
      const int needed = pages_for(n);
      if (needed < pages_allocated_) {
        free_pages_from(needed);
        pages_.shrink(needed);
      }
    }
    count_ = std::min(count_, n);
  }

  /// Moves the entries of an array shorter than a page into the smallest power-of-two page that holds them.
  /// @return the capacity that became free, in entries; 0 for a longer array
  int repaginate() {
    if (count_ >= page_size_) return 0;
    const int before = pages_allocated_ * page_size_;
    if (count_ == 0) {
      clear(1);
      return before;
    }
    int shift = 0;
    while ((1 << shift) < count_) ++shift;
    if (shift == page_shift_) {
      shrink(count_, 1);
    } else if (!move_to_page(shift)) {
      return 0;
    }
    return before - page_size_;
  }

  /// Copies min(n, other's count) entries from other[src + k] to this[dst + k], growing this. The number is bounded by the
  /// source's count, not by what follows src: entries beyond the source's pages read as default-constructed.
  void copy(const coPageArr& other, int n, int dst, int src) {
    n = std::min(n, other.count_);
    if (n <= 0) return;
    if (!reserve_entries(dst + n)) return co_entry_lost();
    if (this == &other && src < dst && dst < src + n) {
      for (int k = n - 1; k >= 0; --k) (*this)[dst + k] = other.entry_or_default(src + k);
      return;
    }
    for (int k = 0; k < n; ++k) (*this)[dst + k] = other.entry_or_default(src + k);
  }

  /// Clears this and makes it a copy of other, page size included.
  void become(utCopy, const coPageArr& other) {
    if (this == &other) return;
    clear(1);
    pages_.reserve(other.pages_allocated_);
    page_size_ = other.page_size_;
    page_shift_ = other.page_shift_;
    current_block_ = -1;
    copy(other, other.count_, 0, 0);
  }

  /// Grows to dst + n and copies n raw entries from p[src] onward, a page run at a time.
  void copyin(const T* p, int n, int dst, int src) {
    if (n <= 0 || !expand(dst + n)) return;
    for (int done = 0; done < n;) {
      const int run = run_length(dst + done, n - done);
      std::copy_n(p + src + done, run, &at(dst + done));
      done += run;
    }
  }

  /// Copies n raw entries from this[src] onward into p[dst] onward, a page run at a time.
  void copyout(T* p, int n, int dst, int src) const {
    for (int done = 0; done < n;) {
      const int run = run_length(src + done, n - done);
      std::copy_n(&at(src + done), run, p + dst + done);
      done += run;
    }
  }

  /// Count 0 and every entry default-constructed, with no more pages than the first: what takes no memory.
  void start_anew() {
    shrink(0, 0);
    free_pages_from(std::min(pages_allocated_, 1));
    if (pages_allocated_ == 0) return;
    std::destroy_n(page(0), page_size_);
    for (int k = 0; k < page_size_; ++k) new (page(0) + k) T();
  }

  /// Exchanges pages and everything else with another array.
  void swap(coPageArr& other) noexcept {
    std::swap(pages_allocated_, other.pages_allocated_);
    std::swap(count_, other.count_);
    std::swap(page_size_, other.page_size_);
    std::swap(page_shift_, other.page_shift_);
    pages_.swap(other.pages_);
    std::swap(first_ordinal_, other.first_ordinal_);
    std::swap(current_block_, other.current_block_);
    std::swap(current_page_, other.current_page_);
  }

  void reverse() {
    using std::swap;
    for (int k = 0; k < count_ / 2; ++k) swap(at(k), at(count_ - 1 - k));
  }

 private:
  int pages_for(int n) const { return n / page_size_ + (n % page_size_ != 0); }

  int run_length(int index, int wanted) const { return std::min(wanted, page_size_ - (index & (page_size_ - 1))); }

  std::size_t page_bytes(int entries) const { return static_cast<std::size_t>(entries) * sizeof(T); }

  int grow_to(int i) {
    const int b = i >> page_shift_;
    if (b >= pages_allocated_ && !get_block(b)) return 0;
    count_ = i + 1;
    return 1;
  }

  // Pages for n entries without raising the count.
  int reserve_entries(int n) { return pages_for(n) <= pages_allocated_ || get_block(pages_for(n) - 1); }

  T entry_or_default(int i) const { return (i >> page_shift_) < pages_allocated_ ? T(at(i)) : T(); }

  static T& lost_entry() {
    co_entry_lost();
    static T entry;
    return entry;
  }

  T* make_page(int ordinal, int entries) {
    T* fresh = static_cast<T*>(coPageHeap::allocate(page_bytes(entries), first_ordinal_ + ordinal));
    if (fresh == nullptr) return nullptr;
    for (int k = 0; k < entries; ++k) new (fresh + k) T();
    return fresh;
  }

  void free_pages_from(int first) {
    for (int b = first; b < pages_allocated_; ++b) {
      std::destroy_n(page(b), page_size_);
      coPageHeap::release(page(b), page_bytes(page_size_), first_ordinal_ + b);
    }
    pages_allocated_ = std::min(pages_allocated_, first);
    if (current_block_ >= first) {
      current_block_ = -1;
      current_page_ = nullptr;
    }
  }

  int move_to_page(int shift) {
    T* fresh = make_page(0, 1 << shift);
    if (fresh == nullptr) return 0;
    for (int k = 0; k < count_; ++k) fresh[k] = std::move(at(k));
    free_pages_from(0);
    pages_.restart();
    pages_.set(pages_allocated_++, fresh);
    page_shift_ = shift;
    page_size_ = 1 << shift;
    return 1;
  }

  int pages_allocated_ = 0;
  int count_ = 0;
  int page_size_;
  int page_shift_;
  utAnycoPageArrINTERNALcoDynArr pages_;
  int first_ordinal_ = 0;
  int current_block_ = -1;
  T* current_page_ = nullptr;
};

#include "platform/containers/page_arr_iterator.h"
