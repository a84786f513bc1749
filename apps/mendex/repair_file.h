#pragma once

#include <optional>
#include <string>

#include "failure.h"
#include "repair_account.h"
#include "session.h"

/// One file to be repaired, and what becomes of the result.
struct RepairRequest {
  std::string input;
  std::string output;  // empty: nothing is written
  RepairSettings settings;
  bool is_dry_run = false;
  bool is_forced = false;    // an existing target is replaced
  bool is_in_place = false;  // the output is the input, whose old contents stay as FILE~
  bool tells_on_output = true;
  std::optional<std::string> json;  // where the report goes; empty: to standard output, instead of the text
};

/// Reads, repairs, judges, writes and tells. A report is made whatever happens. Nothing is written when a limit was passed.
ExitCode repair_file(Session& session, RepairRequest request);
