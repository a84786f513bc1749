#pragma once

#include <cstdio>
#include <exception>
#include <string_view>
#include <vector>

#include "support/timing.h"

/// What an operation took, and numbers of its result by which mendex_bench sees whether it agrees.
struct Report {
  Cost cost;
  std::vector<double> facts;
};

/// Takes the name of an input file, and an output file or a number where it needs one; else null.
struct Operation {
  const char* name;
  Report (*run)(const char* input, const char* extra);
};

/// The program of a driver: `DRIVER OPERATION INPUT [EXTRA]` runs the operation once and prints seconds, bytes and the facts.
inline int run_driver(int argc, char** argv, const std::vector<Operation>& operations) {
  steady_allocator();
  try {
    for (const Operation& operation : operations) {
      if (argc < 3 || std::string_view(argv[1]) != operation.name) continue;
      const Report report = operation.run(argv[2], argc > 3 ? argv[3] : nullptr);
      std::printf("%.17g %.17g", report.cost.seconds, report.cost.bytes);
      for (const double fact : report.facts) std::printf(" %.17g", fact);
      std::printf("\n");
      return 0;
    }
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "%s: %s\n", argv[0], problem.what());
    return 1;
  }
  std::fprintf(stderr, "usage: %s OPERATION INPUT [EXTRA]\n", argv[0]);
  return 2;
}
