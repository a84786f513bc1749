#include "formats/text_out.h"

#include <charconv>

TextOut::TextOut(std::FILE* file) : file_(file) { text_.reserve(chunk_bytes + 1024); }

void TextOut::flush() {
  if (file_ == nullptr || std::fwrite(text_.data(), 1, text_.size(), file_) != text_.size()) has_failed_ = true;
  text_.clear();
}

TextOut& TextOut::aligned(const char* digits, std::size_t length, int width) {
  const std::size_t columns = static_cast<std::size_t>(width);
  if (length < columns) text_.append(columns - length, ' ');
  text_.append(digits, length);
  return flush_when_full();
}

TextOut& TextOut::integer(int value, int width) {
  char digits[16];
  const char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  return aligned(digits, static_cast<std::size_t>(end - digits), width);
}

TextOut& TextOut::fixed(double value, int width, int decimals) {
  char digits[400];  // the largest double has 309 digits before the point
  const char* const end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals).ptr;
  return aligned(digits, static_cast<std::size_t>(end - digits), width);
}

TextOut& TextOut::scientific(double value) {
  char digits[32];
  const char* const end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific, 6).ptr;
  text_.append(digits, static_cast<std::size_t>(end - digits));
  return flush_when_full();
}
