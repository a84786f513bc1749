#pragma once

#include <filesystem>
#include <optional>

/// Memory of one run of reading and merging, in bytes a facet above what the process had before.
struct MemoryUse {
  double after_reading = 0.0;  ///< peak while reading
  double while_merging = 0.0;  ///< peak while merging, above what was in use before it
};

/// Measures in a process of its own, which is this program started with `--memory-probe FILE TOL`. Nothing where the
/// system does not tell.
std::optional<MemoryUse> measure_memory(const std::filesystem::path& stl_file, double tol);

/// What that process does: prints the two numbers.
int run_memory_probe(const char* stl_file, const char* tol);
