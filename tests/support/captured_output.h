#pragma once

#include <sstream>
#include <string>

#include "progress/output.h"

/// Collects what the library prints while it lives.
class CapturedOutput {
 public:
  CapturedOutput() { tr_set_output(&stream); }
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;
  ~CapturedOutput() { tr_set_output(nullptr); }

  /// What was printed since the last call.
  std::string take() {
    std::string printed = text();
    stream.str("");
    return printed;
  }
  /// What was printed so far.
  std::string text() const { return stream.str(); }

  std::ostringstream stream;
};
