#include "progress/progress.h"

#include "progress/output.h"

namespace {

// Formats take the total first and the current number second.
void report_step(const char* format, int i, int n, double lo, double hi) {
  const double share = static_cast<double>(i) / static_cast<double>(n);
  tr_report_progress(tr_brnknls(format), n, i, lo + share * (hi - lo));
}

template <class... Values>
void forward_report(const char* format, Values... values) {
  if (trBreakHandler* handler = trBreakHandler::current()) handler->report_progress(format, values...);
}

}  // namespace

void tr_report_progress(const char* format, double percent) { forward_report(format, percent); }

void tr_report_progress(const char* format, int a, double percent) { forward_report(format, a, percent); }

void tr_report_progress(const char* format, int a, int b, double percent) { forward_report(format, a, b, percent); }

void tr_report_progress(const char* format, int a, int b, int c, double percent) {
  forward_report(format, a, b, c, percent);
}

void tr_report_progress(const char* format, int a, int b, int c, int d, double percent) {
  forward_report(format, a, b, c, d, percent);
}

void tr_report_node_step(int i, int n, double lo, double hi) { report_step("%3d nodes:   %3d", i, n, lo, hi); }

void tr_report_triangle_step(int i, int n, double lo, double hi) {
  report_step("Processing %d triangles:   %3d", i, n, lo, hi);
}

void tr_set_percent_range(const double& inf, const double& sup) {
  if (trBreakHandler* handler = trBreakHandler::current()) handler->set_percent_range(inf, sup);
}

double tr_get_percent_inf_range() {
  const trBreakHandler* handler = trBreakHandler::current();
  return handler != nullptr ? handler->percent_inf_range() : 0.0;
}

double tr_get_percent_sup_range() {
  const trBreakHandler* handler = trBreakHandler::current();
  return handler != nullptr ? handler->percent_sup_range() : 100.0;
}

double tr_last_percent_reported() {
  const trBreakHandler* handler = trBreakHandler::current();
  return handler != nullptr ? handler->last_percent_reported() : 0.0;
}

void tr_set_default_feedback_message(const utString& message) {
  if (trBreakHandler* handler = trBreakHandler::current()) handler->set_default_feedback_message(message);
}
