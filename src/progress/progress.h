#pragma once

#include "platform/utilities/export.h"
#include "platform/utilities/ut_string.h"
#include "progress/break_handler.h"

// Progress and interruption of the running operation, through the current trBreakHandler; without one nothing is reported and
// nothing is ever interrupted. Process-wide state without guards: the library is driven from one thread.

/// The current handler; set by the handlers' own constructor and destructor.
extern MENDEX_EXPORT trBreakHandler* tr_current_break_handler;

/// See trBreakHandler::report_progress.
MENDEX_EXPORT void tr_report_progress(const char* format, double percent);
MENDEX_EXPORT void tr_report_progress(const char* format, int a, double percent);
MENDEX_EXPORT void tr_report_progress(const char* format, int a, int b, double percent);
MENDEX_EXPORT void tr_report_progress(const char* format, int a, int b, int c, double percent);
MENDEX_EXPORT void tr_report_progress(const char* format, int a, int b, int c, int d, double percent);

/// Whether the host asked to stop; loops over the mesh ask once for every item. Costs a test when there is no handler.
inline int tr_interrupt() { return tr_current_break_handler == nullptr ? 0 : tr_current_break_handler->interrupted(); }

MENDEX_EXPORT void tr_report_loop(const char* format, int i, int n, double lo, double hi);

/// Progress of a loop over n nodes, at number i: reports when i is a multiple of 1000 or n, as the percentage lo + i / n (hi - lo).
inline void tr_report_nodes(int i, int n, double lo, double hi) {
  if (tr_current_break_handler != nullptr && (i % 1000 == 0 || i == n)) tr_report_loop("%3d nodes:   %3d", i, n, lo, hi);
}
/// The same for triangles.
inline void tr_report_triangles(int i, int n, double lo, double hi) {
  if (tr_current_break_handler != nullptr && (i % 1000 == 0 || i == n)) {
    tr_report_loop("Processing %d triangles:   %3d", i, n, lo, hi);
  }
}

/// The share of the host's progress bar that operations fill; 0 to 100 without a handler.
MENDEX_EXPORT void tr_set_percent_range(const double& inf, const double& sup);
MENDEX_EXPORT double tr_get_percent_inf_range();
MENDEX_EXPORT double tr_get_percent_sup_range();
/// The converted percentage of the last report; 0 without a handler.
MENDEX_EXPORT double tr_last_percent_reported();
MENDEX_EXPORT void tr_set_default_feedback_message(const utString& message);
