#pragma once

#include "platform/utilities/export.h"
#include "platform/utilities/ut_string.h"

/// The host's progress and interruption object.
///
/// The host derives from it and creates one instance for each of its commands; the first one made while none is current is the
/// current one until it is destroyed. Operations report their own progress, 0 to 100, which is mapped into the percentage range.
/// An interruption is final for the handler: once the host has asked to stop, every later poll says so.
class MENDEX_EXPORT trBreakHandler {
 public:
  trBreakHandler();
  trBreakHandler(const trBreakHandler&) = delete;
  trBreakHandler& operator=(const trBreakHandler&) = delete;

  /// Called by every report with the formatted message and the converted percentage. Does nothing here.
  virtual void report_progress_callback(const char* message, double percent);
  /// Returns non-zero when the user asked to stop. Called once for every poll, which long loops make for every item.
  virtual int interrupt_callback() = 0;
  virtual ~trBreakHandler();

  /// Reports a message at a percentage of the running operation. The integers are formatted into `format`, in their order; without
  /// integers it is passed on as it is. Messages are cut at 1023 bytes.
  void report_progress(const char* format, double percent);
  void report_progress(const char* format, int a, double percent);
  void report_progress(const char* format, int a, int b, double percent);
  void report_progress(const char* format, int a, int b, int c, double percent);
  void report_progress(const char* format, int a, int b, int c, int d, double percent);

  /// Whether the host asked to stop, now or at an earlier poll.
  int interrupted() const;

  /// The share of the host's progress bar that operations fill; the ends are not checked.
  void set_percent_range(double inf, double sup);
  const double& percent_inf_range() const { return percent_inf_range_; }
  const double& percent_sup_range() const { return percent_sup_range_; }
  /// The converted percentage of the last report.
  const double& last_percent_reported() const { return last_percent_reported_; }

  /// A message to show while no specific one is current.
  void set_default_feedback_message(const utString& message) { default_feedback_message = message; }
  void clear_default_feedback_message() { default_feedback_message = utString(); }

 private:
  double convert_percent(double percent) const;
  void pass_on(const char* message, double percent);

  double percent_inf_range_ = 0.0;
  double percent_sup_range_ = 100.0;
  double last_percent_reported_ = 0.0;

 public:
  double last_raw_percent = 0.0;  ///< the percentage of the last report as the operation gave it
  utString default_feedback_message;
  mutable int interrupted_flag = 0;  ///< set once the host asked to stop
};
