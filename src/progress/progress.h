#pragma once

#include "platform/utilities/export.h"
#include "progress/break_handler.h"

/// Progress and interruption as the operations of the library see them. Everything here goes to the current trBreakHandler and does
/// nothing when there is none; then the functions that loops call for every item cost one test.

/// Reports a message and the percentage, 0 to 100, of the operation's own work that is done.
MENDEX_EXPORT void tr_report_progress(const char* format, double percent);
MENDEX_EXPORT void tr_report_progress(const char* format, int a, double percent);
MENDEX_EXPORT void tr_report_progress(const char* format, int a, int b, double percent);
MENDEX_EXPORT void tr_report_progress(const char* format, int a, int b, int c, double percent);
MENDEX_EXPORT void tr_report_progress(const char* format, int a, int b, int c, int d, double percent);

/// Whether the host wants the operation stopped; 0 when nobody can say so.
inline int tr_interrupt() {
  const trBreakHandler* handler = trBreakHandler::current();
  return handler == nullptr ? 0 : handler->interrupted();
}

/// Whether item i of n is one that a loop reports: every thousandth from 0 on, and the last.
inline bool tr_is_progress_step(int i, int n) {
  return trBreakHandler::current() != nullptr && (i % 1000 == 0 || i == n);
}

/// What tr_report_nodes and tr_report_triangles do at such an item.
MENDEX_EXPORT void tr_report_node_step(int i, int n, double lo, double hi);
MENDEX_EXPORT void tr_report_triangle_step(int i, int n, double lo, double hi);

/// Progress of a loop over n nodes, called for every i. The loop covers the share lo to hi of the operation's 0 to 100 percent.
inline void tr_report_nodes(int i, int n, double lo, double hi) {
  if (tr_is_progress_step(i, n)) tr_report_node_step(i, n, lo, hi);
}

/// The same for a loop over n triangles.
inline void tr_report_triangles(int i, int n, double lo, double hi) {
  if (tr_is_progress_step(i, n)) tr_report_triangle_step(i, n, lo, hi);
}

/// What 0 and 100 percent of the coming operations mean to the host; stays until it is set again.
MENDEX_EXPORT void tr_set_percent_range(const double& inf, const double& sup);
MENDEX_EXPORT double tr_get_percent_inf_range();  ///< 0.0 without a handler
MENDEX_EXPORT double tr_get_percent_sup_range();  ///< 100.0 without a handler
MENDEX_EXPORT double tr_last_percent_reported();  ///< 0.0 without a handler

MENDEX_EXPORT void tr_set_default_feedback_message(const utString& message);
