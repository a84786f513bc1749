#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "formats/char_stream.h"

/// The lines of a text file as fgets gives them with a buffer of 100: at most 99 characters, the line end among them. A longer line comes
/// in several parts. A zero byte hides what follows it in its line.
class LineStream {
 public:
  explicit LineStream(std::FILE* file) : in_(file) {}

  /// Moves to the next line, or part of one; false at the end of the file, and the last line then stays in view.
  bool next();
  /// The same, passing over the rest of a line that is longer.
  bool next_whole();
  /// Bytes of the file that were passed so far.
  std::int64_t bytes_passed() const { return in_.passed(); }
  /// The line, up to its first zero byte.
  std::string_view line() const { return {line_, length_}; }

 private:
  static constexpr std::size_t most_characters = 99;

  CharStream in_;
  char line_[most_characters];
  std::size_t length_ = 0;
  bool is_cut_ = false;  // the line goes on behind what is in view
};

/// Takes numbers from a line one after the other, as sscanf does with "%d" and "%lf" in the C locale: white space before a number is
/// passed over, and after one that fails all others fail. Integers beyond the range of int become its ends.
class LineScan {
 public:
  explicit LineScan(std::string_view line) : in_(line.data(), line.size()) {}

  LineScan& integer(int& value);
  LineScan& real(double& value);
  /// How many numbers were taken.
  int count() const { return count_; }

 private:
  CharStream in_;
  bool has_failed_ = false;
  int count_ = 0;
};
