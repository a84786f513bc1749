#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>

/// Reads words and numbers from a text stream through a buffer of its own. Independent of the locale.
class WordScanner {
 public:
  explicit WordScanner(std::FILE* file);

  enum class Word { vertex, facet, endfacet, other };

  /// Reads the next word and classes it. Words are separated by blanks, tabs, CR and LF, and capital letters read as small ones. A
  /// word ends after 99 characters, and the one that follows these is lost. A word that the end of the file ends still counts;
  /// at_end() then holds.
  Word next_word();
  /// Whether the end of the file was met.
  bool at_end() const { return at_end_; }

  /// Reads a number as the conversion "%lf" does: white space is skipped, then the longest start of a number is taken, with sign,
  /// fraction and exponent, or "inf", "infinity", "nan", or hexadecimal; what follows stays. No value when there is none: after a
  /// sign, a point, "0x" or an exponent mark without digits behind it. Numbers of any length are rounded exactly.
  std::optional<double> next_number();

 private:
  static constexpr std::size_t buffer_bytes = std::size_t{64} << 10;
  static constexpr std::size_t longest_word = 99;
  // A number that may be longer than this is read character by character.
  static constexpr std::size_t number_window = 512;

  bool refill();
  int get() { return at_ < filled_ || refill() ? static_cast<unsigned char>(buffer_[at_++]) : EOF; }
  int peek() { return at_ < filled_ || refill() ? static_cast<unsigned char>(buffer_[at_]) : EOF; }
  void skip_white_space();
  bool has_whole_number();
  bool at_decimal() const;
  std::optional<double> number_in_buffer();
  std::optional<double> long_number();

  std::FILE* file_;
  std::unique_ptr<char[]> buffer_;
  std::size_t at_ = 0;
  std::size_t filled_ = 0;
  bool file_ended_ = false;
  bool at_end_ = false;
};
