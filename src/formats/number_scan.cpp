#include "formats/number_scan.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "formats/char_stream.h"

namespace {

bool is_space(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool is_digit(int c) { return c >= '0' && c <= '9'; }

// A letter in lower case; other characters become no letter by it.
int lower(int c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; }

int digit_value(int c, int base) {
  if (is_digit(c)) return c - '0';
  const int letter = lower(c);
  return base == 16 && letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

// The digits of a number, as many as can decide how it is rounded. The value is D * base^power, where D has the digits kept and, when
// any digit cut off was not 0, a little more. 768 decimal digits tell any double and any point half-way between two from its
// neighbours; the trace of a further one then says on which side the number lies.
class Significand {
 public:
  explicit Significand(int base) : base_(base) {}

  void add(int digit, bool is_fraction) {
    if (is_fraction) --power_;
    if (count_ == 0 && digit == 0) return;
    if (count_ < most_digits) {
      digits_[count_++] = "0123456789abcdef"[digit];
    } else {
      ++power_;
      has_rest_ = has_rest_ || digit != 0;
    }
  }

  // Times 10^exponent, or 2^exponent in base 16.
  double value(std::int64_t exponent) {
    if (count_ == 0) return 0.0;
    if (has_rest_) {
      digits_[count_++] = '1';
      --power_;
      has_rest_ = false;
    }
    const int exponents_per_digit = base_ == 16 ? 4 : 1;
    exponent += power_ * exponents_per_digit;
    const std::int64_t magnitude = exponent + std::int64_t{count_} * exponents_per_digit;
    constexpr std::int64_t beyond_any_double = 2000;
    const double out_of_range = magnitude > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    if (magnitude > beyond_any_double || magnitude < -beyond_any_double) return out_of_range;
    return converted(static_cast<int>(exponent), out_of_range);
  }

 private:
  static constexpr int most_digits = 768;

  double converted(int exponent, double out_of_range) {
    const int exponent_begin = count_;
    digits_[exponent_begin] = base_ == 16 ? 'p' : 'e';
    char* end = std::to_chars(digits_ + exponent_begin + 1, digits_ + sizeof digits_, exponent).ptr;
    double value = out_of_range;
    const auto format = base_ == 16 ? std::chars_format::hex : std::chars_format::general;
    const auto result = std::from_chars(digits_, end, value, format);
    return result.ec == std::errc() ? value : out_of_range;
  }

  int base_;
  int count_ = 0;
  bool has_rest_ = false;
  std::int64_t power_ = 0;
  char digits_[most_digits + 16];  // a rest, the exponent's letter, sign and digits follow
};

// Reads any number, character by character.
class NumberScan {
 public:
  explicit NumberScan(CharStream& in) : in_(in) {}

  bool read(double& value) {
    const bool is_negative = in_.peek() == '-';
    if (is_negative || in_.peek() == '+') in_.skip(1);
    double magnitude = 0.0;
    if (!read_magnitude(magnitude)) return false;
    value = std::copysign(magnitude, is_negative ? -1.0 : 1.0);
    return true;
  }

 private:
  bool read_magnitude(double& value) {
    switch (lower(in_.peek())) {
      case 'i':
        value = std::numeric_limits<double>::infinity();
        return take("inf") && (lower(in_.peek()) != 'i' || take("inity"));
      case 'n':
        value = std::numeric_limits<double>::quiet_NaN();
        return take("nan") && (in_.peek() != '(' || take_payload());
      default:
        return read_digits(value);
    }
  }

  bool take(const char* word) {
    for (; *word != '\0'; ++word) {
      if (lower(in_.peek()) != *word) return false;
      in_.skip(1);
    }
    return true;
  }

  // "(...)" with letters, digits and underscores between.
  bool take_payload() {
    in_.skip(1);
    while (is_digit(in_.peek()) || in_.peek() == '_' || (lower(in_.peek()) >= 'a' && lower(in_.peek()) <= 'z')) in_.skip(1);
    return take(")");
  }

  bool read_digits(double& value) {
    bool has_digits = false;
    int base = 10;
    if (in_.peek() == '0') {
      in_.skip(1);
      if (lower(in_.peek()) == 'x') {
        in_.skip(1);
        base = 16;
      } else {
        has_digits = true;
      }
    }
    Significand significand(base);
    has_digits = read_run(significand, base, false) || has_digits;
    if (in_.peek() == '.') {
      in_.skip(1);
      has_digits = read_run(significand, base, true) || has_digits;
    }
    std::int64_t exponent = 0;
    if (!has_digits || !read_exponent(base == 16 ? 'p' : 'e', exponent)) return false;
    value = significand.value(exponent);
    return true;
  }

  bool read_run(Significand& significand, int base, bool is_fraction) {
    bool has_digits = false;
    for (int digit; (digit = digit_value(in_.peek(), base)) >= 0; in_.skip(1)) {
      significand.add(digit, is_fraction);
      has_digits = true;
    }
    return has_digits;
  }

  // An exponent is optional, but its letter demands digits. It saturates far beyond what any number of digits could make up for.
  bool read_exponent(int letter, std::int64_t& exponent) {
    if (lower(in_.peek()) != letter) return true;
    in_.skip(1);
    const bool is_negative = in_.peek() == '-';
    if (is_negative || in_.peek() == '+') in_.skip(1);
    if (!is_digit(in_.peek())) return false;
    constexpr std::int64_t limit = std::int64_t{1} << 58;
    for (; is_digit(in_.peek()); in_.skip(1)) {
      if (exponent < limit / 16) exponent = exponent * 10 + (in_.peek() - '0');
    }
    if (is_negative) exponent = -exponent;
    return true;
  }

  CharStream& in_;
};

const char* skip_digits(const char* p, const char* end) {
  while (p != end && is_digit(*p)) ++p;
  return p;
}

// The usual number: decimal, within the range of double, wholly in view together with the character that ends it. Consumes nothing
// otherwise.
bool scan_usual_number(CharStream& in, double& value) {
  constexpr std::size_t usual_length = 64;
  in.look_ahead(usual_length);
  const char* const end = in.end();
  const char* p = in.begin();
  if (p != end && *p == '+') ++p;
  const char* const number = p;
  if (number == in.begin() && p != end && *p == '-') ++p;
  const char* const digits = p;
  p = skip_digits(p, end);
  std::ptrdiff_t digit_count = p - digits;
  if (p != end && *p == '.') {
    const char* const fraction = p + 1;
    p = skip_digits(fraction, end);
    digit_count += p - fraction;
  }
  if (digit_count == 0 || p == end || lower(*p) == 'x') return false;
  if (lower(*p) == 'e') {
    ++p;
    if (p != end && (*p == '-' || *p == '+')) ++p;
    const char* const exponent = p;
    p = skip_digits(p, end);
    if (p == exponent || p == end) return false;
  }
  const auto result = std::from_chars(number, p, value);
  if (result.ec != std::errc() || result.ptr != p) return false;
  in.skip(static_cast<std::size_t>(p - in.begin()));
  return true;
}

}  // namespace

void skip_space(CharStream& in) {
  while (is_space(in.peek())) in.skip(1);
}

bool scan_number(CharStream& in, double& value) {
  skip_space(in);
  return scan_usual_number(in, value) || NumberScan(in).read(value);
}
