#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>

#include "platform/geometry/angle.h"
#include "platform/geometry/length.h"
#include "platform/geometry/link.h"
#include "platform/geometry/point3.h"
#include "platform/geometry/point_average3.h"
#include "platform/geometry/tri_block_base.h"
#include "platform/geometry/triangle.h"
#include "platform/geometry/unit_vec3.h"
#include "platform/geometry/vector3.h"

namespace {

const double nan_value = std::nan("");

// Any coordinate may be the largest double, but only x may be the lowest.
TEST(Point3, InvalidByItsCoordinates) {
  const struct { giPoint3 p; bool invalid; } cases[] = {
      {{0, 0, 0}, false}, {{-DBL_MAX, 1, 1}, true}, {{1, -DBL_MAX, 1}, false}, {{1, 1, -DBL_MAX}, false},
      {{DBL_MAX, 1, 1}, true}, {{1, DBL_MAX, 1}, true}, {{1, 1, DBL_MAX}, true},
      {{nan_value, 1, 1}, false}, {{HUGE_VAL, 1, 1}, false}, {{-HUGE_VAL, 1, 1}, false}};
  for (const auto& c : cases) EXPECT_EQ(c.p.invalid(), c.invalid) << c.p.x << ' ' << c.p.y << ' ' << c.p.z;
  giPoint3 p(1, 2, 3);
  p.set_invalid();
  EXPECT_TRUE(p.invalid());
  EXPECT_EQ(p, giPoint3(-DBL_MAX, 2, 3));
}

// The difference form keeps a coordinate that both ends share, which a weighted sum of the ends would not.
TEST(Point3, InterpolationKeepsASharedCoordinate) {
  const giPoint3 a(0.1, 0.3, 1);
  const giPoint3 b(0.1, 0.3, 5);
  for (int i = 0; i <= 100; ++i) {
    const giPoint3 p = gi_interpolate(a, b, i / 100.0);
    EXPECT_EQ(p.x, 0.1);
    EXPECT_EQ(p.y, 0.3);
  }
  EXPECT_EQ(gi_interpolate(a, b, 0.25), giPoint3(0.1, 0.3, 2));
  EXPECT_EQ(gi_interpolate(a, b, 2.0).z, 9.0);
}

TEST(Point3, ArithmeticWithVectors) {
  const giPoint3 p(1, 2, 3);
  const giPoint3 q(4, 6, 15);
  EXPECT_EQ(q - p, giVector3(3, 4, 12));
  EXPECT_EQ(p + (q - p), q);
  EXPECT_EQ(q - (q - p), p);
  EXPECT_EQ(p.distance_sq(q), 169.0);
  EXPECT_EQ(p.distance(q), 13.0);
  giPoint3 r;
  for (int axis = 0; axis < 3; ++axis) r[axis] = q[axis];
  EXPECT_EQ(r, q);
}

// The length is asked for before and after each write, so a cache that is not dropped shows.
TEST(Vector3, EveryWriteMakesTheLengthUnknown) {
  const auto warm = [](giVector3 v) { return (void)v.length(), v; };
  const giVector3 base = warm(giVector3(3, 4, 0));
  giVector3 v = base;
  EXPECT_EQ(v.length(), 5.0);
  v.set(0, 0, 2);
  EXPECT_EQ(v.length(), 2.0);
  v.set(0, 6.0);
  v.set(1, 9.0);
  EXPECT_EQ(v.length(), 11.0);
  EXPECT_EQ((v = base, v += giVector3(0, 0, 12), v.length()), 13.0);
  EXPECT_EQ((v = base, v -= giVector3(3, 0, 0), v.length()), 4.0);
  EXPECT_EQ((v = base, v *= -2.0, v.length()), 10.0);
  EXPECT_EQ((v = base, v /= 5.0, v.length()), 1.0);
  EXPECT_EQ((base + base).length(), 10.0);
  EXPECT_EQ((base - base).length(), 0.0);
  EXPECT_EQ((3.0 * base).length(), 15.0);
  EXPECT_EQ((-base).length(), 5.0);
  EXPECT_EQ(base.cross(giVector3(0, 0, 2)).length(), 10.0);
  EXPECT_EQ((v = base, v.make_unit(), v.length()), 1.0);
}

TEST(Vector3, MakeUnitLeavesAZeroVectorAlone) {
  giVector3 zero(0.0, -0.0, 0.0);
  zero.make_unit();
  EXPECT_EQ(zero, giVector3());
  EXPECT_EQ(zero.length(), 0.0);
  // Too short for its squared length: counts as zero.
  giVector3 tiny(1e-170, 0, 0);
  tiny.make_unit();
  EXPECT_EQ(tiny, giVector3(1e-170, 0, 0));
}

// The squared length overflows, so the components vanish; the length must not claim otherwise.
TEST(Vector3, LengthAfterMakeUnitIsThatOfTheComponents) {
  giVector3 v(1e200, 0, 0);
  EXPECT_EQ(v.length(), HUGE_VAL);
  v.make_unit();
  EXPECT_EQ(v, giVector3());
  EXPECT_EQ(v.length(), 0.0);
}

TEST(Vector3, CrossIsRightHanded) {
  EXPECT_EQ(giVector3(1, 0, 0).cross(giVector3(0, 1, 0)), giVector3(0, 0, 1));
  EXPECT_EQ(giVector3(1, 2, 3).cross(giVector3(4, 5, 6)), giVector3(-3, 6, -3));
  EXPECT_EQ(giVector3(1, 2, 3).dot(giVector3(4, -5, 6)), 12.0);
}

TEST(UnitVec3, ComparesExactly) {
  EXPECT_EQ(giUnitVec3(), giUnitVec3(gi_z_axis));
  EXPECT_EQ(giUnitVec3(giVector3(0, 7, 0)), giUnitVec3(gi_y_axis));
  EXPECT_NE(giUnitVec3(giVector3(0, 1, 1e-300)), giUnitVec3(gi_y_axis));
  EXPECT_EQ(giUnitVec3(gi_x_axis).dot(giVector3(5, 6, 7)), 5.0);
  for (const giVector3& v : {giVector3(1, 0, 0), giVector3(0, -1, 0), giVector3(1, 1, 1), giVector3(1e-9, 1, -1)}) {
    const giUnitVec3 u(v);
    EXPECT_NEAR(u.across().dot(u.vector()), 0.0, 1e-15);
    EXPECT_NEAR(u.across().vector().length(), 1.0, 1e-15);
  }
}

TEST(Length, StatesAndConversions) {
  const struct { giLength length; bool set; double value; double squared; } cases[] = {
      {giLength(), false, DBL_MAX, HUGE_VAL},
      {giLength::from_length(DBL_MAX), false, DBL_MAX, HUGE_VAL},
      {giLength::from_length(3.0), true, 3.0, 9.0},
      {giLength::from_length(0.0), true, 0.0, 0.0},
      {giLength::from_length(-0.0), true, 0.0, 0.0},  // a squared length of zero
      {giLength::from_squared(9.0), true, 3.0, 9.0},
      {giLength::from_squared(0.0), true, 0.0, 0.0},
      {giLength::from_squared(2.0), true, std::sqrt(2.0), 2.0},  // exact: no root was taken and squared again
      {giLength::from_squared(DBL_MAX), true, std::sqrt(DBL_MAX), DBL_MAX},
      {giLength::from_length(HUGE_VAL), true, HUGE_VAL, HUGE_VAL}};
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(cases[i].length.is_set(), cases[i].set) << i;
    EXPECT_EQ(cases[i].length.value(), cases[i].value) << i;
    EXPECT_EQ(cases[i].length.squared(), cases[i].squared) << i;
    EXPECT_FALSE(std::signbit(cases[i].length.value())) << i;
  }
  EXPECT_TRUE(std::isnan(giLength::from_squared(nan_value).value()));
}

// Here no value counts as smaller than every length, while value() makes it the largest double.
TEST(Length, NoValueCountsAsSmaller) {
  const giLength none;
  const giLength zero = giLength::from_squared(0.0);
  EXPECT_TRUE(zero > none);
  EXPECT_TRUE(none < zero);
  EXPECT_FALSE(none > zero);
  EXPECT_FALSE(none > none);
  EXPECT_FALSE(none < none);
  EXPECT_GT(none.value(), giLength::from_length(1e300).value());
  EXPECT_TRUE(giLength::from_length(1e300) > none);
}

TEST(Length, LengthsAndSquaresCompareAcrossStates) {
  EXPECT_TRUE(giLength::from_length(2.0) < giLength::from_squared(5.0));
  EXPECT_TRUE(giLength::from_squared(3.0) < giLength::from_length(2.0));
  EXPECT_FALSE(giLength::from_squared(4.0) < giLength::from_length(2.0));
  EXPECT_FALSE(giLength::from_squared(4.0) > giLength::from_length(2.0));
}

TEST(Length, ToleranceComparesBySquaresAndNeverHoldsWhenNegative) {
  const struct { giLength length; double tol; bool below; bool at_most; } cases[] = {
      {giLength::from_length(2.0), 2.0, false, true},   {giLength::from_squared(4.0), 2.0, false, true},
      {giLength::from_squared(3.9), 2.0, true, true},   {giLength::from_squared(4.1), 2.0, false, false},
      {giLength::from_squared(1.0), -2.0, false, false}, {giLength::from_length(0.0), -0.0, false, true},
      {giLength::from_length(0.0), nan_value, false, false}, {giLength(), 1e300, false, false},
      {giLength(), HUGE_VAL, false, false},             {giLength::from_squared(nan_value), 1.0, false, false}};
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(cases[i].length.is_below(cases[i].tol), cases[i].below) << i;
    EXPECT_EQ(cases[i].length.is_at_most(cases[i].tol), cases[i].at_most) << i;
  }
}

TEST(Length, SameWithinATolerance) {
  EXPECT_TRUE(giLength::from_length(1.0).same(giLength::from_squared(2.25), 0.5));
  EXPECT_FALSE(giLength::from_length(1.0).same(giLength::from_squared(2.25), 0.25));
  EXPECT_TRUE(giLength().same(giLength(), 0.0));
  EXPECT_FALSE(giLength().same(giLength::from_length(1.0), HUGE_VAL));
}

// 2 / 4 squared is 1/4 whether the root of the divisor was taken or not; only the dividend decides the state.
TEST(Length, QuotientStaysSquaredWithItsDividend) {
  const giLength six = giLength::from_squared(6.0);
  EXPECT_EQ((six / giLength::from_squared(2.0)).squared(), 3.0);
  EXPECT_EQ((six / giLength::from_length(2.0)).squared(), 1.5);
  const double root = (giLength::from_length(6.0) / giLength::from_squared(2.0)).value();
  EXPECT_EQ(root, 6.0 / std::sqrt(2.0));
  EXPECT_FALSE((giLength() / six).is_set());
  EXPECT_FALSE((six / giLength()).is_set());
  EXPECT_EQ((six / giLength::from_length(0.0)).value(), HUGE_VAL);
}

TEST(Angle, DegreesOutsideRadiansInside) {
  EXPECT_DOUBLE_EQ(giAngle::from_degrees(180.0).radians(), std::acos(-1.0));
  EXPECT_DOUBLE_EQ(giAngle::from_radians(std::acos(0.0)).degrees(), 90.0);
  EXPECT_DOUBLE_EQ(giAngle::from_degrees(2.5).degrees(), 2.5);
}

TEST(PointAverage3, OfNothingIsTheOrigin) {
  giPointAverage3 mean;
  EXPECT_EQ(mean.average(), giPoint3());
  mean.add(giPoint3(1, 2, 3));
  EXPECT_EQ(mean.average(), giPoint3(1, 2, 3));
  mean.add(giPoint3(3, 2, -3));
  EXPECT_EQ(mean.average(), giPoint3(2, 2, 0));
}

// A triangle slot that was never written differs from a deleted one (0, 0, 0).
TEST(Triangle, DefaultsOfSlotsThatWereNeverWritten) {
  giTrianglecoPageArr triangles;
  triangles[2] = giTriangle(4, 5, 6);
  EXPECT_EQ(triangles[1][0], UNSET_ELEMENT);
  EXPECT_EQ(triangles[1][0], INT_MIN);
  EXPECT_EQ(triangles[1][1], 0);
  EXPECT_EQ(triangles[1][2], 0);
  const giLink link;
  for (int side = 0; side < 3; ++side) EXPECT_EQ(link[side], -1);
}

// Each feature type has its own slot in the pool, and a second handle finds the same data.
TEST(TriBlockFeatures, AreFoundByType) {
  giTriBlock block;
  giNodeXYZ points;
  giBoxArrPoint2coFeature plane_points;
  giTriCols colours;
  block.check_out(points);
  EXPECT_EQ(block.find(plane_points), 0);
  block.check_out(plane_points);
  points.data()->points[3] = giPoint3(1, 2, 3);
  plane_points.data()->points[0] = giPoint2(7, 8);
  giNodeXYZ again;
  ASSERT_EQ(block.find(again), 1);
  EXPECT_EQ(again.data()->points.count(), 4);
  EXPECT_EQ(again.data()->points[3], giPoint3(1, 2, 3));
  EXPECT_EQ(again.data()->box_stale, 1);
  EXPECT_EQ(block.find(colours), 0);
}

}  // namespace
