#pragma once

#include <chrono>

/// Fixes the allocator's behaviour, which otherwise depends on what was freed before. Call once, first thing.
void steady_allocator();

/// Gives the memory that is free in the allocator back to the system, so that every measure pays for its memory as a
/// new process would.
void release_free_memory();

/// Seconds that `work` takes, starting without free memory in the allocator.
template <class Work>
double seconds_of(Work&& work) {
  release_free_memory();
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}
