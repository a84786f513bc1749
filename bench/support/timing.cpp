#include "support/timing.h"

#include <sys/mman.h>
#include <time.h>

#include <algorithm>
#include <cstddef>

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

void warm_memory(double bytes) {
  constexpr std::size_t page = 4096, most = std::size_t{4} << 30;
  const std::size_t size = std::min(static_cast<std::size_t>(bytes), most) / page * page;
  if (size == 0) return;
  void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return;
  madvise(memory, size, MADV_HUGEPAGE);
  for (std::size_t at = 0; at < size; at += page) static_cast<volatile char*>(memory)[at] = 1;
  munmap(memory, size);
}

double processor_seconds() {
  timespec now = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}
