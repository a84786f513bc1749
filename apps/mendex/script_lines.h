#pragma once

#include <optional>
#include <string>

/// The lines of a script, from a file, a pipe or standard input, read with bounded memory whatever is in it.
class ScriptLines {
 public:
  /// Opens the file; "-" stands for standard input. Throws when that fails, or on interruption.
  explicit ScriptLines(const std::string& path);
  ScriptLines(const ScriptLines&) = delete;
  ScriptLines& operator=(const ScriptLines&) = delete;
  ~ScriptLines();

  /// The next line, without its end; none at the end of the script. Throws when it cannot be read, when a line is longer than
  /// `longest_line` or holds a zero byte, or on interruption; after that there are no more lines.
  std::optional<std::string> next();

  /// The number of the line that `next` gave or failed at, counted from 1.
  int number() const { return number_; }

  static constexpr std::size_t longest_line = 64 * 1024;

 private:
  bool read_more();
  [[noreturn]] void give_up(const char* why);

  int file_ = -1;
  std::string piece_;
  std::size_t at_ = 0;
  int number_ = 0;
  bool is_at_end_ = false;
};
