#pragma once

// Asks the processor to fetch memory that will be needed soon; any address is allowed. The empty statement behind the hint keeps
// the compiler from taking a function that does nothing else for one without effect, and dropping the calls to it.

inline void co_prefetch_for_reading(const void* address) {
  __builtin_prefetch(address, 0);
  __asm__ volatile("");
}

inline void co_prefetch_for_writing(const void* address) {
  __builtin_prefetch(address, 1);
  __asm__ volatile("");
}
