#pragma once

#include <stdexcept>
#include <string>

/// What the program returns to the shell. Of several files the highest code counts.
enum class ExitCode { done = 0, defects_found = 1, wrong_usage = 2, cannot_read = 3, cannot_write = 4, budget_passed = 5, interrupted = 6, out_of_memory = 7 };

/// Ends the work on one file: its text is shown to the user, its code becomes the exit code.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  ExitCode code() const { return code_; }

  static Failure interrupted() { return {ExitCode::interrupted, "interrupted"}; }

 private:
  ExitCode code_;
};
