#pragma once

#include <string>

#include "failure.h"
#include "holes.h"
#include "length_argument.h"
#include "report.h"
#include "verb_options.h"

/// What `fill` and `cap` take: a file, which of its holes, where the result goes.
struct HoleArguments {
  std::string input;
  std::string output;
  std::string numbers;  // as given: 1,2,5
  int most_edges = 0;
  std::string between;
  LengthArgument tolerance = exact_copies;  // nodes up to this far apart are merged first
  bool is_json = false;

  HoleChoice choice() const;
};

/// Adds the options for these to a verb.
void add_hole_arguments(VerbOptions verb, HoleArguments& arguments);

/// Reads, merges, closes, writes and reports. A spacing of 0 is each hole's own.
ExitCode run_closing(Session& session, const HoleArguments& arguments, HoleMethod method, const LengthArgument& spacing);
