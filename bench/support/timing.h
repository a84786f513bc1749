#pragma once

/// Fixes the allocator's behaviour, which otherwise depends on what was freed before. Call once, first thing.
void steady_allocator();

/// Gives the memory that is free in the allocator back to the system, so that every measure pays for its memory as a
/// new process would.
void release_free_memory();

/// Processor time of this process so far, in seconds. What is measured has one thread and its files in memory, so this
/// is the time it takes, less what a neighbour takes of the core.
double processor_seconds();

/// Seconds that `work` takes, starting without free memory in the allocator.
template <class Work>
double seconds_of(Work&& work) {
  release_free_memory();
  const double start = processor_seconds();
  work();
  return processor_seconds() - start;
}
