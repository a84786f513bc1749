#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <string>

#include "platform/utilities/ut_compare.h"
#include "platform/utilities/ut_numeric_cast.h"
#include "platform/utilities/ut_string.h"

namespace {

TEST(NumericCast, RealsBecomeTheNearestEndOutsideTheRange) {
  const struct { double from; int to; } cases[] = {
      {0.0, 0}, {-0.9, 0}, {2.9, 2}, {-2.9, -2}, {2147483647.0, INT_MAX}, {2147483647.9, INT_MAX}, {2147483648.0, INT_MAX},
      {-2147483648.0, INT_MIN}, {-2147483648.9, INT_MIN}, {-2147483647.9, -INT_MAX}, {1e300, INT_MAX}, {-1e300, INT_MIN},
      {HUGE_VAL, INT_MAX}, {-HUGE_VAL, INT_MIN}, {std::nan(""), 0}, {DBL_MIN, 0}};
  for (const auto& c : cases) EXPECT_EQ(ut_numeric_cast<int>(c.from), c.to) << c.from;
}

// The largest 64-bit and the largest 32-bit numbers have no double (no float) of their own; the next one up must not overflow.
TEST(NumericCast, RealsWhoseTypeCannotHoldTheLimit) {
  EXPECT_EQ(ut_numeric_cast<std::int64_t>(9223372036854775808.0), INT64_MAX);
  EXPECT_EQ(ut_numeric_cast<std::int64_t>(9223372036854774784.0), 9223372036854774784);
  EXPECT_EQ(ut_numeric_cast<std::uint64_t>(18446744073709551616.0), UINT64_MAX);
  EXPECT_EQ(ut_numeric_cast<std::uint64_t>(-0.5), 0u);
  EXPECT_EQ(ut_numeric_cast<int>(2147483648.0f), INT_MAX);
  EXPECT_EQ(ut_numeric_cast<int>(2147483520.0f), 2147483520);
  EXPECT_EQ(ut_numeric_cast<std::uint8_t>(255.9), 255);
  EXPECT_EQ(ut_numeric_cast<std::uint8_t>(256.0f), 255);
  EXPECT_EQ(ut_numeric_cast<std::int8_t>(-128.5), -128);
}

TEST(NumericCast, IntegersAcrossSignAndWidth) {
  EXPECT_EQ(ut_numeric_cast<int>(UINT64_MAX), INT_MAX);
  EXPECT_EQ(ut_numeric_cast<int>(std::uint32_t{2147483648u}), INT_MAX);
  EXPECT_EQ(ut_numeric_cast<int>(INT64_MIN), INT_MIN);
  EXPECT_EQ(ut_numeric_cast<int>(std::int64_t{-2147483649}), INT_MIN);
  EXPECT_EQ(ut_numeric_cast<int>(std::int64_t{-2147483648}), INT_MIN);
  EXPECT_EQ(ut_numeric_cast<std::uint32_t>(-1), 0u);
  EXPECT_EQ(ut_numeric_cast<std::uint64_t>(INT64_MIN), 0u);
  EXPECT_EQ(ut_numeric_cast<std::int64_t>(UINT64_MAX), INT64_MAX);
  EXPECT_EQ(ut_numeric_cast<std::int64_t>(INT64_MIN), INT64_MIN);
  EXPECT_EQ(ut_numeric_cast<std::int8_t>(-200), -128);
  EXPECT_EQ(ut_numeric_cast<std::uint8_t>(200), 200);
  static_assert(ut_numeric_cast<int>(1e10) == INT_MAX, "usable in constants");
}

TEST(Compare, OrdersAndHasNoOrderForNoNumber) {
  EXPECT_EQ(utCompare(1, 2), -1);
  EXPECT_EQ(utCompare(2, 2), 0);
  EXPECT_EQ(utCompare(INT_MAX, INT_MIN), 1);  // a difference would overflow
  EXPECT_EQ(utCompare(0.1, 0.2), -1);         // a difference would be cut to 0
  EXPECT_EQ(utCompare(std::nan(""), 1.0), 0);
}

TEST(String, CutAndPad) {
  const struct { const char* text; int n; const char* cut; const char* padded; } cases[] = {
      {"merge", 3, "mer", "mer"}, {"merge", 5, "merge", "merge"}, {"merge", 7, "merge", "merge  "},
      {"merge", 0, "", ""},       {"merge", -4, "", ""},          {"", 2, "", "  "},
      {"merge", INT_MIN, "", ""}};
  for (const auto& c : cases) {
    EXPECT_STREQ(utString(c.text).cut(c.n).c_str(), c.cut) << c.text << ' ' << c.n;
    EXPECT_STREQ(utString(c.text).pad(c.n).c_str(), c.padded) << c.text << ' ' << c.n;
  }
  EXPECT_STREQ(utString("merge").cut(INT_MAX).c_str(), "merge");
}

// By bytes, shorter first, whatever the locale: bytes above 127 come after all letters.
TEST(String, ComparesByBytes) {
  const char* ascending[] = {"", "Z", "a", "ab", "b", "\xc3\xa4"};
  for (std::size_t i = 0; i < std::size(ascending); ++i) {
    for (std::size_t j = 0; j < std::size(ascending); ++j) {
      EXPECT_EQ(utString(ascending[i]) < utString(ascending[j]), i < j) << i << j;
      EXPECT_EQ(utString(ascending[i]) != utString(ascending[j]), i != j) << i << j;
    }
  }
}

}  // namespace
