#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <limits>
#include <random>

#include "platform/geometry/box2.h"
#include "platform/geometry/box3.h"
#include "platform/geometry/length.h"
#include "platform/geometry/link.h"
#include "platform/geometry/point3.h"
#include "platform/geometry/tri_block_base.h"
#include "platform/geometry/triangle.h"
#include "platform/geometry/unit_vec3.h"
#include "platform/geometry/vector3.h"
#include "platform/geometry/workplane3.h"
#include "platform/geometry/xform3.h"

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

// Too long for its squared length, the components vanish; the length must not claim otherwise.
TEST(Vector3, MakeUnitLeavesAZeroVectorAlone) {
  giVector3 zero(0.0, -0.0, 0.0);
  zero.make_unit();
  EXPECT_EQ(zero, giVector3());
  EXPECT_EQ(zero.length(), 0.0);
  // Too short for its squared length: counts as zero.
  giVector3 tiny(1e-170, 0, 0);
  tiny.make_unit();
  EXPECT_EQ(tiny, giVector3(1e-170, 0, 0));
  giVector3 huge(1e200, 0, 0);
  EXPECT_EQ(huge.length(), HUGE_VAL);
  huge.make_unit();
  EXPECT_EQ(huge, giVector3());
  EXPECT_EQ(huge.length(), 0.0);
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

const giBox3 unit_box(giPoint3(0, 0, 0), giPoint3(1, 1, 1));

TEST(Box3, AnEmptyBoxMergesAsNothingAndAnswersNothing) {
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
  grown.merge(giBox3());
  EXPECT_EQ(grown.min(), unit_box.min());
  EXPECT_EQ(grown.max(), unit_box.max());
  grown.grow(-2.0);  // inside out: it holds nothing, and crosses nothing inside the former box
  EXPECT_FALSE(grown.contains(giPoint3(0.5, 0.5, 0.5), 0.0));
  EXPECT_FALSE(grown.crosses_line(giPoint3(0.5, 0.5, 0.5), giVector3(1, 2, 3)));
  grown.reset();
  EXPECT_TRUE(grown.is_empty());
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

double apart(const giVector3& a, const giVector3& b) { return (a - b).length(); }

// Turns are orthogonal and keep handedness: the images of the axes form a right-handed frame.
void expect_rotation(const giXform3& x, double tol) {
  const giVector3 a = x.apply(giVector3(1, 0, 0));
  const giVector3 b = x.apply(giVector3(0, 1, 0));
  const giVector3 c = x.apply(giVector3(0, 0, 1));
  EXPECT_LE(apart(a.cross(b), c), tol);
  EXPECT_NEAR(a.dot(b), 0.0, tol);
  EXPECT_NEAR(a.length(), 1.0, tol);
}

giVector3 unit(giVector3 v) {
  v.make_unit();
  return v;
}

// Directions at every angle, crowded near 0 and 180 degrees, where the axis of the turn is hard to find.
TEST(Xform3, RotationTakesOneDirectionToTheOther) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> any(-1.0, 1.0);
  std::uniform_real_distribution<double> decade(-18.0, 0.0);
  int nearly_opposite = 0;
  for (int i = 0; i < 20000; ++i) {
    const giVector3 from(any(random), any(random), any(random));
    const giVector3 nudge(any(random), any(random), any(random));
    const giVector3 to = (i % 2 == 0 ? -1.0 : 1.0) * from + std::pow(10.0, decade(random)) * nudge;
    const giXform3 x = giXform3::rotation(from, to);
    ASSERT_LE(apart(x.apply(unit(from)), unit(to)), 1e-14) << i;
    expect_rotation(x, 1e-14);
    ASSERT_FALSE(HasFailure()) << i;
    nearly_opposite += unit(from).dot(unit(to)) < -1.0 + 1e-12;
  }
  EXPECT_GT(nearly_opposite, 2000);
}

// The shortest turn leaves what stands across both directions where it is.
TEST(Xform3, RotationTurnsTheShortestWay) {
  const giXform3 quarter = giXform3::rotation(giVector3(2, 0, 0), giVector3(0, 5, 0));
  EXPECT_LE(apart(quarter.apply(giVector3(0, 0, 1)), giVector3(0, 0, 1)), 1e-15);
  EXPECT_LE(apart(quarter.apply(giVector3(0, 1, 0)), giVector3(-1, 0, 0)), 1e-15);
  const giXform3 narrow = giXform3::rotation(giVector3(1, 0, 0), giVector3(-1, 1e-6, 0));
  EXPECT_LE(apart(narrow.apply(giVector3(0, 0, 1)), giVector3(0, 0, 1)), 1e-14);
}

TEST(Xform3, RotationOfOppositeAndZeroVectors) {
  for (const giVector3& v : {giVector3(0, 0, 1), giVector3(0, 0, -3), giVector3(0, 1, 0), giVector3(1, 0, 0), giVector3(1, -2, 3)}) {
    const giXform3 x = giXform3::rotation(v, -v);
    EXPECT_LE(apart(x.apply(v), -v), 1e-14);
    expect_rotation(x, 1e-14);
    EXPECT_EQ(giXform3::rotation(v, 2.0 * v).apply(giPoint3(0.1, 0.2, 0.3)), giPoint3(0.1, 0.2, 0.3));
    EXPECT_EQ(giXform3::rotation(v, giVector3()).apply(giPoint3(1, 2, 3)), giPoint3(1, 2, 3));
    EXPECT_EQ(giXform3::rotation(giVector3(), v).apply(giPoint3(1, 2, 3)), giPoint3(1, 2, 3));
  }
}

// This map first, the next after it: moving and then turning differs from turning and then moving.
TEST(Xform3, ThenAppliesInOrder) {
  const giXform3 move = giXform3::translation(giVector3(0, 1, 0));
  const giXform3 turn = giXform3::half_turn_x();
  EXPECT_EQ(move.then(turn).apply(giPoint3(0, 0, 0)), giPoint3(0, -1, 0));
  EXPECT_EQ(turn.then(move).apply(giPoint3(0, 0, 0)), giPoint3(0, 1, 0));
  EXPECT_EQ(move.then(turn).apply(giVector3(0, 1, 0)), giVector3(0, -1, 0));
}

TEST(Xform3, InverseLeadsBack) {
  const giXform3 x = giXform3::translation(giVector3(3, -4, 5))
                         .then(giXform3::rotation(giVector3(1, 2, 3), giVector3(-2, 1, 0)))
                         .then(giXform3::half_turn_x())
                         .then(giXform3::translation(giVector3(0.5, 7, 1)));
  const giPoint3 p(11, 12, -13);
  EXPECT_LE(x.inverse().apply(x.apply(p)).distance(p), 1e-13);
  EXPECT_LE(x.then(x.inverse()).apply(p).distance(p), 1e-13);
  EXPECT_LE(apart(x.inverse().apply(x.apply(giVector3(1, 2, 3))), giVector3(1, 2, 3)), 1e-14);
  EXPECT_GT(x.apply(p).distance(p), 1.0);
}

// x of the plane runs along world y, z along world x, so y runs along world z.
TEST(Workplane3, PointsMoveAndTurnVectorsOnlyTurn) {
  const giWorkplane3 plane(giPoint3(10, 20, 30), giUnitVec3(gi_y_axis), giUnitVec3(gi_x_axis));
  EXPECT_EQ(plane.y_axis(), giUnitVec3(gi_z_axis));
  EXPECT_EQ(plane.to_work(giPoint3(11, 22, 33)), giPoint3(2, 3, 1));
  EXPECT_EQ(plane.to_work(giVector3(1, 2, 3)), giVector3(2, 3, 1));
  EXPECT_EQ(plane.to_world(giPoint3(2, 3, 1)), giPoint3(11, 22, 33));
  EXPECT_EQ(plane.to_world(giVector3(2, 3, 1)), giVector3(1, 2, 3));
}

// Given axes need not be square: z counts, x gives way, even where it lies along z.
TEST(Workplane3, RoundTripWithAnyGivenAxes) {
  std::mt19937 random(9);
  std::uniform_real_distribution<double> any(-1.0, 1.0);
  for (int i = 0; i < 2000; ++i) {
    const giUnitVec3 z(giVector3(any(random), any(random), any(random)));
    const giUnitVec3 x = i % 8 == 0 ? z : giUnitVec3(giVector3(any(random), any(random), any(random)));
    const giWorkplane3 plane(giPoint3(any(random), any(random), any(random)), x, z);
    const giPoint3 p(100 * any(random), any(random), any(random));
    ASSERT_EQ(plane.z_axis(), z);
    ASSERT_LE(plane.to_world(plane.to_work(p)).distance(p), 1e-12) << i;
    const giVector3 v = p - giPoint3();
    ASSERT_LE(apart(plane.to_world(plane.to_work(v)), v), 1e-12) << i;
    ASSERT_LE(apart(plane.x_axis().vector().cross(plane.y_axis().vector()), z.vector()), 1e-14) << i;
    ASSERT_TRUE(i % 8 == 0 || plane.x_axis().dot(x.vector()) >= 0.0) << i;
  }
  const giUnitVec3 diagonal(giVector3(1, 1, 0));
  EXPECT_EQ(giWorkplane3(giPoint3(), diagonal, giUnitVec3(gi_z_axis)).x_axis(), diagonal);
}

}  // namespace
