#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "failure.h"
#include "mesh_reader.h"
#include "repair_account.h"
#include "session.h"

/// What there is to report of one file; what is missing was not reached.
struct RepairReport {
  std::string input;
  std::optional<std::uint64_t> input_bytes;
  std::optional<ReadOutcome> read;
  std::optional<RepairAccount> account;
  RepairLimits limits;
  std::string output;                 // empty: none was asked for
  std::optional<MeshFormat> written;  // and read back
  std::string backup;                 // where the old contents went
  std::string error;
  ExitCode exit = ExitCode::done;
};

/// For people: several lines, each ended.
std::string text_of_repair(const Session& session, const RepairReport& report);
/// One object of the schema mendex.report/1, see docs/report.schema.json, on one line without its end.
std::string json_of_repair(const Session& session, const RepairReport& report);
