#include "interruption.h"

#include <limits.h>
#include <signal.h>
#include <unistd.h>

#include <cstring>

#include "failure.h"

namespace {

char unfinished_file[PATH_MAX];
std::atomic<bool> has_unfinished_file{false};

}  // namespace

std::atomic<int> Interruption::signals_{0};

void Interruption::on_signal(int) {
  if (signals_.fetch_add(1) == 0) return;
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

void Interruption::check() {
  if (requested()) throw Failure::interrupted();
}

void Interruption::set_unfinished_file(const std::string& path) {
  has_unfinished_file = false;
  if (path.empty() || path.size() >= sizeof unfinished_file) return;
  std::memcpy(unfinished_file, path.c_str(), path.size() + 1);
  has_unfinished_file = true;
}
