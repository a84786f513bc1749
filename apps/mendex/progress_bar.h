#pragma once

#include <mendexlib.h>

#include <chrono>
#include <functional>
#include <string>

/// The host's side of the library's progress and interruption: a bar on standard error, where that is a terminal, and
/// Ctrl-C.
///
/// The bar appears when the work takes longer than a blink, is redrawn at most ten times a second, and is erased at the
/// end.
class ProgressBar : public trBreakHandler {
 public:
  ~ProgressBar() override { erase(); }

  /// No bar from now on.
  void silence() { is_silent_ = true; }

  /// The bar appears anew only when what begins now takes longer than a blink.
  void start_over() { next_draw_ = Clock::now() + std::chrono::milliseconds(300); }

  /// Names the work that begins, for example "reading part.stl".
  void begin(std::string stage);

  /// The same for work whose extent only the source of its data knows: `fraction` returns from 0 to 1.
  void begin(std::string stage, std::function<double()> fraction);

  /// Removes the bar from the screen; the next report draws it again.
  void erase();

  void report_progress_callback(const char* message, double percent) override;
  int interrupt_callback() override;

 private:
  using Clock = std::chrono::steady_clock;

  bool is_shown_on_terminal();
  void draw(double percent);

  std::string stage_;
  std::function<double()> fraction_;
  bool is_silent_ = false;
  bool is_drawn_ = false;
  int is_terminal_ = -1;  // not asked yet
  Clock::time_point next_draw_ = Clock::now() + std::chrono::milliseconds(300);
};
