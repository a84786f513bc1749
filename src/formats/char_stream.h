#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

/// The characters of a text file one after the other, with some of those ahead in view. Needs the same memory for every file.
class CharStream {
 public:
  static constexpr std::size_t capacity = 65536;

  explicit CharStream(std::FILE* file) : file_(file) {}
  /// The characters of a text in memory, which must outlive the object.
  CharStream(const char* text, std::size_t length) : file_(nullptr), has_ended_(true), fetched_(static_cast<std::int64_t>(length)), begin_(text), end_(text + length) {}
  CharStream(const CharStream&) = delete;
  CharStream& operator=(const CharStream&) = delete;

  /// Brings at least `wanted` (up to `capacity`) characters into view, unless the file ends before, and returns how many are in view.
  std::size_t look_ahead(std::size_t wanted) {
    if (in_view() < wanted && !has_ended_) refill(wanted);
    return in_view();
  }

  /// The characters in view: begin to begin + look_ahead(...). Valid until the next call of look_ahead or peek.
  const char* begin() const { return begin_; }
  const char* end() const { return end_; }
  void skip(std::size_t n) { begin_ += n; }
  /// How many characters were passed.
  std::int64_t passed() const { return fetched_ - static_cast<std::int64_t>(in_view()); }

  /// The next character as an unsigned value, or -1 at the end of the file.
  int peek() { return look_ahead(1) == 0 ? -1 : static_cast<unsigned char>(*begin_); }

 private:
  std::size_t in_view() const { return static_cast<std::size_t>(end_ - begin_); }
  void refill(std::size_t wanted);

  std::FILE* file_;
  bool has_ended_ = false;
  std::int64_t fetched_ = 0;
  char buffer_[capacity];
  const char* begin_ = buffer_;
  const char* end_ = buffer_;
};
