#pragma once

#include <array>
#include <string>

#include "batch_inputs.h"
#include "failure.h"

/// How a job ended.
enum class BatchEnd { by_itself, timed_out, interrupted, not_started };

/// What became of a job.
struct BatchOutcome {
  ExitCode code = ExitCode::done;
  BatchEnd end = BatchEnd::by_itself;
  std::string error;   // why it failed; empty where its own report tells
  std::string report;  // what it printed: one JSON object, or nothing of use
  double seconds = 0.0;
};

/// The account of a batch, line by line.
class BatchReport {
 public:
  explicit BatchReport(bool is_json) : is_json_(is_json) {}

  /// Prints what became of a job: its own report as one line, with `exit` and, where the job did not tell, `error`; or, where it left
  /// none, one in the same form with null for what is not known. For people a line. It is flushed, so that a reader can follow.
  void add(const BatchJob& job, const BatchOutcome& outcome);
  /// Prints how many ended how.
  void finish(double seconds) const;
  /// The highest code so far.
  ExitCode worst() const { return worst_; }

 private:
  static constexpr std::size_t code_total = 8;

  bool is_json_;
  ExitCode worst_ = ExitCode::done;
  int files_ = 0;
  int timed_out_ = 0;
  int not_started_ = 0;
  std::array<int, code_total> by_code_ = {};  // of those that were started and not timed out
};
