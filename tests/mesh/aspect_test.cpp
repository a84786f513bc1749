// Shape measures of triangles and the choice of a diagonal.

#include <gtest/gtest.h>

#include <cfloat>

#include "mesh/aspect_utils.h"
#include "oracles/shape_literal.h"

namespace {

const double root3 = std::sqrt(3.0);

TEST(TriangleHeight, StandsOnTheLongestEdge) {
  // Legs 3 and 4: height over the hypotenuse 12 / 5. The three rotations make each edge in turn the longest.
  const giPoint3 a(0, 0, 0), b(3, 0, 0), c(0, 4, 0);
  const struct {
    giPoint3 p0, p1, p2;
    int side;  // the edge that ends where the longest starts
  } cases[] = {{a, b, c, 0}, {b, c, a, 2}, {c, a, b, 1}};
  for (const auto& t : cases) {
    int side = -1;
    giLength base;
    EXPECT_NEAR(trAspectUtils::triangle_height(t.p0, t.p1, t.p2, side, &base).value(), 2.4, 1e-12);
    EXPECT_EQ(side, t.side);
    EXPECT_NEAR(base.value(), 5, 1e-12);
    EXPECT_NEAR(trAspectUtils::triangle_height(t.p0, t.p1, t.p2).value(), 2.4, 1e-12);
  }
}

// Ties go to the lower-numbered edge, so an equilateral triangle stands on edge 0; edge 2 must be strictly longer.
TEST(TriangleHeight, BreaksTiesByEdgeNumber) {
  const struct {
    giPoint3 p0, p1, p2;
    int side;
  } cases[] = {
      {{0, 0, 0}, {1, 1, 0}, {1, 0, 1}, 2},   // all equal
      {{2, 0, 0}, {0, 0, 0}, {0, 0, 2}, 1},   // edge 2 is the longest
      {{0, 3, 0}, {1, 0, 0}, {-1, 0, 0}, 2},  // edges 0 and 2 tie: 0
      {{1, 0, 0}, {0, 3, 0}, {-1, 0, 0}, 2},  // edges 0 and 1 tie: 0
      {{1, 0, 0}, {-1, 0, 0}, {0, 3, 0}, 0},  // edges 1 and 2 tie: 1
  };
  for (const auto& t : cases) {
    int side = -1;
    trAspectUtils::triangle_height(t.p0, t.p1, t.p2, side, nullptr);
    EXPECT_EQ(side, t.side);
  }
}

TEST(TriangleAspect, IsKeptSquaredAndHasNoValueForAPoint) {
  const giLength equilateral =
      trAspectUtils::triangle_aspect(giPoint3(0, 0, 0), giPoint3(1, 0, 0), giPoint3(0.5, root3 / 2, 0));
  EXPECT_NEAR(equilateral.value(), root3 / 2, 1e-12);
  EXPECT_NEAR(equilateral.squared(), 0.75, 1e-12);
  const giPoint3 p(4, 5, 6);
  int side = 0;
  EXPECT_FALSE(trAspectUtils::triangle_aspect(p, p, p, side).is_set());
  EXPECT_EQ(trAspectUtils::triangle_aspect(p, p, p).value(), DBL_MAX);
  EXPECT_EQ(trAspectUtils::triangle_aspect(giPoint3(0, 0, 0), giPoint3(1, 1, 1), giPoint3(3, 3, 3)).value() < 1e-7,
            true);
}

TEST(CheckDela, ChoosesByTheWorseTriangle) {
  const struct {
    const char* name;
    giPoint3 p0, p1, p2, p3;
    int expected;
  } cases[] = {
      {"a square ties and keeps the other diagonal", {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, 0},
      {"p0-p3 is the short diagonal of a kite", {0, -1, 0}, {3, 0, 0}, {-3, 0, 0}, {0, 1, 0}, 1},
      {"p0-p3 is the long diagonal of a kite", {-3, 0, 0}, {0, -1, 0}, {0, 1, 0}, {3, 0, 0}, 0},
      {"folded along p0-p3, though that is the better split", {0, -1, 0}, {3, 0, 0}, {2.9, 0, 0}, {0, 1, 0}, 0},
      {"p0, p1, p2 on one line", {0, 0, 0}, {1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, 1},
      {"the same, whichever way its halves face", {0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(trAspectUtils::check_dela(c.p0, c.p1, c.p2, c.p3), c.expected) << c.name;
    EXPECT_EQ(check_dela_literal(c.p0, c.p1, c.p2, c.p3), c.expected) << c.name;
  }
}

}  // namespace
