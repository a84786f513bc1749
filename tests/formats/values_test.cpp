// Numbers in files. In binary ones: layout of every type, what a short transfer leaves behind. In text: written as
// printf writes them, read as sscanf reads them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "formats/bin_read.h"
#include "formats/bin_write.h"
#include "formats/format_files.h"
#include "formats/line_stream.h"
#include "formats/text_out.h"
#include "support/random.h"

namespace {

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

constexpr int rounds = 40000;

}  // namespace

// The least significant byte comes first.
TEST(BinValues, ComeBackAsTheyWereWritten) {
  const std::string bytes = written_to_stream([](std::FILE* file) {
    trBinWrite out(file);
    out.write_char('\x81');
    out.write_ushort(0xfedc);
    out.write_int(-2);
    out.write_ulong(0xfedcba98u);
    out.write_float(-1.5f);
    out.write_double(-1.5);
    EXPECT_EQ(out.b_write("abc", 2), 0);
    EXPECT_EQ(out.error, 0);
  });
  EXPECT_EQ(bytes, std::string("\x81\xdc\xfe\xfe\xff\xff\xff\x98\xba\xdc\xfe\0\0\xc0\xbf\0\0\0\0\0\0\xf8\xbf"
                               "ab",
                               25));
  std::FILE* file = stream_on(bytes);
  trBinRead in(file);
  EXPECT_EQ(in.read_char(), '\x81');
  EXPECT_EQ(in.read_ushort(), 0xfedc);
  EXPECT_EQ(in.read_int(), -2);
  EXPECT_EQ(in.read_ulong(), 0xfedcba98u);
  EXPECT_EQ(in.read_float(), -1.5f);
  EXPECT_EQ(in.read_double(), -1.5);
  char tail[2];
  EXPECT_EQ(in.b_read(tail, 2), 0);
  EXPECT_EQ(std::string(tail, 2), "ab");
  EXPECT_EQ(in.error, 0);
  std::fclose(file);
}

// One byte short of each type, all bits set: what came must not show in the value.
TEST(BinValues, AShortReadYieldsZeroAndSetsAnErrorThatStays) {
  const auto check = [](int bytes_there, const std::function<double(trBinRead&)>& read) {
    const std::string bytes(static_cast<std::size_t>(bytes_there), '\xff');
    std::FILE* file = stream_on(bytes);
    trBinRead in(file);
    EXPECT_EQ(read(in), 0.0);
    EXPECT_EQ(in.error, 1);
    std::rewind(file);
    in.b_read(nullptr, 0);
    EXPECT_EQ(in.error, 1) << "a transfer that succeeds must not clear it";
    std::fclose(file);
  };
  check(0, [](trBinRead& in) { return in.read_char(); });
  check(1, [](trBinRead& in) { return in.read_ushort(); });
  check(3, [](trBinRead& in) { return in.read_int(); });
  check(3, [](trBinRead& in) { return in.read_ulong(); });
  check(3, [](trBinRead& in) { return in.read_float(); });
  check(7, [](trBinRead& in) { return in.read_double(); });
  char room[4];
  check(3, [&](trBinRead& in) { return in.b_read(room, 4) != 0 ? 0.0 : 1.0; });
}

TEST(TextOut, NumbersAreThoseOfPrintf) {
  Random random(2);
  std::string expected;
  const std::string written = written_to_stream([&](std::FILE* file) {
    TextOut out(file);
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
