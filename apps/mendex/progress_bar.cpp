#include "progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "interruption.h"
#include "messages.h"

namespace {

constexpr int bar_width = 30;
constexpr auto redraw_interval = std::chrono::milliseconds(100);

std::size_t terminal_width() {
  winsize size = {};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

}  // namespace

void ProgressBar::begin(std::string stage) { begin(std::move(stage), nullptr); }

void ProgressBar::begin(std::string stage, std::function<double()> fraction) {
  stage_ = printable(stage);
  fraction_ = std::move(fraction);
}

void ProgressBar::erase() {
  if (!is_drawn_) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  is_drawn_ = false;
}

int ProgressBar::interrupt_callback() { return Interruption::requested(); }

void ProgressBar::report_progress_callback(const char*, double percent) {
  if (!is_shown_on_terminal()) return;
  const Clock::time_point now = Clock::now();
  if (now < next_draw_) return;
  next_draw_ = now + redraw_interval;
  draw(fraction_ ? 100.0 * fraction_() : percent);
}

bool ProgressBar::is_shown_on_terminal() {
  if (is_silent_) return false;
  if (is_terminal_ < 0) {
    const char* terminal = std::getenv("TERM");
    is_terminal_ = isatty(STDERR_FILENO) && (terminal == nullptr || std::strcmp(terminal, "dumb") != 0);
  }
  return is_terminal_ != 0;
}

void ProgressBar::draw(double percent) {
  const double shown = percent >= 0.0 ? std::min(percent, 100.0) : 0.0;  // not a number counts as nothing done
  const int filled = static_cast<int>(shown / 100.0 * bar_width);
  std::string bar(static_cast<std::size_t>(filled), '#');
  bar.resize(bar_width, '-');
  char tail[bar_width + 16];
  const int tail_length = std::snprintf(tail, sizeof tail, " [%s] %3.0f %%", bar.c_str(), shown);
  const std::size_t width = terminal_width();
  const std::size_t room =
      width > static_cast<std::size_t>(tail_length) + 1 ? width - static_cast<std::size_t>(tail_length) - 1 : 0;
  const bool fits = stage_.size() <= room;
  std::fprintf(stderr, "\r%s%s\033[K", fits ? stage_.c_str() : stage_.substr(0, room).c_str(), room > 0 ? tail : "");
  std::fflush(stderr);
  is_drawn_ = true;
}
