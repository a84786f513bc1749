#pragma once

#include <string>
#include <vector>

#include "progress/break_handler.h"

/// A progress object that asks for a stop at its k-th poll (never for k = 0), counts the polls and keeps the messages.
class InterruptingHandler : public trBreakHandler {
 public:
  explicit InterruptingHandler(int stop_at = 0) : stop_at_(stop_at) {}

  void report_progress_callback(const char* message, double percent) override {
    messages.emplace_back(message);
    percents.push_back(percent);
  }
  int interrupt_callback() override { return ++polls == stop_at_; }

  int polls = 0;
  std::vector<std::string> messages;
  std::vector<double> percents;

 private:
  int stop_at_;
};
