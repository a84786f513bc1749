#pragma once

#include <cstddef>
#include <new>
#include <vector>

#include "platform/containers/page_heap.h"

/// Allocator whose long arrays lie in memory that the system can back with large pages, so that the first touch of each page of 4 KiB is no
/// fault of its own; short ones come from the general heap. Throws std::bad_alloc where there is no memory.
template <class T>
class coLargeAllocator {
 public:
  using value_type = T;

  coLargeAllocator() = default;
  template <class U>
  coLargeAllocator(const coLargeAllocator<U>&) {}

  T* allocate(std::size_t n) {
    const std::size_t bytes = n * sizeof(T);
    if (bytes < coPageHeap::plain_bytes) return static_cast<T*>(::operator new(bytes, std::align_val_t{alignof(T)}));
    void* const block = coPageHeap::allocate_zeroed(bytes);
    if (block == nullptr) throw std::bad_alloc();
    return static_cast<T*>(block);
  }
  void deallocate(T* block, std::size_t n) noexcept {
    const std::size_t bytes = n * sizeof(T);
    if (bytes < coPageHeap::plain_bytes) return ::operator delete(block, std::align_val_t{alignof(T)});
    coPageHeap::release_zeroed(block, bytes);
  }

  bool operator==(const coLargeAllocator&) const { return true; }
  bool operator!=(const coLargeAllocator&) const { return false; }
};

/// Vector for the working arrays of one operation on a large mesh.
template <class T>
using coLargeVector = std::vector<T, coLargeAllocator<T>>;
