// Numbers in text files: written as printf writes them, read as sscanf reads them, line by line as fgets gives them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "formats/format_files.h"
#include "formats/line_stream.h"
#include "formats/text_out.h"
#include "support/random.h"

namespace {

std::string text_of(const std::function<void(TextOut&)>& write) {
  char* buffer = nullptr;
  std::size_t size = 0;
  std::FILE* file = open_memstream(&buffer, &size);
  {
    TextOut out(file);
    write(out);
  }
  std::fclose(file);
  const std::string text(buffer, size);
  std::free(buffer);
  return text;
}

// Any double: bits at random, decimals near a half of their last place, odd ones.
double any_double(Random& random) {
  switch (random.below(4)) {
    case 0: {
      const std::uint64_t bits = random.bits();
      double value = 0;
      std::memcpy(&value, &bits, sizeof value);
      return value;
    }
    case 1: return random.between(-2000000, 2000000) / 200000.0 * std::pow(10.0, random.between(-3, 3));
    case 2: return std::nextafter(random.between(-2000000, 2000000) / 20000.0, random.between(-1, 1) * 1e9);
    default: {
      constexpr double odd[] = {0.0, -0.0, 5e-324, -5e-6, 0.5, 1e15, 999999.999995, 9.9999995, DBL_MAX, -DBL_MAX, DBL_MIN, INFINITY, -INFINITY, NAN, -NAN};
      return odd[random.below(static_cast<int>(std::size(odd)))];
    }
  }
}

constexpr int rounds = 100000;

}  // namespace

TEST(TextOut, NumbersAreThoseOfPrintf) {
  Random random(2);
  std::string expected;
  const std::string written = text_of([&](TextOut& out) {
    char text[1100];
    for (int k = 0; k < rounds; ++k) {
      const double value = any_double(random);
      const int number = static_cast<int>(random.bits());
      std::snprintf(text, sizeof text, "%19.5f%16.4lf %e %d%8d%5d\n", value, value, value, number, number, number % 1000);
      expected += text;
      out.fixed(value, 19, 5).fixed(value, 16, 4) << " ";
      (out.scientific(value) << " ").integer(number).integer(number, 8).integer(number % 1000, 5) << "\n";
    }
  });
  EXPECT_TRUE(are_same(written, expected));
}

TEST(TextOut, AStreamThatTakesNoMoreIsNoticed) {
  std::FILE* full = std::fopen("/dev/full", "w");
  if (full == nullptr) GTEST_SKIP() << "there is no device that is always full";
  std::setvbuf(full, nullptr, _IONBF, 0);
  TextOut out(full);
  out << "text";
  EXPECT_FALSE(out.has_failed());
  out.flush();
  EXPECT_TRUE(out.has_failed());
  std::fclose(full);
}

TEST(LineScan, TakesWhatSscanfTakes) {
  Random random(6);
  const char* const tokens[] = {"1", "-2", "+3", "0", "007", "-", "+", "x", "1.5", ".5", "5.", ".", "1e3", "-1.25E-2", "1e400", "1e-400", "inf",
                                "-Infinity", "nan", "0x1F", "0x1.8p1", "2147483647", "-2147483648", "12ab", "1,5", "3-4", "5+6", "7.8.9", "--1"};
  const char* const spaces[] = {" ", "  ", "\t", "\r\n", "\v\f ", " "};
  int wholes = 0;
  for (int k = 0; k < rounds; ++k) {
    std::string line;
    for (int parts = random.between(0, 5); parts > 0; --parts) {
      line += spaces[random.below(static_cast<int>(std::size(spaces)))];
      if (random.one_in(2)) {
        line += tokens[random.below(static_cast<int>(std::size(tokens)))];
      } else {
        char number[64];
        std::snprintf(number, sizeof number, "%.*f", random.below(6), random.between(-9999.0, 9999.0));
        line += number;
      }
    }
    line += random.one_in(3) ? "" : "\n";
    int i = -7, expected_i = -7;
    double d[3] = {-7, -7, -7}, expected_d[3] = {-7, -7, -7};
    const bool has_integer = random.one_in(2);
    LineScan scan(line);
    int expected = 0;
    if (has_integer) {
      scan.integer(i).real(d[0]).real(d[1]).real(d[2]);
      expected = std::sscanf(line.c_str(), "%d %lf %lf %lf", &expected_i, &expected_d[0], &expected_d[1], &expected_d[2]);
    } else {
      scan.real(d[0]).real(d[1]).real(d[2]);
      expected = std::sscanf(line.c_str(), "%lf %lf %lf", &expected_d[0], &expected_d[1], &expected_d[2]);
    }
    ASSERT_EQ(scan.count(), std::max(expected, 0)) << testing::PrintToString(line);
    ASSERT_EQ(i, expected_i) << testing::PrintToString(line);
    for (int v = 0; v < 3; ++v) ASSERT_TRUE(d[v] == expected_d[v] || (std::isnan(d[v]) && std::isnan(expected_d[v]))) << testing::PrintToString(line);
    wholes += expected >= 3;
  }
  EXPECT_GE(wholes, rounds / 10);
}

TEST(LineScan, IntegersBeyondRangeBecomeItsEnds) {
  const struct {
    const char* text;
    int value;
  } cases[] = {{"2147483648", INT_MAX}, {"-2147483649", INT_MIN}, {"99999999999999999999999999", INT_MAX}, {"-99999999999999999999999999", INT_MIN}};
  for (const auto& c : cases) {
    int value = 0;
    EXPECT_EQ(LineScan(c.text).integer(value).count(), 1);
    EXPECT_EQ(value, c.value) << c.text;
  }
}

TEST(LineStream, LinesAreThoseOfFgets) {
  Random random(12);
  int cut = 0;
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    for (int lines = random.between(0, 6); lines > 0; --lines) {
      text += std::string(static_cast<std::size_t>(random.one_in(3) ? random.between(95, 210) : random.below(20)), 'a');
      if (random.one_in(8)) text += std::string("\0b", 2);
      if (lines > 1 || random.one_in(2)) text += "\n";
    }
    if (text.empty()) continue;
    std::FILE* file = stream_on(text);
    std::FILE* same = stream_on(text);
    LineStream lines(file);
    char buffer[100];
    while (std::fgets(buffer, sizeof buffer, same) != nullptr) {
      ASSERT_TRUE(lines.next());
      ASSERT_EQ(lines.line(), buffer);
      ASSERT_EQ(lines.bytes_passed(), std::ftell(same));
      cut += std::strlen(buffer) == 99;
    }
    ASSERT_FALSE(lines.next());
    std::fclose(file);
    std::fclose(same);
  }
  EXPECT_GE(cut, 1000);
}
