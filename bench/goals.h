#pragma once

#include <optional>
#include <string>
#include <vector>

#include "memory_probe.h"
#include "results.h"

/// The facts of one run that goals are judged by.
struct RunFacts {
  Results results;
  std::size_t judged_size = 0;      ///< facets at which ratios are judged: 10^6, or the largest below that was measured
  std::size_t largest_size = 0;     ///< end of the growth exponent
  double ascii_bytes = 0.0;         ///< of the ASCII file of the judged size; 0 when it was not measured
  std::optional<MemoryUse> memory;  ///< the worst from `growth_start` facets up
};

struct GoalLine {
  std::string text;
  double limit = 0.0;
  bool at_least = false;  ///< the limit is a minimum
  double value = 0.0;     ///< not a number where it was not measured

  bool met() const { return at_least ? value >= limit : value <= limit; }
};

/// The size from which growth is counted: below it fixed costs and caches rule.
constexpr std::size_t growth_start = 100'000;

std::vector<GoalLine> judge_goals(const RunFacts& facts);
