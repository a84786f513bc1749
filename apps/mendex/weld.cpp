#include <cstdio>

#include "interruption.h"
#include "mesh_writer.h"
#include "report.h"
#include "verbs.h"

namespace {

MeshStatistics counts_only(const MeshCounts& counts) {
  MeshStatistics statistics;
  static_cast<MeshCounts&>(statistics) = counts;
  return statistics;
}

}  // namespace

ExitCode run_weld(Session& session, const WeldOptions& options) {
  const MeshFormat format = output_format(options.output);
  const ReadOutcome read = read_mesh(session, options.input);
  session.progress.begin("measuring " + options.input);
  const MeshStatistics before =
      options.is_json ? measure_mesh(session.mesh) : counts_only(count_fresh_mesh(session.mesh));
  session.progress.begin("merging " + options.input);
  session.mesh.unduplicate_nodes(options.tolerance);
  Interruption::check();
  session.progress.begin("measuring " + options.input);
  const MeshStatistics after = options.is_json ? measure_mesh(session.mesh) : counts_only(count_mesh(session.mesh));
  Interruption::check();
  const WeldAccount account{options.input, options.output, read, format, options.tolerance, before, after};
  write_mesh(session, {options.output, format, options.is_positive, options.input});
  session.progress.erase();
  if (options.is_json) {
    std::printf("%s\n", json_of_weld(session, account).c_str());
  } else if (!session.is_quiet) {
    std::printf("%s", text_of_weld(account).c_str());
  }
  return ExitCode::done;
}
