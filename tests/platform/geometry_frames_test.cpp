#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "platform/geometry/workplane3.h"
#include "platform/geometry/xform3.h"

namespace {

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

TEST(Xform3, TranslationMovesPointsAndNotVectors) {
  const giXform3 x = giXform3::translation(giVector3(1, 2, 3));
  EXPECT_EQ(x.apply(giPoint3(4, 5, 6)), giPoint3(5, 7, 9));
  EXPECT_EQ(x.apply(giVector3(4, 5, 6)), giVector3(4, 5, 6));
  EXPECT_EQ(giXform3().apply(giPoint3(4, 5, 6)), giPoint3(4, 5, 6));
}

TEST(Xform3, HalfTurnAboutX) {
  const giXform3 x = giXform3::half_turn_x();
  EXPECT_EQ(x.apply(giPoint3(1, 2, 3)), giPoint3(1, -2, -3));
  EXPECT_EQ(x.apply(giVector3(1, 2, 3)), giVector3(1, -2, -3));
  EXPECT_EQ(x.then(x).apply(giPoint3(1, 2, 3)), giPoint3(1, 2, 3));
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

TEST(Workplane3, DefaultHasNoOrigin) {
  EXPECT_TRUE(giWorkplane3().origin().invalid());
  EXPECT_EQ(giWorkplane3().to_work(giVector3(1, 2, 3)), giVector3(1, 2, 3));
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
