#include <gtest/gtest.h>

#include "platform/surface/zrk_nurb_surf.h"
#include "support/random.h"

namespace {

// A bumpy surface on a tilted plane away from the origin; `roughness` scales the heights.
zrkNurbSurf bumpy(Random& random, double roughness) {
  zrkNurbSurf::Frame frame;
  const giUnitVec3 normal(giVector3(0.2, -0.4, 1.0));
  frame.plane = giWorkplane3(giPoint3(5.0, -7.0, 11.0), normal.across(), normal);
  frame.scale = 2.0;
  frame.u = {-1.0, 0.25, 8};
  frame.v = {-0.5, 0.2, 6};
  std::vector<double> heights;
  for (int k = 0; k < frame.u.controls() * frame.v.controls(); ++k) heights.push_back(random.between(-roughness, roughness));
  return zrkNurbSurf(frame, heights);
}

giPoint3 near(const zrkNurbSurf& surface, Random& random, double reach) {
  const zrkUV uv{random.between(-1.2, 1.2), random.between(-0.7, 0.9)};
  return surface.evaluate(uv).position +
         giVector3(random.between(-reach, reach), random.between(-reach, reach), random.between(-reach, reach));
}

TEST(NurbSurf, DerivativesAreThoseOfThePosition) {
  Random random(1);
  const zrkNurbSurf surface = bumpy(random, 0.3);
  const double h = 1e-5;
  for (int round = 0; round < 50; ++round) {
    const zrkUV uv{random.between(-0.9, 0.9), random.between(-0.4, 0.6)};
    const zrkSurfPoint at = surface.evaluate(uv);
    const zrkSurfPoint right = surface.evaluate({uv.u + h, uv.v});
    const zrkSurfPoint left = surface.evaluate({uv.u - h, uv.v});
    const zrkSurfPoint above = surface.evaluate({uv.u, uv.v + h});
    const zrkSurfPoint below = surface.evaluate({uv.u, uv.v - h});
    const double r = 0.5 / h;
    EXPECT_LT((at.du - (right.position - left.position) * r).length(), 1e-6);
    EXPECT_LT((at.dv - (above.position - below.position) * r).length(), 1e-6);
    EXPECT_LT((at.duu - (right.du - left.du) * r).length(), 1e-3);
    EXPECT_LT((at.duv - (above.du - below.du) * r).length(), 1e-3);
    EXPECT_LT((at.dvv - (above.dv - below.dv) * r).length(), 1e-3);
    EXPECT_NEAR(0.0, at.normal().dot(at.du), 1e-12);
    EXPECT_NEAR(0.0, at.normal().dot(at.dv), 1e-12);
    const zrkUV foot = surface.foot(at.position);
    EXPECT_NEAR(uv.u, foot.u, 1e-12);
    EXPECT_NEAR(uv.v, foot.v, 1e-12);
  }
}

// On a rough one the search may end at another place, but one that no small move betters, and no farther than the foot.
TEST(NurbSurf, ClosestPointIsNeverWorseThanTheFootAndStandsSquare) {
  Random random(3);
  int inner = 0;
  for (int round = 0; round < 500; ++round) {
    const zrkNurbSurf surface = bumpy(random, 2.0);
    const giPoint3 p = near(surface, random, 3.0);
    giPoint3 q;
    ASSERT_EQ(0, surface.closest_point(p, q));
    const zrkSurfPoint at = surface.evaluate(surface.foot(q));
    EXPECT_LT(q.distance(at.position), 1e-9);
    EXPECT_LE(p.distance(q), p.distance(surface.evaluate(surface.foot(p)).position) * (1.0 + 1e-12));
    const zrkKnots& u = surface.frame().u;
    const zrkKnots& v = surface.frame().v;
    const double rim = 1e-9;  // the foot of a point at the end of the knots is not exactly there
    if (at.uv.u < u.start + rim || at.uv.u > u.end() - rim || at.uv.v < v.start + rim || at.uv.v > v.end() - rim) continue;
    ++inner;
    const double d = p.distance(q);
    EXPECT_LE(std::fabs((p - q).dot(at.du)), 1e-5 * d * at.du.length());
    EXPECT_LE(std::fabs((p - q).dot(at.dv)), 1e-5 * d * at.dv.length());
  }
  EXPECT_GE(inner, 200);
}

constexpr double walk = 4e-3;

// The first meeting on either side of p, found by walking along the line in small steps.
double nearest_meeting(const zrkNurbSurf& surface, const giPoint3& p, const giVector3& unit) {
  const auto above = [&](double t, double& height) {
    const giPoint3 q = p + unit * t;
    const zrkUV uv = surface.foot(q);
    const zrkSurfPoint at = surface.evaluate(uv);
    height = surface.frame().plane.z_axis().dot(q - at.position);
    return at.uv == uv;
  };
  for (double t = 0.0; t < 12.0; t += walk) {
    for (const double sign : {1.0, -1.0}) {
      double here = 0.0, there = 0.0;
      if (above(sign * t, here) && above(sign * (t + walk), there) && (here > 0.0) != (there > 0.0)) return sign * t;
    }
  }
  return std::numeric_limits<double>::infinity();
}

// Few lines meet the surface twice within a quarter of a span; of those the pair may be passed over.
TEST(NurbSurf, ProjectionIsTheNearestMeetingOfTheLine) {
  Random random(4);
  int met = 0;
  int missed = 0;
  int passed_over = 0;
  for (int round = 0; round < 300; ++round) {
    const zrkNurbSurf surface = bumpy(random, 0.5);
    const giPoint3 p = near(surface, random, 1.0);
    giVector3 direction(random.between(-1.0, 1.0), random.between(-1.0, 1.0), random.between(-1.0, 1.0));
    if (round % 3 == 0) direction = surface.frame().plane.z_axis().vector();
    direction.make_unit();
    const double expected = nearest_meeting(surface, p, direction);
    giPoint3 q(1.0, 2.0, 3.0);
    const int result = surface.project(p, direction * random.between(-5.0, -0.1), q);
    if (!std::isfinite(expected)) {
      EXPECT_EQ(-2, result);
      EXPECT_EQ(giPoint3(1.0, 2.0, 3.0), q);
      ++missed;
      continue;
    }
    ASSERT_EQ(0, result);
    EXPECT_LT((q - p).cross(direction).length(), 1e-9);
    EXPECT_LT(q.distance(surface.evaluate(surface.foot(q)).position), 1e-9);
    const double found = (q - p).dot(direction);
    if (std::fabs(found - expected) > 1.1 * walk) {
      EXPECT_GT(std::fabs(found), std::fabs(expected));
      ++passed_over;
    }
    ++met;
  }
  EXPECT_GE(met, 150);
  EXPECT_GE(missed, 30);
  EXPECT_LE(passed_over, 3);
}

TEST(NurbSurf, RefusesWhatIsNotFiniteAndTakesWhatIsFarAway) {
  Random random(5);
  const zrkNurbSurf surface = bumpy(random, 0.5);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const giPoint3 old(1.0, 2.0, 3.0);
  giPoint3 q = old;
  for (const giPoint3& p : {giPoint3(nan, 0.0, 0.0), giPoint3(0.0, inf, 0.0), giPoint3(0.0, 0.0, -1e308 * 10.0)}) {
    EXPECT_EQ(-1, surface.closest_point(p, q));
    EXPECT_EQ(-1, surface.project(p, giVector3(0.0, 0.0, 1.0), q));
  }
  for (const giVector3& direction : {giVector3(), giVector3(nan, 1.0, 0.0), giVector3(0.0, inf, 0.0)}) {
    EXPECT_EQ(-1, surface.project(giPoint3(5.0, -7.0, 11.0), direction, q));
  }
  EXPECT_EQ(old, q);
  for (const double far : {1e3, 1e30, 1e150}) {
    EXPECT_EQ(0, surface.closest_point(giPoint3(far, far, -far), q));
    EXPECT_LT(q.distance(giPoint3(5.0, -7.0, 11.0)), 10.0);
  }
  // Lengths whose squares leave the range of a double are directions all the same.
  for (const double length : {1e-300, 1e300}) {
    EXPECT_EQ(0, surface.project(giPoint3(5.0, -7.0, 11.0), giVector3(0.0, 0.0, length), q));
  }
}

}  // namespace
