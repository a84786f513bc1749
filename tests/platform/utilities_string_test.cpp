#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "platform/utilities/ut_string.h"

namespace {

TEST(String, ANullPointerReadsAsTheEmptyText) {
  const char* none = nullptr;
  const utString text(none);
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(text.length(), 0);
  EXPECT_STREQ(text.c_str(), "");
  EXPECT_EQ(text, utString());
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

TEST(String, ConcatenationLeavesTheOperandsAlone) {
  utString name("part");
  const utString file = name + "." + utString("stl");
  EXPECT_EQ(file, "part.stl");
  EXPECT_EQ(file.length(), 8);
  EXPECT_EQ(name, "part");
  name += name;
  EXPECT_EQ(name, "partpart");
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
