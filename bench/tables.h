#pragma once

#include <vector>

#include "goals.h"
#include "measure.h"

/// The tables of docs/performance.md, as Markdown on standard output. Those without lines are left out.
void print_times(const RunFacts& facts, const std::vector<Measure>& measures);
void print_peers(const RunFacts& facts, const std::vector<Measure>& measures);
void print_memory(const std::vector<MemoryLine>& lines);
/// Goals whose measures were left out have no value and are not listed. Returns how many were missed.
int print_goals(const std::vector<GoalLine>& goals, std::size_t judged_size);
