#pragma once

#include <utility>

/// Scoped owner of a buffer made by new[], for the time in which a dynamic array grows into it.
template <class T>
class coBufferGuard {
 public:
  explicit coBufferGuard(T* buffer) : buffer_(buffer) {}
  coBufferGuard(const coBufferGuard&) = delete;
  coBufferGuard& operator=(const coBufferGuard&) = delete;
  ~coBufferGuard() { delete[] buffer_; }

  T* get() const { return buffer_; }

  /// Hands the buffer out; the guard owns nothing afterwards.
  T* release() { return std::exchange(buffer_, nullptr); }

 private:
  T* buffer_;
};
