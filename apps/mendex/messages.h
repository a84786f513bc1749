#pragma once

#include <functional>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

class ProgressBar;

/// The text with control characters replaced, so that a file's name or contents cannot steer the user's terminal.
std::string printable(const std::string& text);

/// Everything the program says beside its result, on standard error: its own errors and warnings, and what the library
/// prints.
///
/// While an object of this class lives, the library's output comes here line by line. Lines that report damage (they
/// begin with an asterisk or with " WARNING:") become warnings; the others are shown only on request.
class Messages : private std::streambuf {
 public:
  explicit Messages(ProgressBar& progress);
  ~Messages() override;

  /// Show all that the library prints.
  void set_verbose() { is_verbose_ = true; }

  /// Hands each line that the library prints, and that is no warning, to a listener first; it is shown only when the listener returns
  /// false. Null: there is none.
  void set_listener(std::function<bool(const std::string& line)> listener) { listener_ = std::move(listener); }

  /// Names the file that the next messages are about.
  void set_file(const std::string& name) { file_ = name; }
  const std::string& file() const { return file_; }

  void error(const std::string& text);
  void warning(const std::string& text);

  /// The warnings since the start, or since they were last forgotten.
  const std::vector<std::string>& warnings() const { return warnings_; }
  void forget_warnings() { warnings_.clear(); }

 private:
  int overflow(int c) override;
  void put_line();
  void print(const char* kind, const std::string& text);

  ProgressBar& progress_;
  std::ostream stream_;
  std::function<bool(const std::string&)> listener_;
  std::string file_;
  std::string line_;
  std::vector<std::string> warnings_;
  bool is_verbose_ = false;
};
