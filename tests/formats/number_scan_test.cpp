#include "formats/number_scan.h"

#include <gtest/gtest.h>

#include <cstring>

#include "formats/char_stream.h"
#include "formats/format_files.h"
#include "formats/word_scanner.h"
#include "oracles/literal_scanf.h"
#include "support/random.h"

namespace {

// What came of one conversion: whether it succeeded, the bits of the value, the character that follows (-1: none).
struct Conversion {
  bool is_number;
  double value;
  int next;

  bool operator==(const Conversion& other) const {
    if (is_number != other.is_number) return false;
    return !is_number || (std::memcmp(&value, &other.value, sizeof value) == 0 && next == other.next) ||
           (std::isnan(value) && std::isnan(other.value) && std::signbit(value) == std::signbit(other.value) && next == other.next);
  }
};

std::ostream& operator<<(std::ostream& out, const Conversion& c) {
  return out << (c.is_number ? "number " : "no number ") << std::hexfloat << c.value << std::defaultfloat << ", then " << c.next;
}

Conversion scanned(const std::string& text) {
  std::FILE* file = stream_on(text);
  CharStream in(file);
  Conversion c{false, 0.0, 0};
  c.is_number = scan_number(in, c.value);
  c.next = in.peek();
  std::fclose(file);
  return c;
}

Conversion literally_scanned(const std::string& text) {
  std::FILE* file = stream_on(text);
  Conversion c{false, 0.0, 0};
  c.is_number = literal_scan_number(file, c.value);
  c.next = std::fgetc(file);
  std::fclose(file);
  return c;
}

std::vector<std::string> words_of(const std::string& text) {
  std::FILE* file = stream_on(text);
  WordScanner scanner(file);
  std::vector<std::string> words;
  do {
    words.emplace_back(scanner.next_word());
  } while (!scanner.has_ended());
  std::fclose(file);
  return words;
}

std::string letters(int n) { return std::string(static_cast<std::size_t>(n), 'a'); }

// A number, something close to one, or junk, with more odd cases than chance would bring.
class TokenMaker {
 public:
  explicit TokenMaker(std::uint64_t seed) : random_(seed) {}

  std::string next() {
    std::string token = pick({"", "", "", "-", "+", "--", "+-"});
    if (random_.one_in(12)) return cut(token + pick({"inf", "Infinity", "NaN", "nan(1)", "nan(ab_9)", "INFINIT", "in", "nan(", "nan( )"}) + tail());
    const bool is_hex = random_.one_in(5);
    if (is_hex) token += pick({"0x", "0X"});
    token += digits(is_hex) + pick({"", "", ".", "..", "."}) + digits(is_hex);
    if (random_.one_in(2)) token += pick(is_hex ? Choices{"p", "P"} : Choices{"e", "E"}) + pick({"", "+", "-", "-"}) + exponent(is_hex);
    return cut(token + tail());
  }

 private:
  using Choices = std::vector<std::string>;

  std::string pick(const Choices& choices) { return choices[static_cast<std::size_t>(random_.below(static_cast<int>(choices.size())))]; }

  std::string digits(bool is_hex) {
    std::string text;
    const int n = random_.one_in(8) ? random_.below(60) : random_.below(9);
    for (int k = 0; k < n; ++k) text += "0123456789abcdefABCDEF"[random_.below(is_hex ? 22 : 10)];
    return random_.one_in(10) ? std::string(static_cast<std::size_t>(random_.below(30)), '0') + text : text;
  }

  // Often near the ends of the range of double.
  std::string exponent(bool is_hex) {
    if (random_.one_in(10)) return pick({"", "0005", "99999999999999999999"});
    const int edge = is_hex ? random_.between(960, 1120) : random_.between(290, 345);
    return std::to_string(random_.one_in(2) ? edge : random_.below(30));
  }

  std::string tail() { return random_.one_in(3) ? pick({" 2", "abc", ".5", "e5", "-1", ",5", "x1", "\n", "p3", "(", "%"}) : ""; }

  std::string cut(const std::string& token) {
    return random_.one_in(6) ? token.substr(0, static_cast<std::size_t>(random_.below(static_cast<int>(token.size()) + 1))) : token;
  }

  Random random_;
};

}  // namespace

TEST(NumberScan, AgreesWithTheLiteralConversionOnRandomTokens) {
  TokenMaker tokens(2024);
  int numbers = 0;
  int failures = 0;
  for (int k = 0; k < 12000; ++k) {
    const std::string token = tokens.next();
    const Conversion expected = literally_scanned(token);
    ASSERT_EQ(scanned(token), expected) << '"' << token << '"';
    ++(expected.is_number ? numbers : failures);
  }
  EXPECT_GT(numbers, 6000);
  EXPECT_GT(failures, 1000);
}

// 1 + 2^-53 lies half-way between two doubles and goes to the even one, 1; the smallest digit behind it, however far, decides for
// the upper one. 1 + 3 * 2^-53 goes up to 1 + 2^-51 either way.
TEST(NumberScan, RoundsNumbersOfAnyLengthExactly) {
  const double above_one = std::nextafter(1.0, 2.0);
  const std::string half = "1.00000000000000011102230246251565404236316680908203125";
  const auto zeros = [](int n) { return std::string(static_cast<std::size_t>(n), '0'); };
  const std::pair<std::string, double> cases[] = {
      {half, 1.0},
      {half + zeros(700), 1.0},
      {half + zeros(700) + "1", above_one},
      {half + zeros(100000), 1.0},
      {half + zeros(100000) + "1", above_one},
      {half + zeros(100000) + "1e-308", std::strtod((half + "1e-308").c_str(), nullptr)},
      {"-" + half + zeros(100000) + "1", -above_one},
      {"0." + zeros(100000) + "1e100001", 1.0},
      {"1" + zeros(100000) + "e-100000", 1.0},
      {zeros(100000) + "12.5", 12.5},
      {"0." + zeros(100000) + "1", 0.0},
      {"1" + zeros(100000), HUGE_VAL},
      {"1e" + zeros(100000) + "3", 1000.0},
      {"1e" + std::string(100000, '9'), HUGE_VAL},
      {"1e-" + std::string(100000, '9'), 0.0},
      {"0e" + std::string(100000, '9'), 0.0},
      {"0x1.00000000000008" + zeros(100000), 1.0},
      {"0x1.00000000000008" + zeros(100000) + "1", above_one},
      {"0x1" + zeros(100000) + "p-400000", 1.0},
      {"0x0." + zeros(100000) + "1p400004", 1.0},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(scanned(text), (Conversion{true, expected, -1})) << text.substr(0, 70) << "... of " << text.size();
    EXPECT_EQ(scanned("\n " + text + " 2"), (Conversion{true, expected, ' '})) << text.substr(0, 70) << "... of " << text.size();
  }
  EXPECT_EQ(scanned("nan(" + std::string(100000, 'a') + ")x"), (Conversion{true, NAN, 'x'}));
}

// Numbers that lie half-way between neighbours all over the range, subnormals included, with and without a trace behind them.
TEST(NumberScan, RoundsHalfWayCasesToEven) {
  Random random(5);
  for (int k = 0; k < 2000; ++k) {
    std::uint64_t bits = random.bits() & 0x7fefffffffffffffu;
    if (k % 4 == 0) bits &= 0x001fffffffffffffu;
    double low = 0.0;
    std::memcpy(&low, &bits, sizeof low);
    const double high = std::nextafter(low, HUGE_VAL);
    if (high == HUGE_VAL) continue;
    char text[1400];
    // long double holds the point half-way exactly, and glibc prints it exactly.
    std::snprintf(text, sizeof text, "%.1100Le", (static_cast<long double>(low) + static_cast<long double>(high)) / 2);
    std::string half(text);
    const double even = (bits & 1) == 0 ? low : high;
    ASSERT_EQ(scanned(half), (Conversion{true, even, -1})) << low;
    half.insert(half.find('e'), std::string(static_cast<std::size_t>(random.below(2000)), '0') + "1");
    ASSERT_EQ(scanned(half), (Conversion{true, high, -1})) << low;
  }
}

// The buffer's end may fall on any character of a number.
TEST(NumberScan, NumbersMayLieAcrossTheEndOfTheBuffer) {
  const std::string tokens[] = {"-123.456e-07,", "0x1.8p-3,", "-infinity,", "nan(abc),",
                                "1" + std::string(100, '0') + "e-100,"};
  for (const std::string& token : tokens) {
    const Conversion expected = literally_scanned(token);
    ASSERT_EQ(expected.next, ',');
    const int capacity = static_cast<int>(CharStream::capacity);
    for (int before = capacity - 20; before <= capacity + 2; ++before) {
      ASSERT_EQ(scanned(std::string(static_cast<std::size_t>(before), ' ') + token), expected) << token << " after " << before;
    }
  }
}

// Of a word of 100 characters or more the 100th is lost, and the next word begins behind it. When the 100th is a blank,
// that is lost.
TEST(WordScanner, CutsWordsAt99CharactersAndLosesThe100th) {
  struct Case {
    std::string text;
    std::vector<std::string> words;
  };
  const Case cases[] = {
      {letters(99) + " facet", {letters(99), "facet"}},
      {letters(99) + "facet", {letters(99), "acet"}},
      {letters(99) + "xfacet", {letters(99), "facet"}},
      {letters(99) + "x facet", {letters(99), "facet"}},
      {letters(99) + "  facet", {letters(99), "facet"}},
      {letters(99), {letters(99)}},
      {letters(100), {letters(99), ""}},
      {letters(101), {letters(99), "a"}},
      {letters(250), {letters(99), letters(99), letters(50)}},
  };
  for (const Case& c : cases) EXPECT_EQ(words_of(c.text), c.words) << c.text;
}

// The buffer's end may fall on any character of a word, its cut included.
TEST(WordScanner, WordsMayLieAcrossTheEndOfTheBuffer) {
  const int capacity = static_cast<int>(CharStream::capacity);
  for (int before = capacity - 130; before <= capacity + 5; ++before) {
    const std::string blanks(static_cast<std::size_t>(before), ' ');
    ASSERT_EQ(words_of(blanks + letters(99) + "xfacet vertex"),
              (std::vector<std::string>{letters(99), "facet", "vertex"}))
        << before;
  }
}
