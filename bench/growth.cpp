#include "growth.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "control_actions.h"
#include "formats/tri_write.h"
#include "growth_inputs.h"
#include "measure.h"
#include "support/check.h"
#include "support/files.h"

namespace {

// Actions that would take longer at a size, going by the last one, are left out there.
constexpr double patience_seconds = 30.0;
// An action runs again at once, at least twice unless it is long, and its least time counts.
constexpr double too_long_to_repeat = 8.0;
constexpr double seconds_for_repeats = 1.0;
constexpr int most_runs = 5;
// Sizes of an input are minutes apart, in which a machine may turn slower. What seems to grow too fast runs again so often at all sizes.
constexpr int more_looks = 2;
// Times below it are those of the clock and of calls, and say nothing of growth.
constexpr double least_seconds = 1e-2;

constexpr const char* undone = ", undone";
constexpr const char* redone = ", redone";

// The first size, below the start of growth, is there to foresee the time at the next.
std::vector<std::size_t> sizes_of(const GrowthInput& input) {
  if (input.is_small) return {10'000, growth_start, 300'000, 1'000'000};
  return {std::begin(model_sizes), std::end(model_sizes)};
}

struct Counts {
  int nodes;
  int elements;
  bool operator==(const Counts& other) const { return nodes == other.nodes && elements == other.elements; }
};

Counts counts_of(const trTriBlock& block) { return {block.valid_nodes(), block.valid_elements()}; }

Cost cost_of_edit(Subject& subject, const ControlAction& action) {
  return cost_of([&] {
    if (action.records == ControlAction::Records::one) subject.control.start_undo(utString(action.name));
    action.run(subject);
    if (action.records == ControlAction::Records::one) subject.control.finish_undo(1);
  });
}

}  // namespace

void Growth::run() {
  for (const GrowthInput& input : growth_inputs()) {
    if (!is_asked_for(input.name, options_.inputs)) continue;
    std::set<std::string> chosen;
    for (int look = 0; look == 0 || (look <= more_looks && !chosen.empty()); ++look) {
      for (const std::size_t facets : sizes_of(input)) {
        if (facets <= options_.largest_size && (look == 0 || facets >= growth_start)) run_size(input, facets, chosen);
      }
      chosen = beyond_limit(input);
    }
  }
}

std::set<std::string> Growth::beyond_limit(const GrowthInput& input) const {
  std::set<std::string> found;
  for (const ControlAction& action : control_actions()) {
    for (const char* ending : {"", undone, redone}) {
      const Key key{std::string(action.name) + ending, input.name};
      if (times_.count(key) != 0 && exponent(key) > options_.limit) found.insert(action.name);
    }
  }
  return found;
}

void Growth::run_size(const GrowthInput& input, std::size_t facets, const std::set<std::string>& chosen) {
  GrowthScale scale;
  {
    const auto block = input.make(facets, folder_, scale);
    trTriWrite writer(block.get(), open_file(file(), "wb").release(), 1.0);
    require(writer.write_native(0) == 1, "write_native failed");
  }
  std::fprintf(stderr, "growth, %s, %zu triangles\n", input.name, facets);
  for (const ControlAction& action : control_actions()) {
    if (!is_asked_for(action.name, options_.only) || !is_asked_for(input.name, action.inputs)) continue;
    if (!chosen.empty() && chosen.count(action.name) == 0) continue;
    if (!is_within_patience({action.name, input.name}, facets)) continue;
    try {
      repeat_action(action, input, facets, scale);
    } catch (const std::exception& problem) {
      const std::string text = std::string(action.name) + ", " + input.name + " at " + std::to_string(facets) + " triangles, " + problem.what();
      std::fprintf(stderr, "%s\n", text.c_str());
      failed_.push_back({text, 0.0, false, not_measured, {}});
    }
  }
}

void Growth::repeat_action(const ControlAction& action, const GrowthInput& input, std::size_t facets, const GrowthScale& scale) {
  double taken = 0.0;
  int runs = 0;
  do {
    taken += run_action(action, input, facets, scale);
    ++runs;
  } while (facets >= growth_start && runs < most_runs && taken <= (runs == 1 ? too_long_to_repeat : seconds_for_repeats));
}

double Growth::run_action(const ControlAction& action, const GrowthInput& input, std::size_t facets, const GrowthScale& scale) {
  Subject subject;
  subject.file = file();
  subject.output = folder_ / "growth_output";
  subject.scale = scale;
  trControl& control = subject.control;
  require(control.action_read(utString(file().string().c_str())) == tr_native_file, "a growth input cannot be read");
  if (action.prepare != nullptr) action.prepare(subject);
  const Counts before = counts_of(control.triblock());
  const Key key{action.name, input.name};
  warm_memory(1.25 * bytes_a_facet_[key] * static_cast<double>(facets));
  const auto [seconds, bytes] = cost_of_edit(subject, action);
  bytes_a_facet_[key] = std::fmax(bytes_a_facet_[key], bytes / static_cast<double>(facets));
  add(key, facets, seconds);
  if (action.records == ControlAction::Records::none || control.undo_hist().current() < 0) return seconds;
  const Counts after = counts_of(control.triblock());
  add({std::string(action.name) + undone, input.name}, facets, cost_of([&] { control.action_undo(INT_MAX); }).seconds);
  require(counts_of(control.triblock()) == before, std::string(action.name) + " taken back on " + input.name);
  add({std::string(action.name) + redone, input.name}, facets, cost_of([&] { control.action_redo(INT_MAX); }).seconds);
  require(counts_of(control.triblock()) == after, std::string(action.name) + " done again on " + input.name);
  return seconds;
}

bool Growth::is_within_patience(const Key& key, std::size_t facets) const {
  const auto found = times_.find(key);
  if (found == times_.end()) return true;
  const auto& [size, seconds] = *found->second.rbegin();
  const double steps = static_cast<double>(facets) / static_cast<double>(size);
  const double slope = std::fmax(1.2, exponent(key));
  return seconds * std::pow(steps, slope) <= patience_seconds;
}

void Growth::add(const Key& key, std::size_t facets, double seconds) {
  const auto [place, is_new] = times_[key].try_emplace(facets, seconds);
  if (!is_new) place->second = std::min(place->second, seconds);
}

double Growth::exponent(const Key& key) const {
  const Times& times = times_.at(key);
  if (times.rbegin()->second < least_seconds) return not_measured;
  std::vector<std::pair<double, double>> points;
  for (const auto& [size, seconds] : times) {
    if (size >= growth_start) points.emplace_back(static_cast<double>(size), seconds);
  }
  return fitted_growth(points);
}

// Time and exponent; the size where it is not the largest of the input.
std::string Growth::cell(const Key& key) const {
  const auto found = times_.find(key);
  if (found == times_.end()) return "";
  const auto& [size, seconds] = *found->second.rbegin();
  if (seconds < least_seconds) return "< 10 ms";
  char text[80];
  const double value = exponent(key);
  std::snprintf(text, sizeof text, std::isnan(value) ? "%.0f ns" : "%.0f ns, %.2f", seconds * 1e9 / static_cast<double>(size), value);
  std::size_t largest = 0;
  for (const auto& [other, times] : times_) {
    if (other.second == key.second) largest = std::max(largest, times.rbegin()->first);
  }
  return size == largest ? text : std::string(text) + " to " + std::to_string(size);
}

std::string Growth::worst_cell(const std::string& ending, const std::string& input) const {
  double worst = not_measured;
  std::string action;
  for (const auto& [key, unused] : times_) {
    const std::string& name = key.first;
    if (key.second != input || name.size() < ending.size() || name.substr(name.size() - ending.size()) != ending) continue;
    const double value = exponent(key);
    if (std::isnan(value) || worst >= value) continue;
    worst = value;
    action = name.substr(0, name.size() - ending.size());
  }
  return action.empty() ? "" : action + ": " + cell({action + ending, input});
}

void Growth::print() const {
  std::printf("\n### Growth\nNanoseconds a triangle at the largest size, and the growth exponent.\n\n| action |");
  for (const GrowthInput& input : growth_inputs()) std::printf(" %s |", input.name);
  std::printf("\n|---|");
  for (std::size_t k = 0; k < growth_inputs().size(); ++k) std::printf("--:|");
  for (const ControlAction& action : control_actions()) {
    if (!is_asked_for(action.name, options_.only)) continue;
    std::printf("\n| %s |", action.name);
    for (const GrowthInput& input : growth_inputs()) std::printf(" %s |", cell({action.name, input.name}).c_str());
  }
  for (const char* ending : {undone, redone}) {
    std::printf("\n| the worst%s |", ending);
    for (const GrowthInput& input : growth_inputs()) std::printf(" %s |", worst_cell(ending, input.name).c_str());
  }
  std::printf("\n");
}

std::vector<GoalLine> Growth::judge(double limit) const {
  std::vector<GoalLine> lines;
  for (const auto& [key, unused] : times_) {
    const double value = exponent(key);
    if (!std::isnan(value)) lines.push_back({"growth exponent, " + key.first + ", " + key.second, limit, false, value});
  }
  lines = worst_and_missed(std::move(lines));
  lines.insert(lines.begin(), failed_.begin(), failed_.end());
  return lines;
}
