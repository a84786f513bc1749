#include "platform/triangulation/exact_predicates.h"

#include <gtest/gtest.h>

#include "support/random.h"

namespace {

__extension__ typedef __int128 Wide;

int sign(Wide v) { return v > 0 ? 1 : (v < 0 ? -1 : 0); }
int sign(double v) { return v > 0.0 ? 1 : (v < 0.0 ? -1 : 0); }

struct Lattice {
  std::int64_t x, y;
  giPoint2 point(int exponent) const {
    return giPoint2(std::ldexp(static_cast<double>(x), exponent), std::ldexp(static_cast<double>(y), exponent));
  }
};

// Points on one line but for a step or two of the last digit, at every place of the line: 2^56 steps long, 60 bits
// deep.
TEST(ExactPredicates, OrientationIsThatOfWholeNumbersNearOneLine) {
  Random random(31);
  int turns[3] = {0, 0, 0};
  for (int round = 0; round < 100000; ++round) {
    const int bits = random.between(2, 27);
    const std::int64_t range = std::int64_t{1} << bits;
    const auto part = [&] {
      return static_cast<std::int64_t>(random.bits() % static_cast<std::uint64_t>(2 * range)) - range;
    };
    const Lattice direction{part(), part()}, a{part(), part()};
    const auto on_line = [&](std::int64_t t) {
      return Lattice{a.x + t * direction.x + random.between(-1, 1), a.y + t * direction.y};
    };
    const Lattice b = on_line(part() >> 2), c = on_line(part() >> 2);
    const Wide exact = Wide(a.x - c.x) * (b.y - c.y) - Wide(a.y - c.y) * (b.x - c.x);
    // Below 2^53 in size, so that the doubles are the whole numbers.
    const double rounded = orientation(a.point(-60), b.point(-60), c.point(-60));
    ASSERT_EQ(sign(rounded), sign(exact)) << round;
    ASSERT_EQ(sign(exact_orientation(a.point(-60), b.point(-60), c.point(-60))), sign(exact)) << round;
    ++turns[1 + sign(exact)];
  }
  for (const int count : turns) EXPECT_GT(count, 10000);
}

// Twelve whole points lie on the circle of radius 5 k; the fourth is moved off it by a few steps of the last digit.
TEST(ExactPredicates, InCircleIsThatOfWholeNumbersNearTheCircle) {
  const Lattice on_circle[12] = {{5, 0},  {4, 3},   {3, 4},   {0, 5},  {-3, 4}, {-4, 3},
                                 {-5, 0}, {-4, -3}, {-3, -4}, {0, -5}, {3, -4}, {4, -3}};
  Random random(32);
  int sides[3] = {0, 0, 0};
  for (int round = 0; round < 100000; ++round) {
    const std::int64_t size = std::int64_t{1} << random.between(0, 49);
    int corner[4] = {random.below(12), random.below(12), random.below(12), random.below(12)};
    std::sort(corner, corner + 3);
    if (corner[0] == corner[1] || corner[1] == corner[2]) continue;
    giPoint2 p[3];
    for (int k = 0; k < 3; ++k) p[k] = Lattice{on_circle[corner[k]].x * size, on_circle[corner[k]].y * size}.point(-50);
    const Lattice d{on_circle[corner[3]].x * size + random.between(-2, 2) * (size >> random.below(50)),
                    on_circle[corner[3]].y * size + random.between(-2, 2)};
    const Wide exact = Wide(25) * size * size - Wide(d.x) * d.x - Wide(d.y) * d.y;
    ASSERT_EQ(sign(in_circle(p[0], p[1], p[2], d.point(-50))), sign(exact)) << round;
    ASSERT_EQ(sign(exact_in_circle(p[1], p[2], p[0], d.point(-50))), sign(exact)) << round;
    ++sides[1 + sign(exact)];
  }
  for (const int count : sides) EXPECT_GT(count, 5000);
}

}  // namespace
