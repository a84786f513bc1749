#include <cstdio>
#include <memory>

#include "arguments.h"
#include "command_line.h"
#include "interruption.h"
#include "length_argument.h"
#include "mesh_writer.h"
#include "report.h"
#include "verbs.h"

namespace {

struct WeldOptions {
  std::string input;
  std::string output;
  LengthArgument tolerance = exact_copies;
  bool is_positive = false;
  bool is_json = false;
};

MeshStatistics counts_only(const MeshCounts& counts) {
  MeshStatistics statistics;
  static_cast<MeshCounts&>(statistics) = counts;
  return statistics;
}

ExitCode run_weld(Session& session, const WeldOptions& options) {
  const MeshFormat format = output_format(options.output);
  const ReadOutcome read = read_mesh(session, options.input);
  session.progress.begin("measuring " + options.input);
  const MeshStatistics before =
      options.is_json ? measure_mesh(session.mesh) : counts_only(count_fresh_mesh(session.mesh));
  session.progress.begin("merging " + options.input);
  const double tolerance = options.tolerance.resolve(session.mesh);
  session.mesh.unduplicate_nodes(tolerance);
  Interruption::check();
  session.progress.begin("measuring " + options.input);
  const MeshStatistics after = options.is_json ? measure_mesh(session.mesh) : counts_only(count_mesh(session.mesh));
  Interruption::check();
  const WeldAccount account{options.input, options.output, read, format, tolerance, before, after};
  write_mesh(session, {options.output, format, options.is_positive, options.input});
  session.progress.erase();
  if (options.is_json) {
    std::printf("%s\n", json_of_weld(session, account).c_str());
  } else if (!session.is_quiet) {
    std::printf("%s", text_of_weld(session, account).c_str());
  }
  return ExitCode::done;
}

}  // namespace

void add_weld_verb(CommandLine& line) {
  const auto options = std::make_shared<WeldOptions>();
  const VerbOptions verb = line.add_verb("weld", "Merge coincident nodes, drop triangles that collapse, write the result",
                                         [options](Session& session) { return run_weld(session, *options); });
  add_input(verb, options->input);
  add_output(verb, options->output);
  add_length(verb, "--tol", options->tolerance, "Merge nodes up to this far apart. Without it only exact copies merge;\n0 merges nothing");
  verb.add_flag("--positive", options->is_positive, "Move the model, by round amounts, to where no coordinate is negative");
  verb.add_flag("--json", options->is_json, "Print one JSON object with the statistics before and after");
  line.set_notes(verb,
                 "OUT is replaced only when the new file is complete; on any failure, and on Ctrl-C, it stays as it was.",
                 "mendex weld part.stl -o fixed.stl --tol 0.001");
}
