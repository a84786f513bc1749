#pragma once

#include <cstddef>

#include "platform/utilities/export.h"

/// The source of memory for the pages of paged arrays.
///
/// Pages of small arrays come from the general heap. Pages of large arrays (at least 16 KiB each, beyond the first 4 MiB of an
/// array) are cut from 2 MiB slabs aligned to 2 MiB, which the system can back with one large page: a first touch then costs one
/// fault for 2 MiB instead of 512. A slab holds pages of one size and goes back to the system when its last page is released.
/// Not guarded: the library is driven from one thread.
class MENDEX_EXPORT coPageHeap {
 public:
  /// Memory for page number `ordinal` of an array, aligned to 64 bytes and not initialised; null when there is none.
  static void* allocate(std::size_t bytes, int ordinal) noexcept;

  /// Gives back what `allocate` returned for the same size and ordinal. Null is ignored.
  static void release(void* page, std::size_t bytes, int ordinal) noexcept;

  /// A 2 MiB block of zeroed memory for pools that manage their own entries; null when there is none.
  /// @param large_page  whether the system is asked to back it with a large page at once
  static void* allocate_slab(bool large_page) noexcept;
  static void release_slab(void* slab) noexcept;

  /// Zeroed memory of any size, to be given back with the same size; null when there is none. Large blocks are backed by large pages.
  static void* allocate_zeroed(std::size_t bytes) noexcept;
  static void release_zeroed(void* block, std::size_t bytes) noexcept;

  static constexpr std::size_t slab_bytes = std::size_t{2} << 20;
  /// Up to this size an array takes plain memory, so that a small mesh does not occupy whole slabs.
  static constexpr std::size_t plain_bytes = std::size_t{4} << 20;
};
