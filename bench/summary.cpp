#include "summary.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

#include "goals.h"
#include "growth.h"
#include "measure.h"
#include "support/blocks.h"
#include "support/files.h"
#include "tables.h"

namespace {

constexpr std::size_t largest_judged_size = 1'000'000;
// What misses a goal may have met a machine that was not quiet: it runs again, so often, for so many rounds.
constexpr int more_looks = 2;
constexpr int rounds_of_a_look = 3;
constexpr double warm_bytes_a_facet = 600.0;  // what most measures take, preparing included

double seconds_on_the_clock() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::vector<std::size_t> chosen_sizes(const SummaryOptions& options) {
  std::vector<std::size_t> sizes;
  for (const std::size_t size : model_sizes) {
    if (size <= options.largest_size) sizes.push_back(size);
  }
  return sizes;
}

// The measures that the options name, with the yardsticks and the operations beside them that they need, in the order of a round.
std::vector<Measure> chosen_measures(const SummaryOptions& options) {
  const std::vector<Measure> all = all_measures();
  std::vector<std::string> wanted;
  for (const Measure& measure : all) {
    if (is_asked_for(measure.name, options.only)) wanted.push_back(measure.name);
  }
  for (std::size_t k = 0; k < wanted.size(); ++k) {
    for (const Measure& measure : all) {
      if (measure.name == wanted[k] && !measure.is_floor()) wanted.push_back(measure.is_peer() ? measure.peer_of : measure.yardstick);
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
  if (facets <= 100'000) return 9;
  return facets <= largest_judged_size ? 5 : 3;
}

class Summary {
 public:
  explicit Summary(const SummaryOptions& options)
      : options_(options),
        sizes_(chosen_sizes(options)),
        measures_(chosen_measures(options)),
        growth_({options.largest_size, options.only, options.inputs, growth_limit}, folder_.path()) {}

  int run() {
    if (sizes_.empty())
      throw std::runtime_error("the smallest model has " + std::to_string(model_sizes[0]) + " triangles");
    facts_.sizes = sizes_;
    for (const std::size_t facets : sizes_) {
      if (facets <= largest_judged_size) facts_.judged_size = facets;
    }
    for (const std::size_t facets : sizes_) measure_size(facets);
    if (has_part("times")) {
      print_times(facts_, measures_);
      print_peers(facts_, measures_);
    }
    print_memory(facts_.memory);
    std::vector<GoalLine> goals = judge_goals(facts_);
    goals.insert(goals.begin(), failed_.begin(), failed_.end());
    if (has_part("growth")) {
      growth_.run();
      growth_.print();
      for (GoalLine& line : growth_.judge(growth_limit)) goals.push_back(std::move(line));
    }
    return print_goals(goals, facts_.judged_size);
  }

 private:
  using Models = std::vector<std::unique_ptr<Model>>;

  bool has_part(const std::string& name) const { return is_asked_for(name, options_.parts); }

  // The orders take turns in coming first: who comes first may find memory that the system must fetch from afar, and
  // leaves it ready for the other.
  void measure_size(std::size_t facets) {
    if (!has_part("times") && !has_part("memory")) return;
    Models models;
    for (const FacetOrder order : orders) models.push_back(std::make_unique<Model>(facets, order, folder_.path()));
    const int rounds = has_part("times") ? rounds_at(facets, options_) : 0;
    std::map<std::string, double> spent;
    for (int round = 0; round < rounds; ++round) {
      std::fprintf(stderr, "%zu triangles, round %d of %d\n", facets, round + 1, rounds);
      const auto is_due = [&](const Measure& measure) {
        return spent[measure.name] <= options_.patience && !(measure.is_peer() && facets > largest_judged_size);
      };
      run_round(models, is_due, spent);
    }
    if (facets == facts_.judged_size) look_again(models);
    if (options_.only.empty() && has_part("memory")) {
      for (const auto& model : models) measure_memory_of(*model);
      if (facets == facts_.judged_size) {
        facts_.ascii_bytes = static_cast<double>(std::filesystem::file_size(models[0]->ascii_file()));
      }
    }
  }

  template <class IsChosen>
  void run_round(Models& models, IsChosen is_chosen, std::map<std::string, double>& spent) {
    for (const Measure& measure : measures_) {
      if (!is_chosen(measure)) continue;
      const double start = seconds_on_the_clock();
      for (const auto& model : models) run_measure(measure, *model);
      spent[measure.name] += seconds_on_the_clock() - start;
    }
    std::swap(models[0], models[1]);
  }

  // Both sides of a goal that is missed run again, and their least times count as ever.
  void look_again(Models& models) {
    std::map<std::string, double> spent;
    for (int look = 0; look < more_looks; ++look) {
      std::set<std::string> missed;
      for (const GoalLine& goal : judge_goals(facts_)) {
        if (!std::isnan(goal.value) && !goal.met()) missed.insert(goal.measures.begin(), goal.measures.end());
      }
      if (missed.empty()) return;
      std::fprintf(stderr, "once more what misses a goal: %zu measures\n", missed.size());
      for (int round = 0; round < rounds_of_a_look; ++round) {
        run_round(models, [&](const Measure& measure) { return missed.count(measure.name) != 0; }, spent);
      }
    }
  }

  // A measure that fails misses its goal, and the others go on.
  void run_measure(const Measure& measure, const Model& model) {
    warm_memory(warm_bytes_a_facet * static_cast<double>(model.facets()));
    try {
      facts_.results.add(measure.name, model.facets(), model.order(), measure.run(model));
    } catch (const std::exception& problem) {
      const std::string text = measure.name + " at " + std::to_string(model.facets()) + " triangles, " + problem.what();
      std::fprintf(stderr, "%s\n", text.c_str());
      failed_.push_back({text, 0.0, false, not_measured, {}});
    }
  }

  void measure_memory_of(const Model& model) {
    const std::pair<const char*, double> tolerances[] = {{"exact", exact_tolerance()},
                                                         {"0.1 edge", model.shortest_edge() * 0.1}};
    for (const auto& [name, tol] : tolerances) {
      if (const auto use = measure_memory(model.binary_file(), tol))
        facts_.memory.push_back({model.facets(), model.order(), name, *use});
    }
  }

  SummaryOptions options_;
  std::vector<std::size_t> sizes_;
  std::vector<Measure> measures_;
  ScratchFolder folder_;
  Growth growth_;
  RunFacts facts_;
  std::vector<GoalLine> failed_;
};

}  // namespace

int run_summary(const SummaryOptions& options) { return Summary(options).run(); }
