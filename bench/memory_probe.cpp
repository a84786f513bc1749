#include "memory_probe.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "boundaries/cycle_array.h"
#include "control/control.h"
#include "formats/tri_read.h"
#include "mesh/tri_block.h"
#include "support/check.h"
#include "support/child.h"
#include "support/files.h"
#include "support/peak_memory.h"

namespace {

void read_block(trTriBlock& block, const char* stl_file) {
  trTriRead reader(&block, open_file(stl_file, "rb").release(), 0, 0);
  require(reader.read_stl(1, 0) == 1, "read_stl failed");
}

// This program, started for one of the probes.
std::string probe(const std::string& mode, const std::filesystem::path& file) {
  return quoted(this_program()) + " " + mode + " " + quoted(file);
}

// The worst over the formats, which are written beside the model.
std::optional<double> measure_reading(const std::filesystem::path& stl_file, double tol) {
  double worst = 0.0;
  for (const char* extension : {".mnx", ".mes", ".tri", ".kvx"}) {
    std::filesystem::path file = stl_file;
    file.replace_extension(extension);
    {
      trControl control;
      control.action_read(utString(stl_file.string().c_str()));
      control.action_undup(tol);
      control.action_write(utString(file.string().c_str()));
    }
    const std::vector<double> peak = numbers_of(probe("--reading-probe", file));
    std::filesystem::remove(file);
    if (peak.size() != 1) return std::nullopt;
    worst = std::max(worst, peak[0]);
  }
  return worst;
}

}  // namespace

int run_boundary_probe(const char* stl_file) {
  trTriBlock block;
  read_block(block, stl_file);
  const std::int64_t loaded = resident_bytes();
  reset_peak_memory();
  const trCycleArray set(&block);
  require(set.num_boundaries() == block.element_count() - 1, "boundaries of loose triangles");
  const std::int64_t peak = peak_resident_bytes();
  std::printf("%.17g\n", static_cast<double>(peak - loaded) / (block.element_count() - 1));
  return peak > 0 ? 0 : 1;
}

int run_reading_probe(const char* file) {
  trControl control;
  reset_peak_memory();
  const std::int64_t before = resident_bytes();
  require(control.action_read(utString(file)) != tr_unknown_file, "action_read found no file");
  const std::int64_t peak = peak_resident_bytes();
  require(control.triblock().element_count() > 1, "action_read read nothing");
  std::printf("%.17g\n", static_cast<double>(peak - before) / static_cast<double>(resident_bytes() - before));
  return peak > 0 ? 0 : 1;
}

int run_memory_probe(const char* stl_file, const char* tol) {
  trTriBlock block;
  reset_peak_memory();
  const std::int64_t before = resident_bytes();
  read_block(block, stl_file);
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
  const std::vector<double> merging = numbers_of(probe("--memory-probe", stl_file) + " " + tolerance);
  const std::vector<double> boundary = numbers_of(probe("--boundary-probe", stl_file));
  const std::optional<double> reading = measure_reading(stl_file, tol);
  if (merging.size() != 2 || boundary.size() != 1 || !reading) return std::nullopt;
  return MemoryUse{merging[0], merging[1], *reading, boundary[0]};
}
