#include "formats/offset.h"

#include <gtest/gtest.h>

#include "mesh/tri_block.h"
#include "support/random.h"

// The steps are 1, 2 and 5 times powers of ten. A value that is a step of 2 or 5 goes to the next one; a power of ten stays.
TEST(Offset, IsRoundedUpToTheNextStep) {
  const std::pair<double, double> cases[] = {{0.3, 0.5}, {7, 10},    {12, 20},  {1, 1},     {10, 10},   {5, 10},
                                             {2, 5},     {0.5, 1},   {0.1, 0.2}, {20, 50},  {1.5, 2},   {4.9, 5},
                                             {100, 100}, {101, 200}, {999, 1000}, {50, 100}, {0.05, 0.1}, {1e-3, 2e-3}};
  for (const auto& [value, expected] : cases) EXPECT_DOUBLE_EQ(round_offset_up(value), expected) << "of " << value;
}

TEST(Offset, IsNeverBelowTheValueNorBeyondTwoAndAHalfTimesIt) {
  Random random(11);
  for (int k = 0; k < 20000; ++k) {
    const double value = std::pow(10.0, random.between(-300.0, 300.0));
    const double offset = round_offset_up(value);
    ASSERT_GE(offset, value);
    ASSERT_LE(offset, value * 2.5 * (1.0 + 1e-12));
  }
}

TEST(Offset, EndsForTheSmallestAndLargestNumbers) {
  const double smallest = std::numeric_limits<double>::denorm_min();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_GE(round_offset_up(smallest), smallest);
  EXPECT_LE(round_offset_up(smallest), 10 * smallest);
  EXPECT_EQ(round_offset_up(std::numeric_limits<double>::max()), infinity);
  EXPECT_EQ(round_offset_up(infinity), infinity);
  EXPECT_GT(round_offset_up(std::numeric_limits<double>::quiet_NaN()), 0.0);
}

TEST(Offset, MovesOnlyAlongAxesThatBeginBelowZero) {
  trTriBlock mesh;
  mesh.set_node(1, giPoint3(-0.3, 2, -7));
  mesh.set_node(2, giPoint3(1, 3, 1));
  const giVector3 offset = positive_offset(mesh);
  EXPECT_EQ(offset.x(), 0.5);
  EXPECT_EQ(offset.y(), 0.0);
  EXPECT_EQ(offset.z(), 10.0);
  EXPECT_NEAR(offset.length(), std::sqrt(100.25), 1e-12) << "the length must not be one cached before the components changed";
  trTriBlock empty;
  const giVector3 none = positive_offset(empty);
  EXPECT_EQ(none.x() + none.y() + none.z(), 0.0);
}
