#pragma once

#include <cstddef>
#include <string>

struct SummaryOptions {
  std::size_t largest_size = 4'000'000;  ///< sizes above it are left out
  int rounds = 0;                        ///< repetitions of each measure; 0: more of the small sizes than of the large
  std::string only;                      ///< measures whose name holds one of these texts (commas between), and their yardsticks; empty: all
};

/// Runs every measure at every size, ordered and shuffled in turn, round after round, so that a disturbance hits an
/// operation and its yardstick alike, and prints the tables of times, of memory and of goals as Markdown.
/// @return the number of goals missed
int run_summary(const SummaryOptions& options);
