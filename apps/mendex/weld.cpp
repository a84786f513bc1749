#include <cstdio>
#include <limits>

#include "interruption.h"
#include "mesh_writer.h"
#include "report.h"
#include "verbs.h"

namespace {

// People see counts only, which cost next to nothing beside the work itself.
MeshStatistics statistics_for_report(const Session& session, bool is_json) {
  if (is_json) return measure_mesh(session.mesh);
  MeshStatistics statistics;
  static_cast<MeshCounts&>(statistics) = count_mesh(session.mesh);
  return statistics;
}

}  // namespace

ExitCode run_weld(Session& session, const WeldOptions& options) {
  const MeshFormat format = output_format(options.output);
  const ReadOutcome read = read_mesh(session, options.input);
  const std::string name = options.input;
  session.progress.begin("measuring " + name);
  const MeshStatistics before = statistics_for_report(session, options.is_json);
  session.progress.begin("merging " + name);
  session.mesh.unduplicate_nodes(options.tolerance);
  session.mesh.delete_collapsed_elements();
  Interruption::check();
  session.progress.begin("measuring " + name);
  const MeshStatistics after = statistics_for_report(session, options.is_json);
  Interruption::check();
  const WeldAccount account{options.input, options.output, read, format, options.tolerance, before, after};
  write_mesh(session, options.output, format, options.is_positive);
  session.progress.erase();
  if (options.is_json) {
    std::printf("%s\n", json_of_weld(session, account).c_str());
  } else if (!session.is_quiet) {
    std::printf("%s", text_of_weld(account).c_str());
  }
  return ExitCode::done;
}
