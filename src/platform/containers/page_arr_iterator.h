#pragma once

#include <algorithm>

#include "platform/containers/page_arr.h"

/// Walks a paged array page by page, without a shift or mask per entry: `while (++it) use(it());`.
///
/// Not started and finished are one state: stepping a finished iterator starts again.
template <class T>
class coPageArrcoIterator {
 public:
  explicit coPageArrcoIterator(const coPageArr<T>& array) : array_(&array) {}

  /// Moves to the first entry; 0 when the array is empty.
  int do_first() {
    remaining_ = array_->count();
    if (remaining_ == 0) return 0;
    cursor_ = 0;
    enter_page();
    return 1;
  }

  /// Steps to the next entry, or to the first when not started; returns whether there is one.
  int operator++() {
    if (remaining_ == 0) return do_first();
    return ++slot_ == in_page_ ? next_block() : 1;
  }

  /// Leaves the current page for the next; returns whether entries remain.
  int next_block() {
    remaining_ -= in_page_;
    if (remaining_ <= 0) {
      remaining_ = 0;
      return 0;
    }
    ++cursor_;
    enter_page();
    return 1;
  }

  T& operator()() const { return page_[slot_]; }

 private:
  void enter_page() {
    page_ = array_->page(cursor_);
    slot_ = 0;
    in_page_ = std::min(array_->page_size(), remaining_);
  }

  const coPageArr<T>* array_;
  int cursor_ = 0;
  int slot_ = 0;
  T* page_ = nullptr;
  int remaining_ = 0;  // entries not yet passed, those of the current page included; 0: not started or finished
  int in_page_ = 0;
};
