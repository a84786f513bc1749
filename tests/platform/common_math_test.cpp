#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <random>

#include "platform/common/cc_math.h"

namespace {

// Outward triangles of the unit cube, by corner number: bit 0 is x, bit 1 y, bit 2 z.
const int cube[12][3] = {{0, 2, 1}, {1, 2, 3}, {4, 5, 6}, {5, 7, 6}, {0, 1, 4}, {1, 5, 4},
                         {2, 6, 3}, {3, 6, 7}, {0, 4, 2}, {2, 4, 6}, {1, 3, 5}, {3, 7, 5}};

giPoint3 cube_corner(int i) { return giPoint3(i & 1, (i >> 1) & 1, (i >> 2) & 1); }

// A closed surface encloses the same volume whatever plane it is measured from.
TEST(TriVol, SumsToTheVolumeOfAClosedCube) {
  for (double z0 : {0.0, -3.0, 0.5, 100.0}) {
    double volume = 0.0;
    double reversed = 0.0;
    for (const auto& t : cube) {
      volume += ccMath::tri_vol(cube_corner(t[0]), cube_corner(t[1]), cube_corner(t[2]), z0);
      reversed += ccMath::tri_vol(cube_corner(t[0]), cube_corner(t[2]), cube_corner(t[1]), z0);
    }
    EXPECT_NEAR(volume, 1.0, 1e-13) << z0;
    EXPECT_NEAR(reversed, -1.0, 1e-13) << z0;
  }
}

// Base area 2, heights 1, 2 and 3 above the plane z = 0: a mean height of 2.
TEST(TriVol, PositiveCounterClockwiseAboveThePlane) {
  const giPoint3 p(0, 0, 1);
  const giPoint3 q(2, 0, 2);
  const giPoint3 r(0, 2, 3);
  EXPECT_DOUBLE_EQ(ccMath::tri_vol(p, q, r, 0.0), 4.0);
  EXPECT_DOUBLE_EQ(ccMath::tri_vol(p, r, q, 0.0), -4.0);
  EXPECT_DOUBLE_EQ(ccMath::tri_vol(p, q, r, 5.0), -6.0);
  EXPECT_DOUBLE_EQ(ccMath::tri_vol(p, q, r, 2.0), 0.0);
}

TEST(TriAspectRatio, KnownShapesWhicheverCornerComesFirst) {
  const double root3 = std::sqrt(3.0);
  const struct { giPoint3 corners[3]; double aspect; } cases[] = {
      {{{0, 0, 0}, {2, 0, 0}, {1, root3, 0}}, root3 / 2.0},
      {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, 0.5},            // height sqrt(1/2) over sqrt(2)
      {{{0, 0, 0}, {10, 0, 0}, {4, 0, 1}}, 0.1},
      {{{0, 0, 0}, {10, 0, 0}, {-10, 0, 1e-3}}, 1e-2 / (400.0 + 1e-6)},  // obtuse: the longest edge is not the first
      {{{1, 1, 1}, {2, 2, 2}, {5, 5, 5}}, 0.0},
      {{{1, 1, 1}, {1, 1, 1}, {2, 3, 4}}, 0.0},
      {{{7, 8, 9}, {7, 8, 9}, {7, 8, 9}}, 0.0}};
  for (const auto& c : cases) {
    for (int k = 0; k < 3; ++k) {
      const giPoint3& p = c.corners[k];
      const giPoint3& q = c.corners[(k + 1) % 3];
      const giPoint3& r = c.corners[(k + 2) % 3];
      EXPECT_NEAR(ccMath::tri_aspect_ratio(p, q, r), c.aspect, 1e-15) << c.aspect;
      EXPECT_NEAR(ccMath::tri_aspect_ratio(q, p, r), c.aspect, 1e-15) << c.aspect;
    }
  }
}

// The shape does not depend on the size: scaling by a power of two keeps it to the last bit, although squares of squares would
// overflow or vanish.
TEST(TriAspectRatio, AnySizeThatIsFinite) {
  std::mt19937 random(13);
  std::uniform_real_distribution<double> any(-1.0, 1.0);
  for (int i = 0; i < 200; ++i) {
    giPoint3 t[3];
    for (giPoint3& p : t) p = giPoint3(any(random), any(random), any(random));
    const double aspect = ccMath::tri_aspect_ratio(t[0], t[1], t[2]);
    EXPECT_GT(aspect, 0.0);
    EXPECT_LT(aspect, 0.8660254037844387);
    for (int exponent : {-900, -600, -300, -200, -160, 160, 200, 300, 600, 1023}) {
      giPoint3 s[3];
      for (int k = 0; k < 9; ++k) s[k / 3][k % 3] = std::scalbn(t[k / 3][k % 3], exponent);
      EXPECT_NEAR(ccMath::tri_aspect_ratio(s[0], s[1], s[2]), aspect, 1e-15) << exponent;
    }
  }
  const double half = ccMath::tri_aspect_ratio(giPoint3(), giPoint3(5e-324, 0, 0), giPoint3(0, 5e-324, 0));
  EXPECT_NEAR(half, 0.5, 1e-15);
  const double widest = ccMath::tri_aspect_ratio(giPoint3(-DBL_MAX, 0, 0), giPoint3(DBL_MAX, 0, 0), giPoint3(0, DBL_MAX, 0));
  EXPECT_NEAR(widest, 0.5, 1e-15);
  EXPECT_EQ(ccMath::tri_aspect_ratio(giPoint3(DBL_MAX, 0, 0), giPoint3(DBL_MAX, 0, 0), giPoint3(DBL_MAX, 0, 0)), 0.0);
}

TEST(TriAspectRatio, CornersThatAreNotFiniteGiveNoNumber) {
  for (double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    for (int k = 0; k < 9; ++k) {
      giPoint3 t[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
      t[k / 3][k % 3] = bad;
      EXPECT_TRUE(std::isnan(ccMath::tri_aspect_ratio(t[0], t[1], t[2]))) << bad << ' ' << k;
    }
  }
}

}  // namespace
