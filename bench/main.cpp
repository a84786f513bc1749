// mendex_bench: times the library beside plain loops that do the same work.
//
//   mendex_bench [--benchmark_...]            every measure through Google Benchmark (its options choose and format)
//   mendex_bench --summary [--max-triangles=N] [--rounds=K] [--patience=SECONDS] [--only=TEXT,...] [--parts=times,memory,growth]
//                [--inputs=TEXT,...] [--strict]
//                                             the tables of docs/performance.md; with --strict ends with 1 when a goal
//                                             is missed
//   mendex_bench --write-models FOLDER N      an ordered and a shuffled binary STL file of N triangles
//   mendex_bench --boundary-probe FILE        reads one file, detects its boundary unmerged and prints its peak memory
//   mendex_bench --reading-probe FILE         reads one file of any format and prints its peak memory
//   mendex_bench --memory-probe FILE TOL      reads and merges one file and prints its peak memory
//   mendex_bench --program-probe PROGRAM ...  runs a program and prints its processor time and its peak memory
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <sstream>
#include <string_view>

#include "measure.h"
#include "memory_probe.h"
#include "progress/output.h"
#include "summary.h"
#include "support/child.h"
#include "support/files.h"
#include "support/timing.h"

namespace {

// The model in use: neighbours in the list of benchmarks share it, and only one is in memory.
const Model& current_model(std::size_t facets, FacetOrder order) {
  static ScratchFolder folder;
  static std::unique_ptr<Model> model;
  if (model == nullptr || model->facets() != facets || model->order() != order) {
    model.reset();
    model = std::make_unique<Model>(facets, order, folder.path());
  }
  return *model;
}

void run_benchmark(benchmark::State& state, const Measure& measure, FacetOrder order) {
  const auto facets = static_cast<std::size_t>(state.range(0));
  try {
    const Model& model = current_model(facets, order);
    for ([[maybe_unused]] auto unused : state) state.SetIterationTime(measure.run(model).seconds);
  } catch (const std::exception& problem) {
    state.SkipWithError(problem.what());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

int run_google_benchmark(int argc, char** argv) {
  const std::vector<Measure> measures = all_measures();
  for (const std::size_t facets : model_sizes) {
    for (const FacetOrder order : {FacetOrder::ordered, FacetOrder::shuffled}) {
      for (const Measure& measure : measures) {
        const std::string name = measure.name + "/" + name_of(order);
        benchmark::RegisterBenchmark(name.c_str(), run_benchmark, measure, order)
            ->Arg(static_cast<std::int64_t>(facets))
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(facets <= 100'000 ? 10 : 3);
      }
    }
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

// The rest of an argument that starts with `name`; null when it does not.
const char* value_of(std::string_view argument, std::string_view name) {
  return argument.substr(0, name.size()) == name ? argument.data() + name.size() : nullptr;
}

int summary(int argc, char** argv) {
  SummaryOptions options;
  bool strict = false;
  for (int k = 2; k < argc; ++k) {
    if (const char* size = value_of(argv[k], "--max-triangles=")) {
      options.largest_size = std::strtoull(size, nullptr, 10);
    } else if (const char* rounds = value_of(argv[k], "--rounds=")) {
      options.rounds = std::atoi(rounds);
    } else if (const char* patience = value_of(argv[k], "--patience=")) {
      options.patience = std::strtod(patience, nullptr);
    } else if (const char* inputs = value_of(argv[k], "--inputs=")) {
      options.inputs = inputs;
    } else if (const char* parts = value_of(argv[k], "--parts=")) {
      options.parts = parts;
    } else if (const char* only = value_of(argv[k], "--only=")) {
      options.only = only;
    } else if (std::string_view(argv[k]) == "--strict") {
      strict = true;
    } else {
      std::fprintf(stderr, "unknown argument %s\n", argv[k]);
      return 2;
    }
  }
  return run_summary(options) > 0 && strict ? 1 : 0;
}

int write_models(const char* folder, const char* facets) {
  for (const FacetOrder order : {FacetOrder::ordered, FacetOrder::shuffled}) {
    const Model model(std::strtoull(facets, nullptr, 10), order, folder);
    std::filesystem::rename(model.binary_file(),
                            std::filesystem::path(folder) / (std::string(name_of(order)) + ".stl"));
  }
  return 0;
}

int run(int argc, char** argv) {
  const std::string_view mode = argc > 1 ? argv[1] : "";
  if (mode == "--summary") return summary(argc, argv);
  if (mode == "--write-models" && argc == 4) return write_models(argv[2], argv[3]);
  if (mode == "--boundary-probe" && argc == 3) return run_boundary_probe(argv[2]);
  if (mode == "--reading-probe" && argc == 3) return run_reading_probe(argv[2]);
  if (mode == "--memory-probe" && argc == 4) return run_memory_probe(argv[2], argv[3]);
  if (mode == "--program-probe" && argc > 2) return run_program_probe(argv + 2);
  return run_google_benchmark(argc, argv);
}

}  // namespace

std::vector<Measure> all_measures() {
  std::vector<Measure> list;
  add_stl_measures(list);
  add_formats_measures(list);
  add_merge_measures(list);
  add_topology_measures(list);
  add_cycles_measures(list);
  add_stitch_measures(list);
  add_cap_measures(list);
  add_fill_measures(list);
  add_isect_measures(list);
  add_shapes_measures(list);
  add_sick_measures(list);
  add_exchange_measures(list);
  add_slice_measures(list);
  add_surface_measures(list);
  add_undo_measures(list);
  add_program_measures(list);
  add_peer_measures(list);
  return list;
}

bool is_asked_for(const std::string& name, const std::string& texts) {
  std::istringstream stream(texts);
  bool has_text = false;
  for (std::string text; std::getline(stream, text, ',');) {
    has_text = true;
    if (name.find(text) != std::string::npos) return true;
  }
  return !has_text;
}

int main(int argc, char** argv) {
  steady_allocator();
  std::ostream nowhere(nullptr);
  tr_set_output(&nowhere);
  int code = 1;
  try {
    code = run(argc, argv);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "mendex_bench: %s\n", problem.what());
  }
  tr_set_output(nullptr);
  return code;
}
