#pragma once

#include <cstdio>
#include <string>

/// Text on its way to a stream, in chunks. Numbers are written as printf writes them in the C locale, whatever the locale. Errors of the
/// stream show in `has_failed` once the text reached it.
class TextOut {
 public:
  explicit TextOut(std::FILE* file);
  TextOut(const TextOut&) = delete;
  TextOut& operator=(const TextOut&) = delete;
  ~TextOut() { flush(); }

  TextOut& operator<<(const char* text) {
    text_ += text;
    return flush_when_full();
  }
  /// "%d", right-aligned in `width` columns.
  TextOut& integer(int value, int width = 0);
  /// "%.<decimals>f", right-aligned in `width` columns.
  TextOut& fixed(double value, int width, int decimals);
  /// "%e": six decimals and an exponent.
  TextOut& scientific(double value);

  /// Hands what is collected to the stream.
  void flush();
  bool has_failed() const { return has_failed_; }

 private:
  TextOut& aligned(const char* digits, std::size_t length, int width);
  TextOut& flush_when_full() {
    if (text_.size() >= chunk_bytes) flush();
    return *this;
  }

  static constexpr std::size_t chunk_bytes = std::size_t{64} << 10;

  std::FILE* file_;
  bool has_failed_ = false;
  std::string text_;
};
