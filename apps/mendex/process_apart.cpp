#include "process_apart.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>

#include "failure.h"
#include "interruption.h"
#include "memory_limit.h"

namespace {

constexpr int work_done = 0, work_failed = 1, work_without_memory = 2;
constexpr int poll_milliseconds = 200;

[[noreturn]] void fail(const char* what) {
  throw Failure(ExitCode::cannot_read, std::string(what) + ": " + std::strerror(errno));
}

// Closes what it holds.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { reset(); }
  int number() const { return number_; }
  void reset() {
    if (number_ >= 0) close(number_);
    number_ = -1;
  }

 private:
  int number_;
};

// Ends a process that is still there.
class Child {
 public:
  explicit Child(pid_t id) : id_(id) {}
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (id_ < 0) return;
    kill(id_, SIGKILL);
    wait();
  }
  int wait() {
    int status = 0;
    while (waitpid(id_, &status, 0) < 0 && errno == EINTR) {
    }
    id_ = -1;
    return status;
  }

 private:
  pid_t id_;
};

bool write_all(int file, const std::string& bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t n = write(file, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    done += static_cast<std::size_t>(n);
  }
  return true;
}

std::string read_all(int file) {
  struct stat status = {};
  if (fstat(file, &status) != 0) fail("cannot be read");
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t n = pread(file, &bytes[done], bytes.size() - done, static_cast<off_t>(done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) fail("cannot be read");
    done += static_cast<std::size_t>(n);
  }
  return bytes;
}

void set_limit(int resource, rlim_t soft, rlim_t hard) {
  struct rlimit old = {};
  getrlimit(static_cast<__rlimit_resource_t>(resource), &old);
  const struct rlimit fresh = {std::min(soft, old.rlim_cur), std::min(hard, old.rlim_max)};
  setrlimit(static_cast<__rlimit_resource_t>(resource), &fresh);
}

void apply(const WorkLimits& limits) {
  set_limit(RLIMIT_CORE, 0, 0);
  const auto seconds = static_cast<rlim_t>(limits.seconds);
  set_limit(RLIMIT_CPU, seconds, seconds + 1);
#ifndef __SANITIZE_ADDRESS__  // whose shadow memory alone is beyond any limit
  const rlim_t bytes = MemoryLimit::in_use() + limits.bytes;
  set_limit(RLIMIT_AS, bytes, bytes);
#endif
}

// The other process: says nothing on the terminal, leaves its result in the file, and ends without any of the program's own endings.
[[noreturn]] void work_and_end(const std::function<std::string()>& work, const WorkLimits& limits, int result) {
  for (const int signal : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGXCPU}) std::signal(signal, SIG_DFL);
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere >= 0) {
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
  }
  apply(limits);
  std::set_new_handler(nullptr);
  int code = work_failed;
  try {
    code = write_all(result, work()) ? work_done : work_without_memory;
  } catch (const std::bad_alloc&) {
    code = work_without_memory;
  } catch (const std::exception& problem) {
    write_all(result, problem.what());
  } catch (...) {
    write_all(result, "cannot be read");
  }
  _exit(code);
}

// The other process holds the pipe's other end as long as it lives.
void wait_for_end(int pipe) {
  struct pollfd watched = {pipe, POLLIN, 0};
  while (true) {
    Interruption::check();
    const int n = poll(&watched, 1, poll_milliseconds);
    if (n > 0 || (n < 0 && errno != EINTR)) return;
  }
}

[[noreturn]] void tell_how_it_ended(int status, const std::string& text) {
  if (WIFEXITED(status) && WEXITSTATUS(status) == work_failed && !text.empty()) throw Failure(ExitCode::cannot_read, text);
  if (WIFEXITED(status) && WEXITSTATUS(status) == work_without_memory) {
    throw Failure(ExitCode::cannot_read, "needs too much memory for a file of its size");
  }
  if (WIFSIGNALED(status) && (WTERMSIG(status) == SIGXCPU || WTERMSIG(status) == SIGKILL)) {
    throw Failure(ExitCode::cannot_read, "takes too long to read for a file of its size");
  }
  throw Failure(ExitCode::cannot_read, "is damaged: the importer of its format broke down");
}

}  // namespace

std::string run_apart(const std::function<std::string()>& work, const WorkLimits& limits) {
  const Descriptor result(memfd_create("result", MFD_CLOEXEC));
  int ends[2];
  if (result.number() < 0 || pipe2(ends, O_CLOEXEC) != 0) fail("cannot be read");
  const Descriptor here(ends[0]);
  Descriptor there(ends[1]);
  const pid_t parent = getpid();
  const pid_t id = fork();
  if (id < 0) fail("cannot be read");
  if (id == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(work_failed);
    work_and_end(work, limits, result.number());
  }
  Child child(id);
  there.reset();
  wait_for_end(here.number());
  const int status = child.wait();
  Interruption::check();
  if (!WIFEXITED(status) || WEXITSTATUS(status) != work_done) tell_how_it_ended(status, read_all(result.number()));
  return read_all(result.number());
}
