#pragma once

#include "support/peak_memory.h"

/// What a run took.
struct Cost {
  double seconds = 0.0;  ///< processor time
  double bytes = 0.0;    ///< peak of resident memory above what was in use before; 0 where the system does not tell
};

/// Fixes the allocator's behaviour, which otherwise depends on what was freed before. Call once, first thing.
void steady_allocator();

/// Gives the memory that is free in the allocator back to the system, so that every measure pays for its memory as a
/// new process would.
void release_free_memory();

/// Has the system fetch as much memory and give it back, so that what runs next does not wait for the host of a virtual machine, which
/// takes unused memory away and is slow to return it.
void warm_memory(double bytes);

/// Processor time of this process so far, in seconds. What is measured has one thread and its files in memory, so this
/// is the time it takes, less what a neighbour takes of the core.
double processor_seconds();

/// What `work` takes, starting without free memory in the allocator.
template <class Work>
Cost cost_of(Work&& work) {
  release_free_memory();
  reset_peak_memory();
  const std::int64_t bytes_before = resident_bytes();
  const double start = processor_seconds();
  work();
  Cost cost;
  cost.seconds = processor_seconds() - start;
  cost.bytes = static_cast<double>(peak_resident_bytes() - bytes_before);
  return cost;
}
