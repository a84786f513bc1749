#include "formats/word_scanner.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "formats/number_text.h"

namespace {

bool is_separator(int c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool is_white_space(int c) { return is_separator(c) || c == '\v' || c == '\f'; }

bool is_digit(int c) { return c >= '0' && c <= '9'; }

// Whether c can go on a number; more is let through than a number may hold.
bool goes_on_number(int c) {
  return is_digit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' || c == '+' || c == '-';
}

WordScanner::Word classify(const char* word, std::size_t length) {
  if (length == 6 && std::memcmp(word, "vertex", 6) == 0) return WordScanner::Word::vertex;
  if (length == 5 && std::memcmp(word, "facet", 5) == 0) return WordScanner::Word::facet;
  if (length == 8 && std::memcmp(word, "endfacet", 8) == 0) return WordScanner::Word::endfacet;
  return WordScanner::Word::other;
}

}  // namespace

WordScanner::WordScanner(std::FILE* file) : file_(file), buffer_(new char[buffer_bytes]) {}

// Reads more behind what is left, which moves to the front of the buffer; false at the end of the file.
bool WordScanner::refill() {
  if (file_ended_) return false;
  std::memmove(buffer_.get(), buffer_.get() + at_, filled_ - at_);
  filled_ -= at_;
  at_ = 0;
  const std::size_t got = std::fread(buffer_.get() + filled_, 1, buffer_bytes - filled_, file_);
  file_ended_ = got == 0;
  filled_ += got;
  return got > 0;
}

WordScanner::Word WordScanner::next_word() {
  char word[longest_word];
  std::size_t length = 0;
  int c = get();
  while (is_separator(c)) c = get();
  while (c != EOF && !is_separator(c) && length < longest_word) {
    word[length++] = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    c = get();
  }
  if (c == EOF) at_end_ = true;
  return classify(word, length);
}

void WordScanner::skip_white_space() {
  while (is_white_space(peek())) ++at_;
}

// Whether the number at hand lies in the buffer with the character behind it, or with the end of the file.
bool WordScanner::has_whole_number() {
  if (filled_ - at_ < number_window) refill();
  const std::size_t end = std::min(filled_, at_ + number_window);
  if (end == filled_ && file_ended_) return true;
  for (std::size_t k = at_; k < end; ++k) {
    if (!goes_on_number(static_cast<unsigned char>(buffer_[k]))) return true;
  }
  return false;
}

std::optional<double> WordScanner::next_number() {
  skip_white_space();
  return has_whole_number() || !at_decimal() ? number_in_buffer() : long_number();
}

// Whether what follows can only be a decimal number.
bool WordScanner::at_decimal() const {
  const char* c = buffer_.get() + at_;
  if (*c == '-' || *c == '+') ++c;
  const bool hexadecimal = c[0] == '0' && (c[1] == 'x' || c[1] == 'X');
  return !hexadecimal && (is_digit(*c) || *c == '.');
}

std::optional<double> WordScanner::number_in_buffer() {
  const NumberText number = parse_number(buffer_.get() + at_, buffer_.get() + filled_);
  if (number.value) at_ = static_cast<std::size_t>(number.end - buffer_.get());
  return number.value;
}

namespace {

// A decimal number of any length, taken digit by digit. Digits beyond those that can change a double's rounding only matter by being
// zero or not (767 are enough; D. Gay, "Correctly rounded binary-decimal and decimal-binary conversions", 1990).
class LongDecimal {
 public:
  void add_digit(int digit) {
    any_ = true;
    if (digits_.size() < most_digits) {
      if (digit != 0 || !digits_.empty()) digits_ += static_cast<char>('0' + digit);
      if (digits_.empty() && !point_) return;  // a leading zero
      if (point_) --exponent_;
      return;
    }
    beyond_ |= digit != 0;
    if (!point_) ++exponent_;
  }
  void add_point() { point_ = true; }
  bool has_point() const { return point_; }
  bool any_digit() const { return any_; }
  void add_exponent(long long exponent) { exponent_ += exponent; }

  double value() const {
    if (digits_.empty()) return 0.0;
    const long long scale = std::clamp(exponent_, -2'000'000LL, 2'000'000LL);
    const std::string text = digits_ + (beyond_ ? "1e" + std::to_string(scale - 1) : "e" + std::to_string(scale));
    return *parse_number(text.data(), text.data() + text.size()).value;
  }

 private:
  static constexpr std::size_t most_digits = 800;
  std::string digits_;
  long long exponent_ = 0;
  bool point_ = false;
  bool any_ = false;
  bool beyond_ = false;  // a digit other than zero was left out
};

constexpr long long largest_exponent = 1'000'000'000'000;

}  // namespace

std::optional<double> WordScanner::long_number() {
  const bool negative = peek() == '-';
  if (negative || peek() == '+') ++at_;
  LongDecimal number;
  for (int c = peek(); is_digit(c) || (c == '.' && !number.has_point()); c = peek()) {
    ++at_;
    c == '.' ? number.add_point() : number.add_digit(c - '0');
  }
  if (!number.any_digit()) return std::nullopt;
  if (peek() == 'e' || peek() == 'E') {
    ++at_;
    const bool down = peek() == '-';
    if (down || peek() == '+') ++at_;
    if (!is_digit(peek())) return std::nullopt;
    long long exponent = 0;
    for (; is_digit(peek()); ++at_) exponent = std::min(largest_exponent, exponent * 10 + (buffer_[at_] - '0'));
    number.add_exponent(down ? -exponent : exponent);
  }
  const double value = number.value();
  return negative ? -value : value;
}
