#pragma once

#include <filesystem>
#include <optional>

/// Memory of reading, merging, and boundary detection, in bytes a facet above what the process had before.
struct MemoryUse {
  double after_reading = 0.0;  ///< peak while reading
  double while_merging = 0.0;  ///< peak while merging, above what was in use before it
  double file_reading = 0.0;   ///< the worst of all formats: peak while reading the merged mesh, over what it takes afterwards
  double boundary_of_soup = 0.0;  ///< peak while detecting the boundary of the unmerged mesh, above what was in use before
};

/// Measures in processes of their own, which are this program started with `--memory-probe FILE TOL`, with
/// `--boundary-probe FILE`, and for each format with `--reading-probe FILE`. Nothing where the system does not tell.
std::optional<MemoryUse> measure_memory(const std::filesystem::path& stl_file, double tol);

/// What these processes do: the first prints two numbers, the others one.
int run_memory_probe(const char* stl_file, const char* tol);
int run_boundary_probe(const char* stl_file);
int run_reading_probe(const char* file);
