#include <algorithm>
#include <cstdio>

#include "interruption.h"
#include "report.h"
#include "verbs.h"

namespace {

std::string report_on(Session& session, const std::string& file, bool is_json) {
  session.messages.forget_warnings();
  const ReadOutcome read = read_mesh(session, file);
  session.progress.begin("measuring " + file);
  const MeshStatistics mesh = measure_mesh(session.mesh);
  Interruption::check();
  return is_json ? json_of_info(session, file, read, mesh) + "\n" : text_of_info(file, read, mesh);
}

}  // namespace

ExitCode run_info(Session& session, const InfoOptions& options) {
  ExitCode worst = ExitCode::done;
  bool is_first = true;
  for (const std::string& file : options.files) {
    try {
      const std::string report = report_on(session, file, options.is_json);
      session.progress.erase();
      std::printf("%s%s", is_first || options.is_json ? "" : "\n", report.c_str());
      is_first = false;
    } catch (const Failure& failure) {
      session.messages.error(failure.what());
      worst = std::max(worst, failure.code());
      if (failure.code() == ExitCode::interrupted) break;
    }
  }
  return worst;
}
