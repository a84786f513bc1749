#include "each_file.h"

#include <algorithm>
#include <cstdio>

ExitCode report_on_each_file(Session& session, const std::vector<std::string>& files, bool is_json,
                             const std::function<FileReport(const std::string& file)>& report_on) {
  ExitCode worst = ExitCode::done;
  bool is_first = true;
  for (const std::string& file : files) {
    session.messages.forget_warnings();
    try {
      const FileReport report = report_on(file);
      session.progress.erase();
      std::printf("%s%s", is_first || is_json ? "" : "\n", report.text.c_str());
      is_first = false;
      worst = std::max(worst, report.code);
    } catch (const Failure& failure) {
      session.messages.error(failure.what());
      worst = std::max(worst, failure.code());
      if (failure.code() == ExitCode::interrupted) break;
    }
  }
  return worst;
}
