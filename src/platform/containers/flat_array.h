#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "platform/containers/page_heap.h"

/// Zeroed array of fixed length for the scratch tables of one operation. A long one lies in memory that the system can back with
/// large pages, since such tables are read at random. An entry of zero bytes must be a default value of its type.
template <class T>
class coFlatArray {
 public:
  coFlatArray() = default;
  explicit coFlatArray(std::size_t n) : data_(static_cast<T*>(coPageHeap::allocate_zeroed(n * sizeof(T)))), size_(data_ == nullptr ? 0 : n) {}
  coFlatArray(const coFlatArray&) = delete;
  coFlatArray& operator=(const coFlatArray&) = delete;
  ~coFlatArray() {
    std::destroy_n(data_, size_);
    coPageHeap::release_zeroed(data_, size_ * sizeof(T));
  }

  void swap(coFlatArray& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
  }

  /// 0 also when there was no memory.
  std::size_t size() const { return size_; }
  T& operator[](std::size_t i) { return data_[i]; }
  const T& operator[](std::size_t i) const { return data_[i]; }
  T* begin() { return data_; }
  T* end() { return data_ + size_; }
  const T* begin() const { return data_; }
  const T* end() const { return data_ + size_; }

 private:
  T* data_ = nullptr;
  std::size_t size_ = 0;
};
