#include "progress/break_handler.h"

#include <cstdio>

// Initialised at compile time: a handler may be one of the host's global objects.
trBreakHandler* trBreakHandler::current_ = nullptr;

namespace {

// Shared by all reports; the callback must not start another report while it reads its message.
char message_buffer[1024];

// The formats are texts of the library, possibly translated, whose arguments are integers only.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
template <class... Ints>
const char* formatted(const char* format, Ints... values) {
  if (std::snprintf(message_buffer, sizeof message_buffer, format, values...) < 0) message_buffer[0] = '\0';
  return message_buffer;
}
#pragma GCC diagnostic pop

}  // namespace

trBreakHandler::trBreakHandler() {
  if (current_ == nullptr) current_ = this;
}

trBreakHandler::~trBreakHandler() {
  if (current_ == this) current_ = nullptr;
}

void trBreakHandler::report_progress_callback(const char*, double) {}

void trBreakHandler::report_progress(const char* format, double percent) {
  const double converted = convert_percent(percent);
  report_progress_callback(format, converted);
  last_percent_reported_ = converted;
  last_raw_percent = percent;
}

void trBreakHandler::report_progress(const char* format, int a, double percent) {
  report_progress(formatted(format, a), percent);
}

void trBreakHandler::report_progress(const char* format, int a, int b, double percent) {
  report_progress(formatted(format, a, b), percent);
}

void trBreakHandler::report_progress(const char* format, int a, int b, int c, double percent) {
  report_progress(formatted(format, a, b, c), percent);
}

void trBreakHandler::report_progress(const char* format, int a, int b, int c, int d, double percent) {
  report_progress(formatted(format, a, b, c, d), percent);
}

int trBreakHandler::interrupted() const {
  if (interrupted_flag != 0) return 1;
  interrupted_flag = const_cast<trBreakHandler*>(this)->interrupt_callback();
  return interrupted_flag;
}

void trBreakHandler::set_percent_range(double inf, double sup) {
  percent_inf_range_ = inf;
  percent_sup_range_ = sup;
}

void trBreakHandler::set_default_feedback_message(const utString& message) { default_feedback_message = message; }

void trBreakHandler::clear_default_feedback_message() { default_feedback_message = utString(""); }

double trBreakHandler::convert_percent(double percent) const {
  return percent_inf_range_ + (percent_sup_range_ - percent_inf_range_) * percent / 100;
}
