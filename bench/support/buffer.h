#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>

/// A plain array that is not touched before it is written, as flat arrays of a floor should be.
template <class T>
class Buffer {
 public:
  static_assert(std::is_trivially_default_constructible_v<T> && std::is_trivially_copyable_v<T>);

  Buffer() = default;
  explicit Buffer(std::size_t size) : data_(new T[size]), size_(size) {}

  std::size_t size() const { return size_; }
  T* data() { return data_.get(); }
  const T* data() const { return data_.get(); }
  T& operator[](std::size_t i) { return data_[i]; }
  const T& operator[](std::size_t i) const { return data_[i]; }
  void swap(Buffer& other) noexcept {
    data_.swap(other.data_);
    std::swap(size_, other.size_);
  }

 private:
  std::unique_ptr<T[]> data_;
  std::size_t size_ = 0;
};
