#pragma once

#include <cstdint>
#include <string_view>

#include "formats/char_stream.h"

/// Splits a text file into words and numbers.
class WordScanner {
 public:
  explicit WordScanner(std::FILE* file) : in_(file) {}

  /// The next word, as it stands in the file; valid until the next call. Blank, tab, CR and LF separate words, and leading ones are
  /// skipped. A word is cut at 99 characters: the 100th is lost, the next word begins after it. Empty when no word is left.
  std::string_view next_word();

  /// Whether the last word was ended by the end of the file.
  bool has_ended() const { return has_ended_; }

  /// How many characters were passed.
  std::int64_t passed() const { return in_.passed(); }

  /// Reads a number at the current place; see scan_number.
  bool next_number(double& value);

 private:
  void skip_separators();

  CharStream in_;
  bool has_ended_ = false;
};
