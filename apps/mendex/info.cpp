#include "each_file.h"
#include "interruption.h"
#include "report.h"
#include "verbs.h"

ExitCode run_info(Session& session, const InfoOptions& options) {
  return report_on_each_file(session, options.files, options.is_json, [&](const std::string& file) -> FileReport {
    const ReadOutcome read = read_mesh(session, file);
    session.progress.begin("measuring " + file);
    const MeshStatistics mesh = measure_mesh(session.mesh);
    Interruption::check();
    return {options.is_json ? json_of_info(session, file, read, mesh) + "\n" : text_of_info(file, read, mesh)};
  });
}
