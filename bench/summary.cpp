#include "summary.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "goals.h"
#include "measure.h"
#include "support/blocks.h"
#include "support/files.h"

namespace {

// Whether a name holds one of several texts with commas between; every name does where there is none.
bool is_asked_for(const std::string& name, const std::string& texts) {
  std::istringstream stream(texts);
  bool has_text = false;
  for (std::string text; std::getline(stream, text, ',');) {
    has_text = true;
    if (name.find(text) != std::string::npos) return true;
  }
  return !has_text;
}

constexpr FacetOrder orders[] = {FacetOrder::ordered, FacetOrder::shuffled};
constexpr std::size_t largest_judged_size = 1'000'000;

struct MemoryLine {
  std::size_t facets = 0;
  FacetOrder order = FacetOrder::ordered;
  const char* tolerance = "";
  MemoryUse use;
};

std::vector<std::size_t> chosen_sizes(const SummaryOptions& options) {
  std::vector<std::size_t> sizes;
  for (const std::size_t size : model_sizes) {
    if (size <= options.largest_size) sizes.push_back(size);
  }
  return sizes;
}

// The measures that the options name, with the yardsticks that they need, in the order of a round.
std::vector<Measure> chosen_measures(const SummaryOptions& options) {
  const std::vector<Measure> all = all_measures();
  std::vector<std::string> wanted;
  for (const Measure& measure : all) {
    if (is_asked_for(measure.name, options.only)) wanted.push_back(measure.name);
  }
  for (std::size_t k = 0; k < wanted.size(); ++k) {
    for (const Measure& measure : all) {
      if (measure.name == wanted[k] && !measure.is_floor()) wanted.push_back(measure.yardstick);
    }
  }
  std::vector<Measure> chosen;
  for (const Measure& measure : all) {
    if (std::find(wanted.begin(), wanted.end(), measure.name) != wanted.end()) chosen.push_back(measure);
  }
  return chosen;
}

int rounds_at(std::size_t facets, const SummaryOptions& options) {
  if (options.rounds > 0) return options.rounds;
  if (facets <= 100'000) return 15;
  return facets <= largest_judged_size ? 5 : 3;
}

class Summary {
 public:
  explicit Summary(const SummaryOptions& options)
      : options_(options), sizes_(chosen_sizes(options)), measures_(chosen_measures(options)) {}

  int run() {
    if (measures_.empty()) throw std::runtime_error("no measure has '" + options_.only + "' in its name");
    if (sizes_.empty())
      throw std::runtime_error("the smallest model has " + std::to_string(model_sizes[0]) + " triangles");
    for (const std::size_t facets : sizes_) {
      measure_size(facets);
      facts_.largest_size = facets;
    }
    find_worst_memory();
    print_times();
    print_memory();
    return print_goals();
  }

 private:
  // The orders take turns in coming first: who comes first may find memory that the system must fetch from afar, and
  // leaves it ready for the other.
  void measure_size(std::size_t facets) {
    std::vector<std::unique_ptr<Model>> models;
    for (const FacetOrder order : orders) models.push_back(std::make_unique<Model>(facets, order, folder_.path()));
    const int rounds = rounds_at(facets, options_);
    for (int round = 0; round < rounds; ++round) {
      std::fprintf(stderr, "%zu triangles, round %d of %d\n", facets, round + 1, rounds);
      for (const Measure& measure : measures_) {
        for (const auto& model : models) {
          facts_.results.add(measure.name, facets, model->order(), measure.seconds(*model));
        }
      }
      std::swap(models[0], models[1]);
    }
    if (facets <= largest_judged_size) facts_.judged_size = facets;
    if (options_.only.empty()) {
      for (const auto& model : models) measure_memory_of(*model);
      if (facets == facts_.judged_size) {
        facts_.ascii_bytes = static_cast<double>(std::filesystem::file_size(models[0]->ascii_file()));
      }
    }
  }

  void measure_memory_of(const Model& model) {
    const std::pair<const char*, double> tolerances[] = {{"exact", exact_tolerance()},
                                                         {"0.1 edge", model.shortest_edge() * 0.1}};
    for (const auto& [name, tol] : tolerances) {
      if (const auto use = measure_memory(model.binary_file(), tol))
        memory_.push_back({model.facets(), model.order(), name, *use});
    }
  }

  void find_worst_memory() {
    for (const MemoryLine& line : memory_) {
      if (line.facets < growth_start) continue;
      if (!facts_.memory) facts_.memory = line.use;
      facts_.memory->after_reading = std::max(facts_.memory->after_reading, line.use.after_reading);
      facts_.memory->while_merging = std::max(facts_.memory->while_merging, line.use.while_merging);
      facts_.memory->file_reading = std::max(facts_.memory->file_reading, line.use.file_reading);
      facts_.memory->boundary_of_soup = std::max(facts_.memory->boundary_of_soup, line.use.boundary_of_soup);
    }
  }

  void print_times() const {
    std::printf("Nanoseconds a triangle (least of several interleaved runs)\n\n| measure | order |");
    for (const std::size_t facets : sizes_) std::printf(" %zu |", facets);
    std::printf(" growth | yardstick | ratio | ratio of medians |\n|---|---|");
    for (std::size_t k = 0; k < sizes_.size() + 4; ++k) std::printf("%s", k == sizes_.size() + 1 ? "---|" : "--:|");
    std::printf("\n");
    for (const Measure& measure : measures_) {
      for (const FacetOrder order : orders) print_time_row(measure, order);
    }
  }

  void print_time_row(const Measure& measure, FacetOrder order) const {
    const Results& results = facts_.results;
    std::printf("| %s | %s |", measure.name.c_str(), name_of(order));
    for (const std::size_t facets : sizes_) {
      std::printf(" %.1f |", results.seconds(measure.name, facets, order) * 1e9 / static_cast<double>(facets));
    }
    if (facts_.largest_size > growth_start) {
      std::printf(" %.2f |", results.growth(measure.name, growth_start, facts_.largest_size, order));
    } else {
      std::printf(" |");
    }
    if (measure.is_floor()) {
      std::printf(" | | |\n");
      return;
    }
    const std::size_t judged = facts_.judged_size;
    std::printf(" %s | %.2f | %.2f |\n", measure.yardstick.c_str(),
                results.ratio(measure.name, measure.yardstick, judged, order),
                results.median(measure.name, judged, order) / results.median(measure.yardstick, judged, order));
  }

  void print_memory() const {
    if (memory_.empty()) return;
    std::printf(
        "\nPeak bytes a triangle\n\n| triangles | order | tolerance | after reading | more while merging "
        "| more for the boundary, unmerged | reading a file / after it |\n|--:|---|---|--:|--:|--:|--:|\n");
    for (const MemoryLine& line : memory_) {
      std::printf("| %zu | %s | %s | %.1f | %.1f | %.1f | %.2f |\n", line.facets, name_of(line.order), line.tolerance,
                  line.use.after_reading, line.use.while_merging, line.use.boundary_of_soup, line.use.file_reading);
    }
  }

  // Goals whose measures were left out have no value and are not listed.
  int print_goals() const {
    int missed = 0;
    std::printf("\nGoals, judged at %zu triangles\n\n| goal | limit | measured | |\n|---|--:|--:|---|\n",
                facts_.judged_size);
    for (const GoalLine& goal : judge_goals(facts_)) {
      if (std::isnan(goal.value)) continue;
      std::printf("| %s | %s %.4g | %.3g | %s |\n", goal.text.c_str(), goal.at_least ? "at least" : "at most",
                  goal.limit, goal.value, goal.met() ? "met" : "MISSED");
      if (!goal.met()) ++missed;
    }
    return missed;
  }

  SummaryOptions options_;
  std::vector<std::size_t> sizes_;
  std::vector<Measure> measures_;
  ScratchFolder folder_;
  RunFacts facts_;
  std::vector<MemoryLine> memory_;
};

}  // namespace

int run_summary(const SummaryOptions& options) { return Summary(options).run(); }
