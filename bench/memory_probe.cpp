#include "memory_probe.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "formats/tri_read.h"
#include "mesh/tri_block.h"
#include "support/check.h"
#include "support/files.h"
#include "support/peak_memory.h"

int run_memory_probe(const char* stl_file, const char* tol) {
  trTriBlock block;
  reset_peak_memory();
  const std::int64_t before = resident_bytes();
  {
    trTriRead reader(&block, open_file(stl_file, "rb").release(), 0, 0);
    require(reader.read_stl(1, 0) == 1, "read_stl failed");
  }
  const std::int64_t read_peak = peak_resident_bytes();
  const std::int64_t loaded = resident_bytes();
  reset_peak_memory();
  require(block.unduplicate_nodes(std::atof(tol)) == 1, "unduplicate_nodes merged nothing");
  const std::int64_t merge_peak = peak_resident_bytes();
  const double facets = static_cast<double>(block.element_count() - 1);
  std::printf("%.17g %.17g\n", static_cast<double>(read_peak - before) / facets,
              static_cast<double>(merge_peak - loaded) / facets);
  return read_peak > 0 ? 0 : 1;
}

std::optional<MemoryUse> measure_memory(const std::filesystem::path& stl_file, double tol) {
  char tolerance[40];
  std::snprintf(tolerance, sizeof tolerance, "%.17g", tol);
  const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
  const std::string command = "'" + program + "' --memory-probe '" + stl_file.string() + "' " + tolerance;
  std::FILE* output = popen(command.c_str(), "r");
  if (output == nullptr) return std::nullopt;
  MemoryUse use;
  const int got = std::fscanf(output, "%lf %lf", &use.after_reading, &use.while_merging);
  if (pclose(output) != 0 || got != 2) return std::nullopt;
  return use;
}
