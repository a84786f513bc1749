#include "progress/progress.h"

#include "progress/output.h"

void tr_report_progress(const char* format, double percent) {
  if (tr_current_break_handler != nullptr) tr_current_break_handler->report_progress(format, percent);
}

void tr_report_progress(const char* format, int a, double percent) {
  if (tr_current_break_handler != nullptr) tr_current_break_handler->report_progress(format, a, percent);
}

void tr_report_progress(const char* format, int a, int b, double percent) {
  if (tr_current_break_handler != nullptr) tr_current_break_handler->report_progress(format, a, b, percent);
}

void tr_report_progress(const char* format, int a, int b, int c, double percent) {
  if (tr_current_break_handler != nullptr) tr_current_break_handler->report_progress(format, a, b, c, percent);
}

void tr_report_progress(const char* format, int a, int b, int c, int d, double percent) {
  if (tr_current_break_handler != nullptr) tr_current_break_handler->report_progress(format, a, b, c, d, percent);
}

// The total is named first, the current number second.
void tr_report_loop(const char* format, int i, int n, double lo, double hi) {
  const double share = static_cast<double>(i) / static_cast<double>(n);
  tr_report_progress(tr_brnknls(format), n, i, lo + share * (hi - lo));
}

void tr_set_percent_range(const double& inf, const double& sup) {
  if (tr_current_break_handler != nullptr) tr_current_break_handler->set_percent_range(inf, sup);
}

double tr_get_percent_inf_range() {
  return tr_current_break_handler == nullptr ? 0.0 : tr_current_break_handler->percent_inf_range();
}

double tr_get_percent_sup_range() {
  return tr_current_break_handler == nullptr ? 100.0 : tr_current_break_handler->percent_sup_range();
}

double tr_last_percent_reported() {
  return tr_current_break_handler == nullptr ? 0.0 : tr_current_break_handler->last_percent_reported();
}

void tr_set_default_feedback_message(const utString& message) {
  if (tr_current_break_handler != nullptr) tr_current_break_handler->set_default_feedback_message(message);
}
