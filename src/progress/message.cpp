#include "progress/message.h"

#include <locale.h>

#include <cstdarg>
#include <ostream>

namespace {

// Numbers are formatted in the C locale while it lives, in this thread.
class PlainNumbers {
 public:
  PlainNumbers() : former_(c_locale() == locale_t() ? locale_t() : uselocale(c_locale())) {}
  PlainNumbers(const PlainNumbers&) = delete;
  PlainNumbers& operator=(const PlainNumbers&) = delete;
  ~PlainNumbers() {
    if (former_ != locale_t()) uselocale(former_);
  }

 private:
  static locale_t c_locale() {
    static const locale_t made = newlocale(LC_ALL_MASK, "C", locale_t());
    return made;
  }
  locale_t former_;
};

std::string format_list(const char* format, std::va_list values) {
  const PlainNumbers plain;
  char text[512];
  std::va_list again;
  va_copy(again, values);
  const int length = std::vsnprintf(text, sizeof text, format, values);
  std::string result;
  if (length > 0 && static_cast<std::size_t>(length) < sizeof text) {
    result.assign(text, static_cast<std::size_t>(length));
  } else if (length > 0) {
    result.resize(static_cast<std::size_t>(length));
    std::vsnprintf(&result[0], result.size() + 1, format, again);
  }
  va_end(again);
  return result;
}

}  // namespace

MessageLine::~MessageLine() { out_ << '\n'; }

MessageLine& MessageLine::text(const char* text) { return raw(tr_brnknls(text)); }

MessageLine& MessageLine::raw(const char* characters) {
  out_ << characters;
  return *this;
}

MessageLine& MessageLine::number(std::int64_t number) { return raw(std::to_string(number).c_str()); }

MessageLine& MessageLine::number(double number) { return raw(format_text("%g", number).c_str()); }

void print_message(const char* text) { MessageLine().text(text); }

void print_message(const char* before, std::int64_t number, const char* after) {
  MessageLine().text(before).number(number).text(after);
}

std::string format_text(const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  const std::string text = format_list(format, values);
  va_end(values);
  return text;
}

void print_text(const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  const std::string text = format_list(format, values);
  va_end(values);
  tr_out() << text;
}

void write_text(std::FILE* file, const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  const PlainNumbers plain;
  std::vfprintf(file, format, values);
  va_end(values);
}
