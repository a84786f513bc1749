#include "platform/containers/sort.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

// Random access over the pages of an array, for the standard algorithms.
class Cursor {
 public:
  using iterator_category = std::random_access_iterator_tag;
  using value_type = int;
  using difference_type = std::ptrdiff_t;
  using pointer = int*;
  using reference = int&;

  Cursor() = default;
  Cursor(intcoPageArr& array, difference_type index) : array_(&array), index_(index) {}

  int& operator*() const { return array_->at(static_cast<int>(index_)); }
  int& operator[](difference_type n) const { return *(*this + n); }
  Cursor& operator+=(difference_type n) {
    index_ += n;
    return *this;
  }
  Cursor& operator-=(difference_type n) { return *this += -n; }
  Cursor& operator++() { return *this += 1; }
  Cursor& operator--() { return *this += -1; }
  Cursor operator++(int) {
    const Cursor before = *this;
    ++*this;
    return before;
  }
  Cursor operator--(int) {
    const Cursor before = *this;
    --*this;
    return before;
  }
  friend Cursor operator+(Cursor c, difference_type n) { return c += n; }
  [[maybe_unused]] friend Cursor operator+(difference_type n, Cursor c) { return c += n; }
  friend Cursor operator-(Cursor c, difference_type n) { return c -= n; }
  friend difference_type operator-(const Cursor& a, const Cursor& b) { return a.index_ - b.index_; }
  friend bool operator==(const Cursor& a, const Cursor& b) { return a.index_ == b.index_; }
  friend bool operator!=(const Cursor& a, const Cursor& b) { return a.index_ != b.index_; }
  friend bool operator<(const Cursor& a, const Cursor& b) { return a.index_ < b.index_; }
  [[maybe_unused]] friend bool operator>(const Cursor& a, const Cursor& b) { return a.index_ > b.index_; }
  [[maybe_unused]] friend bool operator<=(const Cursor& a, const Cursor& b) { return a.index_ <= b.index_; }
  [[maybe_unused]] friend bool operator>=(const Cursor& a, const Cursor& b) { return a.index_ >= b.index_; }

 private:
  intcoPageArr* array_ = nullptr;
  difference_type index_ = 0;
};

}  // namespace

void co_sort(intcoPageArr& array) { std::sort(Cursor(array, 0), Cursor(array, array.count())); }
