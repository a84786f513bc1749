#include "child_process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstring>
#include <system_error>

#include "memory_limit.h"

namespace {

constexpr std::size_t most_output = std::size_t{256} << 20;
constexpr std::size_t most_errors = std::size_t{64} << 10;
constexpr int cannot_start = 127;

struct Pipe {
  int from = -1;
  int to = -1;

  Pipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "no pipe");
    from = ends[0];
    to = ends[1];
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    if (from >= 0) close(from);
    close(to);
  }

  // The reading end, which does not wait.
  int take() {
    fcntl(from, F_SETFL, O_NONBLOCK);
    return std::exchange(from, -1);
  }
};

// The time limit is kept by the parent; the processor's limit only serves should the parent be gone.
void apply(const ChildLimits& limits) {
  if (limits.memory_bytes) MemoryLimit::set(*limits.memory_bytes);
  if (!limits.seconds) return;
  constexpr double grace = 10.0;
  rlimit processor = {};
  getrlimit(RLIMIT_CPU, &processor);
  processor.rlim_cur = std::min<rlim_t>(processor.rlim_max, static_cast<rlim_t>(std::ceil(std::min(*limits.seconds, 1e9) + grace)));
  setrlimit(RLIMIT_CPU, &processor);
}

// The other process. The parent has no threads, so that anything may be called here.
[[noreturn]] void become_program(const std::vector<char*>& words, const ChildLimits& limits, const Pipe& output, const Pipe& errors) {
  setpgid(0, 0);
  for (const int number : {SIGINT, SIGTERM, SIGPIPE, SIGXFSZ}) std::signal(number, SIG_DFL);
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  dup2(nothing, STDIN_FILENO);
  dup2(output.to, STDOUT_FILENO);
  dup2(errors.to, STDERR_FILENO);
  apply(limits);
  execv(words[0], words.data());
  dprintf(STDERR_FILENO, "cannot start %s: %s\n", words[0], std::strerror(errno));
  _exit(cannot_start);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& words, const ChildLimits& limits) : start_(Clock::now()) {
  std::vector<char*> pointers;
  for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));
  pointers.push_back(nullptr);
  Pipe output, errors;
  const pid_t parent = getpid();
  id_ = fork();
  if (id_ < 0) throw std::system_error(errno, std::generic_category(), "no process");
  if (id_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(cannot_start);
    become_program(pointers, limits, output, errors);
  }
  setpgid(id_, id_);  // by whichever of the two comes first
  output_ = {output.take(), most_output, {}};
  errors_ = {errors.take(), most_errors, {}};
}

ChildProcess::~ChildProcess() {
  if (!is_reaped_) {
    kill();
    while (waitpid(id_, &status_, 0) < 0 && errno == EINTR) {
    }
  }
  close_pipe(output_);
  close_pipe(errors_);
}

void ChildProcess::close_pipe(Stream& stream) {
  if (stream.pipe >= 0) close(std::exchange(stream.pipe, -1));
}

void ChildProcess::read_pipe(Stream& stream) {
  char piece[65536];
  while (stream.pipe >= 0) {
    const ssize_t n = read(stream.pipe, piece, sizeof piece);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && errno == EAGAIN) return;
    if (n <= 0) return close_pipe(stream);
    stream.text.append(piece, std::min(static_cast<std::size_t>(n), stream.most - stream.text.size()));
  }
}

void ChildProcess::read_pipes() {
  read_pipe(output_);
  read_pipe(errors_);
}

void ChildProcess::interrupt() {
  if (interrupted_at_) return;
  interrupted_at_ = Clock::now();
  ::kill(id_, SIGINT);
}

void ChildProcess::kill() {
  was_killed_ = true;
  ::kill(-id_, SIGKILL);
}

bool ChildProcess::has_ended() {
  if (is_reaped_) return true;
  const pid_t ended = waitpid(id_, &status_, WNOHANG);
  if (ended == 0 || (ended < 0 && errno == EINTR)) return false;
  is_reaped_ = true;
  read_pipes();
  return true;
}
