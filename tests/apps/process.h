#pragma once

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

/// How a program is run.
struct ProcessSetup {
  std::string program;
  std::vector<std::string> arguments;
  std::vector<std::pair<std::string, std::string>> environment;  // added to that of the test
  std::string folder;                                            // where it starts; else where the test runs
  std::string output_file;                                       // receives standard output; else it is collected
  long file_size_limit = -1;                                     // bytes that a file may grow to; -1: no limit
  bool is_nobody = false;     // runs as a user without privileges, when the test has them all
  bool has_terminal = false;  // standard error is a terminal
  bool is_typed_to = false;   // that terminal is also the controlling one, standard input and standard output
  std::string input_file;     // standard input; else that of the test
};

/// What a program left: its exit code (128 and the signal's number when a signal ended it) and its texts.
struct ProcessResult {
  int exit_code = -1;
  std::string output;
  std::string errors;
};

/// A running program. Whatever happens in the test, it does not outlive the object.
class Process {
 public:
  explicit Process(const ProcessSetup& setup);
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process();

  /// Whether standard error is a terminal; the machine may have none to give.
  bool has_terminal() const { return terminal_ >= 0; }

  void send_signal(int number) const;

  /// Types on the terminal.
  void type(const std::string& text) const;

  /// Waits until the program has shown a text on the terminal since it was asked for the last one; false when it never does.
  bool waits_for(const std::string& text);

  /// Waits until the program has set itself up to catch the signal.
  void wait_until_it_catches(int number) const;

  /// Waits for the end; a program that takes more than a minute is killed.
  ProcessResult wait();

 private:
  [[noreturn]] void become_program(const ProcessSetup& setup) const;
  void drain_terminal();

  pid_t id_ = -1;
  int output_ = -1;  // unlinked files that collect the texts
  int errors_ = -1;
  int terminal_ = -1;  // our end of the terminal
  int terminal_of_program_ = -1;
  std::string terminal_text_;
  std::size_t seen_ = 0;  // of that text
};

ProcessResult run_process(const ProcessSetup& setup);

/// Runs `mendex` with these arguments.
ProcessResult run_mendex(const std::vector<std::string>& arguments);

/// The setup for that, to be refined.
ProcessSetup mendex_setup(const std::vector<std::string>& arguments);
