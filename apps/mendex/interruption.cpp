#include "interruption.h"

#include <limits.h>
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "failure.h"

namespace {

char unfinished_file[PATH_MAX];
std::atomic<bool> has_unfinished_file{false};

}  // namespace

std::atomic<int> Interruption::signals_{0};
std::atomic<bool> Interruption::is_final_{false};
std::atomic<bool> Interruption::bears_repetition_{false};
std::atomic<bool> Interruption::is_out_of_time_{false};

void Interruption::on_signal(int number) {
  if (number != SIGINT) is_final_ = true;
  if (signals_.load() == 0 && number == SIGALRM) is_out_of_time_ = true;
  if (signals_.fetch_add(1) == 0 || (bears_repetition_ && number == SIGINT)) return;
  remove_unfinished_file();
  _exit(static_cast<int>(ExitCode::interrupted));
}

void Interruption::remove_unfinished_file() {
  if (has_unfinished_file) unlink(unfinished_file);
}

void Interruption::install() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action = {};
    if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) continue;
    action = {};
    action.sa_handler = on_signal;
    sigaction(number, &action, nullptr);
  }
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
}

void Interruption::set_timeout(double seconds) {
  constexpr double longest = 1e8;
  struct sigaction action = {};
  action.sa_handler = on_signal;
  sigaction(SIGALRM, &action, nullptr);
  const double first = std::min(seconds, longest);
  itimerval timer = {};
  timer.it_interval.tv_sec = 2;
  timer.it_value.tv_sec = static_cast<time_t>(first);
  timer.it_value.tv_usec = std::max<suseconds_t>(1, static_cast<suseconds_t>((first - std::floor(first)) * 1e6));
  setitimer(ITIMER_REAL, &timer, nullptr);
}

void Interruption::check() {
  if (requested()) throw Failure(ExitCode::interrupted, is_out_of_time_ ? "timed out" : "interrupted");
}

void Interruption::set_unfinished_file(const std::string& path) {
  has_unfinished_file = false;
  if (path.empty() || path.size() >= sizeof unfinished_file) return;
  std::memcpy(unfinished_file, path.c_str(), path.size() + 1);
  has_unfinished_file = true;
}
