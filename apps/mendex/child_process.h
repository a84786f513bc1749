#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What another program may take.
struct ChildLimits {
  std::optional<std::uint64_t> memory_bytes;
  std::optional<double> seconds;
};

/// Another program at work, whose standard output and standard error are collected; its input is empty.
///
/// It runs in a process group of its own, so that Ctrl-C reaches it only from here, and it is told to stop should this program vanish.
/// It does not outlive the object.
class ChildProcess {
 public:
  using Clock = std::chrono::steady_clock;

  /// Starts the program that the first word names by its path. Throws std::system_error when there is no process to be had.
  ChildProcess(const std::vector<std::string>& words, const ChildLimits& limits);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  pid_t id() const { return id_; }
  Clock::time_point start() const { return start_; }

  /// The ends of the pipes to be polled: -1 for what has ended.
  int output_pipe() const { return output_.pipe; }
  int error_pipe() const { return errors_.pipe; }
  /// Takes in what has arrived.
  void read_pipes();

  /// Asks it to stop, as Ctrl-C would.
  void interrupt();
  /// Ends it and all that it started.
  void kill();
  bool was_interrupted() const { return interrupted_at_.has_value(); }
  /// When it was asked to stop.
  Clock::time_point interrupted_at() const { return *interrupted_at_; }
  /// Whether it is this object that killed it.
  bool was_killed() const { return was_killed_; }

  /// Whether it has ended; then its status, as `waitpid` gives it, and all that it has printed are at hand.
  bool has_ended();
  int status() const { return status_; }

  /// What it has printed, up to a length that no sane program reaches; what is beyond is dropped.
  const std::string& output() const { return output_.text; }
  const std::string& errors() const { return errors_.text; }

 private:
  struct Stream {
    int pipe = -1;
    std::size_t most = 0;
    std::string text;
  };

  static void read_pipe(Stream& stream);
  static void close_pipe(Stream& stream);

  pid_t id_ = -1;
  Clock::time_point start_;
  Stream output_;
  Stream errors_;
  std::optional<Clock::time_point> interrupted_at_;
  bool was_killed_ = false;
  bool is_reaped_ = false;
  int status_ = 0;
};
