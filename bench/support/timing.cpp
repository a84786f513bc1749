#include "support/timing.h"

#include <time.h>

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

double processor_seconds() {
  timespec now = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}
