#include "check_report.h"
#include "each_file.h"
#include "mesh_check.h"
#include "verbs.h"

ExitCode run_check(Session& session, const CheckOptions& options) {
  return report_on_each_file(session, options.files, options.is_json, [&](const std::string& file) -> FileReport {
    const ReadOutcome read = read_mesh(session, file);
    const MeshCheck check = check_mesh(session, options.limits);
    const std::string text = options.is_json ? json_of_check(session, file, read, options.limits, check) + "\n"
                                             : text_of_check(session, file, read, options.limits, check);
    const bool is_clean = read.is_complete && !check.has_defects();
    return {text, is_clean ? ExitCode::done : ExitCode::defects_found};
  });
}
