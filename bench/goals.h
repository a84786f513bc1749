#pragma once

#include <string>
#include <vector>

#include "memory_probe.h"
#include "results.h"

constexpr FacetOrder orders[] = {FacetOrder::ordered, FacetOrder::shuffled};

struct MemoryLine {
  std::size_t facets = 0;
  FacetOrder order = FacetOrder::ordered;
  const char* tolerance = "";
  MemoryUse use;
};

/// The facts of one run that goals are judged by.
struct RunFacts {
  Results results;
  std::vector<std::size_t> sizes;
  std::size_t judged_size = 0;  ///< facets at which ratios are judged: 10^6, or the largest below that was measured
  double ascii_bytes = 0.0;     ///< of the ASCII file of the judged size; 0 when it was not measured
  std::vector<MemoryLine> memory;
};

struct GoalLine {
  std::string text;
  double limit = 0.0;
  bool at_least = false;  ///< the limit is a minimum
  double value = 0.0;     ///< not a number where it was not measured
  std::vector<std::string> measures = {};  ///< whose times it compares

  bool met() const { return at_least ? value >= limit : value <= limit; }
};

/// The size from which growth is counted: below it fixed costs and caches rule.
constexpr std::size_t growth_start = 100'000;
constexpr double growth_limit = 1.15;

std::vector<GoalLine> judge_goals(const RunFacts& facts);

/// Of lines with one limit the worst, and every other that misses it, the worst first.
std::vector<GoalLine> worst_and_missed(std::vector<GoalLine> lines);
