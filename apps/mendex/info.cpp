#include <memory>

#include "command_line.h"
#include "each_file.h"
#include "interruption.h"
#include "report.h"
#include "verbs.h"

namespace {

struct InfoOptions {
  std::vector<std::string> files;
  bool is_json = false;
};

// A file that fails is reported and the others go on.
ExitCode run_info(Session& session, const InfoOptions& options) {
  return report_on_each_file(session, options.files, options.is_json, [&](const std::string& file) -> FileReport {
    const ReadOutcome read = read_mesh(session, file);
    session.progress.begin("measuring " + file);
    const MeshStatistics mesh = measure_mesh(session.mesh);
    Interruption::check();
    return {options.is_json ? json_of_info(session, file, read, mesh) + "\n" : text_of_info(session, file, read, mesh)};
  });
}

}  // namespace

void add_info_verb(CommandLine& line) {
  const auto options = std::make_shared<InfoOptions>();
  const VerbOptions verb = line.add_verb("info", "Statistics and mass properties of mesh files",
                                         [options](Session& session) { return run_info(session, *options); });
  verb.add_option("FILE", options->files, "Files to report on").required().type_name("PATH");
  verb.add_flag("--json", options->is_json, "One JSON object a file, each on one line");
  line.set_notes(verb,
                 "Nothing is merged: an STL file has three nodes a triangle. Numbers that are not finite are null in JSON.",
                 "mendex info part.stl --json");
}
