#include "support/timing.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

void steady_allocator() {
#if defined(__GLIBC__)
  // Naming the default switches its automatic growth off: a large block is always new memory, whatever ran before.
  mallopt(M_MMAP_THRESHOLD, 128 * 1024);
#endif
}

void release_free_memory() {
#if defined(__GLIBC__)
  malloc_trim(0);
#endif
}
