#include "apps/process.h"

#include "build_paths.h"

#include <fcntl.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

namespace {

constexpr auto longest_run = std::chrono::seconds(60);
constexpr uid_t nobody = 65534;
constexpr auto poll_interval = std::chrono::milliseconds(2);

int unlinked_file() {
  char name[] = "/tmp/mendex-test-XXXXXX";
  const int file = mkostemp(name, O_CLOEXEC);
  unlink(name);
  return file;
}

std::string contents_of(int file) {
  std::string text;
  char piece[4096];
  off_t at = 0;
  for (ssize_t n; (n = pread(file, piece, sizeof piece, at)) > 0; at += n)
    text.append(piece, static_cast<std::size_t>(n));
  return text;
}

}  // namespace

Process::Process(const ProcessSetup& setup) : output_(unlinked_file()), errors_(unlinked_file()) {
  if (setup.has_terminal && openpty(&terminal_, &terminal_of_program_, nullptr, nullptr, nullptr) == 0) {
    fcntl(terminal_, F_SETFL, O_NONBLOCK);
    fcntl(terminal_, F_SETFD, FD_CLOEXEC);
  }
  id_ = fork();
  if (id_ == 0) become_program(setup);
}

Process::~Process() {
  if (id_ > 0) {
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
  }
  for (const int file : {output_, errors_, terminal_, terminal_of_program_}) {
    if (file >= 0) close(file);
  }
}

void Process::become_program(const ProcessSetup& setup) const {
  // Shells start background jobs with these ignored.
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ}) signal(number, SIG_DFL);
  const int output = setup.output_file.empty() ? output_ : open(setup.output_file.c_str(), O_WRONLY | O_CREAT, 0666);
  dup2(output, STDOUT_FILENO);
  dup2(terminal_of_program_ >= 0 ? terminal_of_program_ : errors_, STDERR_FILENO);
  if (setup.is_typed_to && terminal_of_program_ >= 0) {
    setsid();
    ioctl(terminal_of_program_, TIOCSCTTY, 0);
    dup2(terminal_of_program_, STDIN_FILENO);
    dup2(terminal_of_program_, STDOUT_FILENO);
  }
  if (!setup.input_file.empty()) dup2(open(setup.input_file.c_str(), O_RDONLY), STDIN_FILENO);
  if (!setup.folder.empty() && chdir(setup.folder.c_str()) != 0) _exit(127);
  for (const auto& [name, value] : setup.environment) setenv(name.c_str(), value.c_str(), 1);
  if (setup.file_size_limit >= 0) {
    const rlimit limit = {static_cast<rlim_t>(setup.file_size_limit), static_cast<rlim_t>(setup.file_size_limit)};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  if (setup.is_nobody && geteuid() == 0 && (setgid(nobody) != 0 || setuid(nobody) != 0)) _exit(127);
  std::vector<char*> words = {const_cast<char*>(setup.program.c_str())};
  for (const std::string& argument : setup.arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  execv(words[0], words.data());
  _exit(127);
}

void Process::send_signal(int number) const { kill(id_, number); }

void Process::type(const std::string& text) const {
  if (write(terminal_, text.data(), text.size()) < 0) perror("typing");
}

bool Process::waits_for(const std::string& text) {
  const auto deadline = std::chrono::steady_clock::now() + longest_run;
  while (std::chrono::steady_clock::now() < deadline) {
    drain_terminal();
    const std::size_t found = terminal_text_.find(text, seen_);
    if (found != std::string::npos) {
      seen_ = found + text.size();
      return true;
    }
    std::this_thread::sleep_for(poll_interval);
  }
  return false;
}

void Process::wait_until_it_catches(int number) const {
  const auto deadline = std::chrono::steady_clock::now() + longest_run;
  while (std::chrono::steady_clock::now() < deadline) {
    std::ifstream status("/proc/" + std::to_string(id_) + "/status");
    for (std::string line; std::getline(status, line);) {
      if (line.compare(0, 7, "SigCgt:") != 0) continue;
      if (std::stoull(line.substr(7), nullptr, 16) >> (number - 1) & 1) return;
    }
    std::this_thread::sleep_for(poll_interval);
  }
}

void Process::drain_terminal() {
  char piece[4096];
  for (ssize_t n; terminal_ >= 0 && (n = read(terminal_, piece, sizeof piece)) > 0;) {
    terminal_text_.append(piece, static_cast<std::size_t>(n));
  }
}

ProcessResult Process::wait() {
  const auto deadline = std::chrono::steady_clock::now() + longest_run;
  int status = 0;
  while (waitpid(id_, &status, WNOHANG) == 0) {
    drain_terminal();
    if (std::chrono::steady_clock::now() > deadline) kill(id_, SIGKILL);
    std::this_thread::sleep_for(poll_interval);
  }
  id_ = -1;
  drain_terminal();
  ProcessResult result;
  result.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.output = contents_of(output_);
  result.errors = terminal_ >= 0 ? terminal_text_ : contents_of(errors_);
  return result;
}

ProcessResult run_process(const ProcessSetup& setup) { return Process(setup).wait(); }

ProcessSetup mendex_setup(const std::vector<std::string>& arguments) {
  ProcessSetup setup;
  setup.program = MENDEX_PROGRAM;
  setup.arguments = arguments;
  return setup;
}

ProcessResult run_mendex(const std::vector<std::string>& arguments) { return run_process(mendex_setup(arguments)); }
