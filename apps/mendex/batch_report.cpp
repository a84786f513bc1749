#include "batch_report.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "json_values.h"
#include "messages.h"
#include "text.h"

namespace {

struct CodeNames {
  const char* key;
  const char* words;
};

// By ExitCode.
constexpr CodeNames code_names[] = {{"sound", "sound"},
                                    {"defects_remain", "defects remain"},
                                    {"wrong_usage", "wrong usage"},
                                    {"cannot_read", "cannot be read"},
                                    {"cannot_write", "cannot be written"},
                                    {"budget_passed", "changed too much"},
                                    {"interrupted", "interrupted"},
                                    {"out_of_memory", "out of memory"}};

std::size_t index_of(ExitCode code) { return static_cast<std::size_t>(code); }

const char* words_of(const BatchOutcome& outcome) {
  if (outcome.end == BatchEnd::timed_out) return "timed out";
  if (outcome.end == BatchEnd::not_started) return "not started";
  return code_names[index_of(outcome.code)].words;
}

Json bytes_of(const std::string& path) {
  std::error_code error;
  const auto bytes = std::filesystem::file_size(path, error);
  return error ? Json(nullptr) : Json(bytes);
}

// A report on a job that left none.
Json made_report(const BatchJob& job) {
  const Json unknown = nullptr;
  return {{"schema", "mendex.report/1"},
          {"tool", {{"name", "mendex"}, {"version", MENDEX_VERSION}}},
          {"input", {{"path", job.input}, {"format", unknown}, {"bytes", bytes_of(job.input)}, {"complete", unknown}}},
          {"units", unknown},
          {"before", unknown},
          {"steps", Json::array()},
          {"holes", Json::array()},
          {"defects", Json::array()},
          {"defect_count", unknown},
          {"budget", unknown},
          {"after", unknown},
          {"output", {{"path", unknown}, {"format", unknown}, {"verified", false}, {"backup", unknown}}},
          {"warnings", Json::array()},
          {"error", unknown}};
}

Json report_on(const BatchJob& job, const BatchOutcome& outcome) {
  Json report = Json::parse(outcome.report);
  if (!report.is_object()) report = made_report(job);
  report.set("exit", static_cast<int>(outcome.code));
  if (!report.contains("error")) report.set("error", nullptr);
  if (!outcome.error.empty()) report.set("error", outcome.error);
  return report;
}

std::string line_for_people(const BatchJob& job, const BatchOutcome& outcome) {
  std::string line = formatted("%-18s", words_of(outcome)) + job.input;
  if (outcome.code <= ExitCode::defects_found && !job.output.empty()) line += " -> " + job.output;
  if (outcome.end != BatchEnd::not_started) line += formatted("  (%.2f s)", outcome.seconds);
  const std::string error = report_on(job, outcome).text("error");
  if (!error.empty()) line += ": " + error;
  return printable(line);
}

}  // namespace

void BatchReport::add(const BatchJob& job, const BatchOutcome& outcome) {
  worst_ = std::max(worst_, outcome.code);
  ++files_;
  if (outcome.end == BatchEnd::timed_out) {
    ++timed_out_;
  } else if (outcome.end == BatchEnd::not_started) {
    ++not_started_;
  } else {
    ++by_code_[index_of(outcome.code)];
  }
  std::printf("%s\n", (is_json_ ? line_of(report_on(job, outcome)) : line_for_people(job, outcome)).c_str());
  std::fflush(stdout);
}

void BatchReport::finish(double seconds) const {
  if (is_json_) {
    Json summary = {{"schema", "mendex.batch/1"}, {"files", files_}};
    for (std::size_t k = 0; k < code_total; ++k) summary.set(code_names[k].key, by_code_[k]);
    summary.update({{"timed_out", timed_out_}, {"not_started", not_started_}, {"seconds", number(seconds)}, {"exit", static_cast<int>(worst_)}});
    std::printf("%s\n", line_of(summary).c_str());
    return;
  }
  const auto row = [](const char* name, int count) {
    if (count > 0) std::printf("  %-18s %8d\n", name, count);
  };
  std::printf("\n");
  row("files", files_);
  for (std::size_t k = 0; k < code_total; ++k) row(code_names[k].words, by_code_[k]);
  row("timed out", timed_out_);
  row("not started", not_started_);
  std::printf("  %-18s %8.2f\n", "seconds", seconds);
}
