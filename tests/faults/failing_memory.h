#pragma once

#include <cstddef>

/// Every allocation of this program by C++ code, and those of the library by malloc, calloc, realloc and mmap: counted, and refused on
/// demand.
class FailingMemory {
 public:
  enum class Mode { once, from_there_on };

  /// Refuses the k-th request from now on, counted from 1 (none for 0), or all from the k-th on, until `stop`.
  static void start(long k, Mode mode = Mode::once);
  /// No request is refused any more. Returns how many there were since `start`.
  static long stop();
  /// Bytes that are in use now.
  static long live_bytes();

  static bool is_refused();
  static void* taken(void* block);
  static void given_back(void* block);
  static void add_live(long bytes);
};
