#include "progress/break_handler.h"

#include <cstdio>

#include "progress/progress.h"

trBreakHandler* tr_current_break_handler = nullptr;

namespace {

// One buffer for all messages: reports do not nest.
char message_buffer[1024];

template <class... Ints>
const char* format_message(const char* format, Ints... ints) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  if (std::snprintf(message_buffer, sizeof message_buffer, format, ints...) < 0) message_buffer[0] = '\0';
#pragma GCC diagnostic pop
  return message_buffer;
}

}  // namespace

trBreakHandler::trBreakHandler() {
  if (tr_current_break_handler == nullptr) tr_current_break_handler = this;
}

trBreakHandler::~trBreakHandler() {
  if (tr_current_break_handler == this) tr_current_break_handler = nullptr;
}

void trBreakHandler::report_progress_callback(const char*, double) {}

double trBreakHandler::convert_percent(double percent) const {
  return percent_inf_range_ + (percent_sup_range_ - percent_inf_range_) * percent / 100.0;
}

void trBreakHandler::pass_on(const char* message, double percent) {
  const double converted = convert_percent(percent);
  report_progress_callback(message, converted);
  last_percent_reported_ = converted;
  last_raw_percent = percent;
}

void trBreakHandler::report_progress(const char* format, double percent) { pass_on(format, percent); }

void trBreakHandler::report_progress(const char* format, int a, double percent) { pass_on(format_message(format, a), percent); }

void trBreakHandler::report_progress(const char* format, int a, int b, double percent) {
  pass_on(format_message(format, a, b), percent);
}

void trBreakHandler::report_progress(const char* format, int a, int b, int c, double percent) {
  pass_on(format_message(format, a, b, c), percent);
}

void trBreakHandler::report_progress(const char* format, int a, int b, int c, int d, double percent) {
  pass_on(format_message(format, a, b, c, d), percent);
}

int trBreakHandler::interrupted() const {
  if (interrupted_flag) return 1;
  interrupted_flag = const_cast<trBreakHandler*>(this)->interrupt_callback();
  return interrupted_flag;
}

void trBreakHandler::set_percent_range(double inf, double sup) {
  percent_inf_range_ = inf;
  percent_sup_range_ = sup;
}
