#pragma once

#include "platform/utilities/export.h"
#include "platform/utilities/ut_string.h"

/// The host's progress object: receives how far an operation has got and says whether the user wants it stopped.
///
/// The host derives a class from this one and keeps one object of it for the duration of a command. The first object constructed
/// while none is current becomes the current one and stays it until it is destroyed; any other is never asked. An interruption is
/// final: once the host has asked to stop, every later poll of the same object says so again, hence one object serves one command.
/// Operations state their progress in percent of their own work; the object maps it into the host's percentage range, so that a
/// command of several steps can give each step a share of one progress bar. Not guarded against threads.
class MENDEX_EXPORT trBreakHandler {
 public:
  trBreakHandler();
  trBreakHandler(const trBreakHandler&) = delete;
  trBreakHandler& operator=(const trBreakHandler&) = delete;

  // The order of the virtual functions is part of the binary interface.

  /// Receives the finished message, valid during the call only, and the percentage within the host's range. Does nothing here.
  /// The percentage is not clamped: where the size of the work is unknown it may be any number.
  virtual void report_progress_callback(const char* message, double percent);
  /// Answers non-zero when the user asked to stop. Polled very often: once for each node, element or facet of a loop.
  virtual int interrupt_callback() = 0;
  virtual ~trBreakHandler();

  /// Passes the text on as it is, without formatting it.
  void report_progress(const char* format, double percent);
  /// Formats the integers as printf does and passes the message on, cut at 1023 characters.
  void report_progress(const char* format, int a, double percent);
  void report_progress(const char* format, int a, int b, double percent);
  void report_progress(const char* format, int a, int b, int c, double percent);
  void report_progress(const char* format, int a, int b, int c, int d, double percent);

  /// Whether the host asked to stop, now or at any earlier poll; after the first such answer it is not asked again.
  int interrupted() const;

  /// Sets what 0 and 100 percent of an operation mean to the host. Any two numbers are taken. Stays until it is set again.
  void set_percent_range(double inf, double sup);
  const double& percent_inf_range() const { return percent_inf_range_; }
  const double& percent_sup_range() const { return percent_sup_range_; }
  /// The percentage that the last report passed to the callback.
  const double& last_percent_reported() const { return last_percent_reported_; }

  void set_default_feedback_message(const utString& message);
  void clear_default_feedback_message();

  /// The object that reports go to; null when there is none.
  static trBreakHandler* current() { return current_; }

 private:
  double convert_percent(double percent) const;

  double percent_inf_range_ = 0.0;
  double percent_sup_range_ = 100.0;
  double last_percent_reported_ = 0.0;

  static trBreakHandler* current_;

 public:
  double last_raw_percent = 0.0;      ///< the percentage of the last report as the operation gave it
  utString default_feedback_message;  ///< what the host may show while no specific message is current
  mutable int interrupted_flag = 0;   ///< the host's last answer; stays once it is not 0
};
