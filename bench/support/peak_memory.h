#pragma once

#include <cstdint>

/// Bytes of memory that this process has in use, and had at most since it started or since `reset_peak_memory`. 0 where
/// the system does not tell.
std::int64_t resident_bytes();
std::int64_t peak_resident_bytes();

/// Lets the peak start anew from what is in use, where the system allows it; elsewhere the peak of the whole process
/// stays, so measure in a process of its own.
void reset_peak_memory();
