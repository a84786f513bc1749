#include "formats/number_text.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool starts_with(const char* text, const char* end, const char* word) {
  for (; *word != '\0'; ++text, ++word) {
    if (text == end || lower(*text) != *word) return false;
  }
  return true;
}

const NumberText no_number{std::nullopt, nullptr};

// "inf", "infinity" or "nan"; what goes on as "infinity" must end so.
NumberText parse_special(const char* text, const char* end) {
  if (starts_with(text, end, "nan")) return {std::numeric_limits<double>::quiet_NaN(), text + 3};
  if (!starts_with(text, end, "inf")) return no_number;
  if (text + 3 == end || lower(text[3]) != 'i') return {HUGE_VAL, text + 3};
  return starts_with(text, end, "infinity") ? NumberText{HUGE_VAL, text + 8} : no_number;
}

// What a number too large or too small for a double becomes. The sign of its decimal exponent tells which it is.
double out_of_range_value(const char* text, const char* end, bool hexadecimal) {
  long scale = 0;  // position of the leading digit: negative behind the point
  bool point = false;
  bool digits = false;
  const char* at = text;
  for (; at != end; ++at) {
    if (lower(*at) == (hexadecimal ? 'p' : 'e')) break;
    if (*at == '.') {
      point = true;
    } else if (digits || *at != '0') {
      digits = true;
      if (!point) ++scale;
    } else if (point) {
      --scale;
    }
  }
  if (at != end && ++at != end && *at == '-') return 0.0;
  return at == end && scale <= 0 ? 0.0 : HUGE_VAL;
}

NumberText parse_digits(const char* text, const char* end, bool hexadecimal) {
  double value = 0.0;
  const auto format = hexadecimal ? std::chars_format::hex : std::chars_format::general;
  const std::from_chars_result result = std::from_chars(text, end, value, format);
  if (result.ec == std::errc::invalid_argument) return no_number;
  // An exponent mark that was not taken has no digits behind it.
  if (result.ptr != end && lower(*result.ptr) == (hexadecimal ? 'p' : 'e')) return no_number;
  if (result.ec == std::errc::result_out_of_range) value = out_of_range_value(text, result.ptr, hexadecimal);
  return {value, result.ptr};
}

}  // namespace

NumberText parse_number(const char* text, const char* end) {
  const bool negative = text != end && *text == '-';
  if (text != end && (*text == '-' || *text == '+')) ++text;
  if (text == end) return no_number;
  NumberText number = no_number;
  if ((*text >= '0' && *text <= '9') || *text == '.') {
    const bool hexadecimal = *text == '0' && end - text > 1 && lower(text[1]) == 'x';
    number = parse_digits(hexadecimal ? text + 2 : text, end, hexadecimal);
  } else {
    number = parse_special(text, end);
  }
  if (number.value && negative) number.value = -*number.value;
  return number;
}
