#pragma once

#include <functional>
#include <string>
#include <vector>

#include "failure.h"
#include "session.h"

/// What is told about one file: its text for standard output, and the exit code that it asks for.
struct FileReport {
  std::string text;
  ExitCode code = ExitCode::done;
};

/// Prints a report on each file. A file that fails is reported on standard error and the others go on, save after an interruption.
/// Reports for people stand apart by an empty line. Returns the worst code.
ExitCode report_on_each_file(Session& session, const std::vector<std::string>& files, bool is_json,
                             const std::function<FileReport(const std::string& file)>& report_on);
