#pragma once

#include "platform/utilities/export.h"

/// Open while the library works on an operation that ends as a whole where memory runs out.
///
/// A container without memory drops the entry that it was to take. Outside any scope that is all that happens. Inside one it throws
/// std::bad_alloc instead, which whoever opened the outermost scope catches: an operation never goes on with part of its data.
class MENDEX_EXPORT coMemoryScope {
 public:
  coMemoryScope() { ++depth_; }
  coMemoryScope(const coMemoryScope&) = delete;
  coMemoryScope& operator=(const coMemoryScope&) = delete;
  ~coMemoryScope() { --depth_; }

  static bool is_open() { return depth_ > 0; }

 private:
  static int depth_;
};

/// To be called by a container that is about to drop an entry for want of memory: throws std::bad_alloc while a scope is open.
MENDEX_EXPORT void co_entry_lost();
