#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "goals.h"

struct ControlAction;
struct GrowthInput;
struct GrowthScale;

struct GrowthOptions {
  std::size_t largest_size = 0;
  std::string only;    ///< actions whose name holds one of these texts; empty: all
  std::string inputs;  ///< inputs whose name holds one of these texts; empty: all
  double limit = 0.0;  ///< what grows faster is measured again
};

/// How the time of each action of the controller grows with the size of each growth input: the action on a mesh just read, then taking
/// it back and doing it again, which must give as many nodes and elements as before.
class Growth {
 public:
  Growth(const GrowthOptions& options, const std::filesystem::path& folder) : options_(options), folder_(folder) {}

  void run();
  /// Nanoseconds a triangle at the largest size, and the exponent, by action and input.
  void print() const;
  /// The worst exponent, and every other above the limit.
  std::vector<GoalLine> judge(double limit) const;

 private:
  using Key = std::pair<std::string, std::string>;  // action, input
  using Times = std::map<std::size_t, double>;      // by size, least seconds

  /// Of the actions named, or of all when none is.
  void run_size(const GrowthInput& input, std::size_t facets, const std::set<std::string>& chosen);
  /// Those that grow beyond the limit on an input, or are taken back or done again so.
  std::set<std::string> beyond_limit(const GrowthInput& input) const;
  void repeat_action(const ControlAction& action, const GrowthInput& input, std::size_t facets, const GrowthScale& scale);
  /// The seconds that the action took.
  double run_action(const ControlAction& action, const GrowthInput& input, std::size_t facets, const GrowthScale& scale);
  bool is_within_patience(const Key& key, std::size_t facets) const;
  void add(const Key& key, std::size_t facets, double seconds);
  double exponent(const Key& key) const;
  std::string cell(const Key& key) const;
  std::string worst_cell(const std::string& ending, const std::string& input) const;
  std::filesystem::path file() const { return folder_ / "growth_input.mnx"; }

  GrowthOptions options_;
  std::filesystem::path folder_;
  std::map<Key, Times> times_;
  std::map<Key, double> bytes_a_facet_;
  std::vector<GoalLine> failed_;
};
