#pragma once

#include <algorithm>
#include <cstdlib>
#include <utility>

/// Growable array of page pointers under every paged array. Allocates nothing before its first use.
///
/// The capacity it reports grows from `first` in whole increments; the storage behind it at least doubles, so that appending P
/// pages costs O(P).
class utAnycoPageArrINTERNALcoDynArr {
 public:
  constexpr utAnycoPageArrINTERNALcoDynArr(int first, int increment)
      : capacity_(std::max(first, 0)), increment_(std::max(increment, 1)) {}
  utAnycoPageArrINTERNALcoDynArr(const utAnycoPageArrINTERNALcoDynArr&) = delete;
  utAnycoPageArrINTERNALcoDynArr& operator=(const utAnycoPageArrINTERNALcoDynArr&) = delete;
  ~utAnycoPageArrINTERNALcoDynArr() { std::free(data_); }

  void* operator[](int page) const { return data_[page]; }
  int capacity() const { return capacity_; }

  void set(int page, void* address) { data_[page] = address; }

  /// Makes room for `n` page pointers; 0 when there is no memory.
  int reserve(int n) noexcept {
    if (n > capacity_) capacity_ += increment_ * ((n - capacity_ - 1) / increment_ + 1);
    if (n <= stored_) return 1;
    const int wanted = std::max({n, std::min(capacity_, n + 64), stored_ <= max_doubled ? 2 * stored_ : n});
    void* grown = std::realloc(data_, static_cast<std::size_t>(wanted) * sizeof(void*));
    if (grown == nullptr) return 0;
    data_ = static_cast<void**>(grown);
    stored_ = wanted;
    return 1;
  }

  /// Frees the storage and forgets the capacity.
  void clear() noexcept {
    std::free(data_);
    data_ = nullptr;
    stored_ = 0;
    capacity_ = 0;
  }

  /// As `clear` and then `reserve(1)`, but without giving the storage up, which has room for a pointer.
  void restart() noexcept { capacity_ = increment_; }

  /// Reallocates exactly `n` pointers when fewer than before are needed.
  void shrink(int n) noexcept {
    if (n <= 0) return clear();
    if (n >= stored_) return;
    if (void* smaller = std::realloc(data_, static_cast<std::size_t>(n) * sizeof(void*))) data_ = static_cast<void**>(smaller);
    stored_ = n;
    capacity_ = n;
  }

  void swap(utAnycoPageArrINTERNALcoDynArr& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(stored_, other.stored_);
    std::swap(capacity_, other.capacity_);
  }

 private:
  static constexpr int max_doubled = 1 << 29;
  void** data_ = nullptr;
  int stored_ = 0;    // pointers that data_ has room for
  int capacity_ = 0;  // what is reported: whole increments
  int increment_ = 0;
};
