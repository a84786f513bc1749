#pragma once

#include <cstddef>
#include <string>

struct SummaryOptions {
  std::size_t largest_size = 4'000'000;  ///< sizes above it are left out
  int rounds = 0;           ///< repetitions of each measure; 0: more of the small sizes than of the large
  double patience = 3.0;    ///< seconds after which a measure takes part in no further round of a size
  std::string only;         ///< measures whose name holds one of these texts (commas between), and their yardsticks; empty: all
  std::string inputs;       ///< growth inputs whose name holds one of these texts (commas between); empty: all
  std::string parts;        ///< of "times", "memory" and "growth" those that are named (commas between); empty: all
};

/// Runs every measure at every size, ordered and shuffled in turn, round after round, so that a disturbance hits an
/// operation, its yardstick and its peers alike, and prints the tables of times, of peers, of memory, of growth and of goals as Markdown.
/// @return the number of goals missed
int run_summary(const SummaryOptions& options);
