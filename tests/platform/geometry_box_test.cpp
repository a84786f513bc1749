#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <random>

#include "platform/geometry/box2.h"
#include "platform/geometry/box3.h"

namespace {

const double nan_value = std::nan("");
const giBox3 unit_box(giPoint3(0, 0, 0), giPoint3(1, 1, 1));

TEST(Box3, AnEmptyBoxMergesAsNothingAndAnswersNothing) {
  giBox3 box = unit_box;
  const giBox3 empty;
  box.merge(empty);
  EXPECT_EQ(box.min(), unit_box.min());
  EXPECT_EQ(box.max(), unit_box.max());
  giBox3 grown;
  grown.grow(5.0);
  EXPECT_TRUE(grown.is_empty());
  EXPECT_EQ(grown.lengths(), giVector3());
  EXPECT_TRUE(grown.point_at(0.5, 0.5, 0.5).invalid());
  EXPECT_FALSE(grown.contains(giPoint3(), HUGE_VAL));
  EXPECT_FALSE(grown.crosses(unit_box, HUGE_VAL));
  EXPECT_FALSE(unit_box.crosses(grown, HUGE_VAL));
  EXPECT_FALSE(grown.crosses_line(giPoint3(), giVector3(1, 0, 0)));
  grown.merge(unit_box);
  EXPECT_EQ(grown.max(), unit_box.max());
  grown.reset();
  EXPECT_TRUE(grown.is_empty());
}

TEST(Box3, HoldsWhatWasMerged) {
  giBox3 box;
  box.merge(giPoint3(1, -2, 3));
  EXPECT_FALSE(box.is_empty());
  EXPECT_EQ(box.min(), box.max());
  box.merge(giPoint3(-1, 5, 3));
  EXPECT_EQ(box.min(), giPoint3(-1, -2, 3));
  EXPECT_EQ(box.max(), giPoint3(1, 5, 3));
  box.merge(giBox3(giPoint3(0, 0, 0), giPoint3(9, 0, 0)));
  EXPECT_EQ(box.min(), giPoint3(-1, -2, 0));
  EXPECT_EQ(box.max(), giPoint3(9, 5, 3));
  EXPECT_EQ(box.lengths(), giVector3(10, 7, 3));
}

// Whatever the order, the box is that of the numbers alone.
TEST(Box3, CoordinatesThatAreNotNumbersAreLeftOutInAnyOrder) {
  giPoint3 points[] = {{nan_value, 1, 1}, {2, nan_value, 5}, {3, 4, nan_value}, {-1, 2, 2}};
  int order[] = {0, 1, 2, 3};
  do {
    giBox3 box;
    giBox2 flat;
    for (int i : order) {
      box.merge(points[i]);
      flat.merge(giPoint2(points[i].x, points[i].y));
    }
    EXPECT_EQ(box.min(), giPoint3(-1, 1, 1)) << order[0] << order[1];
    EXPECT_EQ(box.max(), giPoint3(3, 4, 5)) << order[0] << order[1];
    EXPECT_EQ(flat.min(), giPoint2(-1, 1));
    EXPECT_EQ(flat.max(), giPoint2(3, 4));
  } while (std::next_permutation(std::begin(order), std::end(order)));
}

TEST(Box3, CornersThatAreNotNumbersMakeComparisonsFalse) {
  for (int corner = 0; corner < 2; ++corner) {
    for (int axis = 0; axis < 3; ++axis) {
      giPoint3 low(0, 0, 0);
      giPoint3 high(1, 1, 1);
      (corner == 0 ? low : high)[axis] = nan_value;
      const giBox3 box(low, high);
      EXPECT_FALSE(box.contains(giPoint3(0.5, 0.5, 0.5), 1.0)) << corner << axis;
      EXPECT_FALSE(box.crosses(unit_box, 1.0)) << corner << axis;
      EXPECT_FALSE(unit_box.crosses(box, 1.0)) << corner << axis;
      EXPECT_FALSE(box.crosses_line(giPoint3(0.5, 0.5, 0.5), giVector3(1, 1, 1))) << corner << axis;
      EXPECT_FALSE(box.crosses_line(giPoint3(0.5, 0.5, 0.5), giVector3(0, 0, 0))) << corner << axis;
    }
  }
  EXPECT_FALSE(unit_box.contains(giPoint3(0.5, nan_value, 0.5), 1.0));
  EXPECT_FALSE(unit_box.contains(giPoint3(0.5, 0.5, 0.5), nan_value));
  EXPECT_FALSE(unit_box.crosses_line(giPoint3(0.5, nan_value, 0.5), giVector3(1, 1, 1)));
  EXPECT_FALSE(unit_box.crosses_line(giPoint3(0.5, 0.5, 0.5), giVector3(1, nan_value, 1)));
}

TEST(Box3, GrowMovesEverySideBothWays) {
  giBox3 box = unit_box;
  box.grow(0.5);
  EXPECT_EQ(box.min(), giPoint3(-0.5, -0.5, -0.5));
  EXPECT_EQ(box.max(), giPoint3(1.5, 1.5, 1.5));
  box.grow(-2.0);  // inside out: it holds nothing, and crosses nothing inside the former box
  EXPECT_FALSE(box.contains(giPoint3(0.5, 0.5, 0.5), 0.0));
  EXPECT_FALSE(box.crosses_line(giPoint3(0.5, 0.5, 0.5), giVector3(1, 2, 3)));
}

TEST(Box3, ContainsAndCrossesAreInclusive) {
  EXPECT_TRUE(unit_box.contains(giPoint3(1.25, 0, 0), 0.25));
  EXPECT_FALSE(unit_box.contains(giPoint3(1.2500001, 0, 0), 0.25));
  // Each box grows, so a gap of twice the tolerance is bridged.
  const struct { double at; double tol; bool crosses; } cases[] = {
      {1.0, 0.0, true}, {1.5, 0.25, true}, {1.5, 0.2, false}, {-1.0, 0.0, true}, {-1.5, 0.25, true}, {-1.5, 0.2, false},
      {0.5, -0.25, true}, {0.5, -0.3, false}};
  for (const auto& c : cases) {
    for (int axis = 0; axis < 3; ++axis) {
      giPoint3 low(0, 0, 0);
      low[axis] = c.at;
      const giBox3 other(low, low + giVector3(1, 1, 1));
      EXPECT_EQ(unit_box.crosses(other, c.tol), c.crosses) << axis << ' ' << c.at << ' ' << c.tol;
      EXPECT_EQ(other.crosses(unit_box, c.tol), c.crosses) << axis << ' ' << c.at << ' ' << c.tol;
    }
  }
}

TEST(Box3, CrossesLineKnownCases) {
  const struct { giPoint3 point; giVector3 direction; bool crosses; } cases[] = {
      {{0.5, 0.5, 9}, {0, 0, 1}, true},     {{0.5, 0.5, -9}, {0, 0, 1}, true},   // the line runs both ways
      {{0.5, 1.5, 0}, {1, 0, 0}, false},    {{-5, 1, 1}, {1, 0, 0}, true},       // along an edge
      {{2, 0, 0.5}, {-1, 1, 0}, true},      {{2.5, 0, 0.5}, {-1, 1, 0}, false},  // x + y = 2 meets the edge (1, 1, z)
      {{3, 3, -1}, {1, 1, -1}, true},       {{-3, -3, -3}, {1, 1, 1}, true},     // through one corner; through two
      {{0.5, 0.5, 0.5}, {0, 0, 0}, true},   {{1.5, 0.5, 0.5}, {0, 0, 0}, false},
      {{0, HUGE_VAL, 0}, {1, 0, 0}, false}, {{5, 0.5, 0.5}, {1e-300, 0, 0}, true}};
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(unit_box.crosses_line(cases[i].point, cases[i].direction), cases[i].crosses) << i;
  }
}

// A box of one point, which the line meets exactly: rounding of the parameters along the three axes must not lose it.
TEST(Box3, CrossesLineFindsWhatItOnlyTouches) {
  std::mt19937 random(11);
  std::uniform_int_distribution<int> step(-1000, 1000);
  int effective = 0;
  for (int i = 0; i < 20000; ++i) {
    const giPoint3 corner(step(random), step(random), step(random));
    const giVector3 direction(step(random), step(random), step(random));
    const giBox3 node(corner, corner);
    if (direction.x() == 0 || direction.y() == 0 || direction.z() == 0) continue;
    ++effective;
    giVector3 unit = direction;
    unit /= 3.0 * 7.0;  // not exact in binary, and rounded differently along each axis
    ASSERT_TRUE(node.crosses_line(corner + 17.0 * direction, unit)) << i;
    ASSERT_FALSE(node.crosses_line(corner + 17.0 * direction + giVector3(1e-6, 0, 0), unit)) << i;
  }
  EXPECT_GT(effective, 19000);
}

// The far corner of the last part must be that of the whole, or what lies flat against it would be lost.
TEST(Box3, PointAtIsExactAtBothEnds) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> any(-1.0, 1.0);
  int rounded = 0;
  for (int i = 0; i < 1000; ++i) {
    giBox3 box;
    box.merge(giPoint3(any(random), any(random), any(random)));
    box.merge(giPoint3(any(random), any(random), any(random)));
    EXPECT_EQ(box.point_at(0, 0, 0), box.min());
    EXPECT_EQ(box.point_at(1, 1, 1), box.max());
    rounded += box.min() + box.lengths() != box.max();
  }
  EXPECT_GT(rounded, 100);  // boxes for which the plain formula would miss the far corner
  const giBox3 box(giPoint3(0, 0, 7), giPoint3(4, 8, 7));
  EXPECT_EQ(box.point_at(0.25, 0.5, 0.3), giPoint3(1, 4, 7));
}

TEST(Box2, MergesPointsAndBoxes) {
  giBox2 box;
  EXPECT_TRUE(box.is_empty());
  box.merge(giBox2());
  EXPECT_TRUE(box.is_empty());
  box.merge(giPoint2(1, 2));
  box.merge(giBox2(giPoint2(-1, 3), giPoint2(0, 4)));
  EXPECT_EQ(box.min(), giPoint2(-1, 2));
  EXPECT_EQ(box.max(), giPoint2(1, 4));
  box.reset();
  EXPECT_TRUE(box.is_empty());
}

}  // namespace
