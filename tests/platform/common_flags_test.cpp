#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

#include "platform/common/binary_flags.h"

namespace {

TEST(BinaryFlags, BitsBeyondTheLengthReadClear) {
  ccBinaryFlags flags(3);
  flags.set(2);
  for (int i : {-1, INT_MIN, 3, 63, 64, INT_MAX}) EXPECT_FALSE(flags.test(i)) << i;
  EXPECT_TRUE(flags.test(2));
}

// A bit that was cut off must not come back when the row is extended again, within its word or beyond.
TEST(BinaryFlags, CutBitsStayClear) {
  for (int cut : {0, 1, 10, 63, 64, 65, 127, 128, 129}) {
    ccBinaryFlags flags(200);
    for (int i = 0; i < 200; ++i) flags.set(i);
    flags.set_length(cut);
    EXPECT_EQ(flags.count(), cut);
    flags.set_length(200);
    EXPECT_EQ(flags.count(), cut);
    EXPECT_EQ(flags.test(cut), false);
  }
}

TEST(BinaryFlags, IndexesThatNoRowCanHoldAreIgnored) {
  ccBinaryFlags flags;
  flags.set(-1);
  flags.set(INT_MIN);
  flags.set(INT_MAX);
  flags.set(1000, false);
  EXPECT_EQ(flags.length(), 0);
  flags.set_length(-5);
  EXPECT_EQ(flags.length(), 0);
}

TEST(BinaryFlags, RandomOperationsMatchAVector) {
  std::mt19937 random(21);
  ccBinaryFlags flags;
  std::vector<bool> oracle;
  for (int step = 0; step < 20000; ++step) {
    const int i = static_cast<int>(random() % 300);
    const auto at = static_cast<std::size_t>(i);
    switch (random() % 16) {
      case 0: flags.set_length(i); oracle.resize(at); break;
      case 1: flags.clear_all(); oracle.assign(oracle.size(), false); break;
      case 2: case 3: case 4:
        flags.set(i, false);
        if (at < oracle.size()) oracle[at] = false;
        break;
      default:
        flags.set(i);
        if (at >= oracle.size()) oracle.resize(at + 1);
        oracle[at] = true;
    }
    ASSERT_EQ(flags.length(), static_cast<int>(oracle.size()));
    int set = 0;
    for (std::size_t k = 0; k < oracle.size(); ++k) {
      set += oracle[k];
      if (flags.test(static_cast<int>(k)) != oracle[k]) FAIL() << "bit " << k << " after step " << step;
    }
    ASSERT_EQ(flags.count(), set);
  }
}

}  // namespace
