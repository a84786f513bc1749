#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

#include "platform/common/binary_flags.h"
#include "platform/common/cc_math.h"
#include "platform/common/plane_fit.h"
#include "platform/common/workplane_list.h"
#include "platform/containers/feature_pool.h"
#include "platform/digitiser/poi_filter.h"
#include "support/random.h"

namespace {

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
      case 5:  // what no row can hold is ignored
        for (int wrong : {-1, INT_MIN, INT_MAX}) flags.set(wrong);
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
    for (int beyond : {-1, INT_MIN, flags.length(), flags.length() + 64, INT_MAX}) ASSERT_FALSE(flags.test(beyond)) << beyond;
    ASSERT_EQ(flags.count(), set);
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

// A host's global objects may take the shared workplane while they are made and while they are destroyed.
struct GlobalUser {
  GlobalUser() : invalid_at_start(ccWorkplaneList::g_invalid_workplane.workplane().origin().invalid()) {}
  ~GlobalUser() {
    if (!ccWorkplaneList::g_invalid_workplane.workplane().origin().invalid()) std::abort();
  }
  bool invalid_at_start;
};
const GlobalUser global_user;

TEST(Workplane, TheInvalidWorkplaneServesGlobalObjects) {
  EXPECT_TRUE(global_user.invalid_at_start);
  EXPECT_TRUE(ccWorkplaneList::g_invalid_workplane.workplane().origin().invalid());
}

// The tolerance changes from call to call now and then: points are compared with all kept before, whatever they were kept under.
TEST(PoiFilter, NamesTheLowestEarlierPointWithinTheTolerance) {
  const double tolerances[] = {0.5, 1.0, 0.25, 2.0, 0.0, INFINITY, std::nan("")};
  Random random(71);
  int several = 0;
  for (int round = 0; round < 300; ++round) {
    coFeaturePool pool;
    ccPoiFilter filter(pool, round % 2 ? 1000000000 : -5);
    struct Kept {
      giPoint3 point;
      int number;
    };
    std::vector<Kept> kept;
    double tol = 0.5;
    for (int k = 1; k <= 60; ++k) {
      if (random.one_in(10)) tol = tolerances[random.below(round % 3 == 0 ? 7 : 4)];
      giPoint3 p(0.25 * random.below(12), 0.25 * random.below(12), 0.5 * random.below(3));
      if (random.one_in(20)) p.y = random.one_in(2) ? INFINITY : std::nan("");
      const int number = round % 2 ? k : 1000 - k;
      int matches = 0, lowest = number;
      for (const Kept& other : kept) {
        if (!(p.distance_sq(other.point) <= tol * tol)) continue;
        lowest = matches++ == 0 ? other.number : std::min(lowest, other.number);
      }
      several += matches > 1;
      ASSERT_EQ(filter.add_point(p, number, tol), matches > 0 ? -lowest : number) << "round " << round << " point " << k;
      if (matches == 0) kept.push_back({p, number});
    }
  }
  EXPECT_GT(several, 1000);
}

class PointFit : public ccPlaneFit {
 public:
  explicit PointFit(std::vector<giPoint3> points) : points_(std::move(points)) {}
  int size() const override { return ++sizes_, static_cast<int>(points_.size()); }
  const giPoint3& data_point(int i) const override {
    in_order_ = in_order_ && i == asked_++;
    handed_out_ = points_[static_cast<std::size_t>(i)];  // one place for all: a reference lives until the next call
    return handed_out_;
  }
  bool asked_once_in_order() const { return sizes_ == 1 && in_order_ && asked_ == static_cast<int>(points_.size()); }

 private:
  std::vector<giPoint3> points_;
  mutable giPoint3 handed_out_;
  mutable int sizes_ = 0, asked_ = 0;
  mutable bool in_order_ = true;
};

struct Plane {
  giPoint3 origin{7, 7, 7};
  giVector3 normal{7, 7, 7};
  double residual = 7.0;
  int result;
  explicit Plane(const ccPlaneFit& fit) : result(fit.fit(origin, normal, residual)) {}
};

// A random plane, at any scale and far from the origin, points around it in mirrored pairs: the fit is known in closed
// form.
TEST(PlaneFit, FindsPlaneAverageAndResidualWhateverUnitAndPlace) {
  Random random(5);
  for (const double unit : {1e-300, 1e-20, 1.0, 1e20, 1e300}) {
    for (const double offset : {0.0, 1e5}) {
      for (int round = 0; round < 20; ++round) {
        giVector3 n(random.between(-1.0, 1.0), random.between(-1.0, 1.0), random.between(-1.0, 1.0)),
            u = n.cross(giVector3(0.3, 0.5, -0.7));
        n.make_unit();
        u.make_unit();
        const giVector3 v = n.cross(u);
        const giPoint3 middle(offset, -0.5 * offset, 0.25 * offset);
        std::vector<giPoint3> points;
        for (int i = 0; i < 30; ++i) {
          const giVector3 along = u * (3.0 * random.between(-1.0, 1.0)) + v * (0.5 * random.between(-1.0, 1.0));
          for (const giVector3& d : {along + n * 0.01, along - n * 0.01, n * 0.01 - along, -along - n * 0.01}) {
            const giPoint3 p = middle + d;
            points.emplace_back(p.x * unit, p.y * unit, p.z * unit);
          }
        }
        const PointFit fit(points);
        const Plane plane(fit);
        ASSERT_EQ(plane.result, 0) << unit;
        EXPECT_TRUE(fit.asked_once_in_order());
        const double accuracy = offset > 0.0 ? 1e-9 : 1e-12;
        EXPECT_NEAR(std::fabs(plane.normal.dot(n)), 1.0, accuracy);
        EXPECT_NEAR(plane.residual / unit, 0.01, accuracy);
        EXPECT_NEAR(plane.origin.x / unit, middle.x, accuracy);
        EXPECT_NEAR(plane.origin.z / unit, middle.z, accuracy);
      }
    }
  }
}

// The width is a hundred-millionth of the length: squares of it are lost beside squares of the length.
TEST(PlaneFit, FindsThePlaneOfAVeryNarrowStrip) {
  std::vector<giPoint3> points;
  for (int i = 0; i < 50; ++i) {
    const double side = i % 2 == 0 ? 1e-8 : -1e-8;
    points.emplace_back(i - 24.5 + 0.3 * side, 0.6 * side, 0.8 * side);
  }
  const Plane plane{PointFit(points)};
  ASSERT_EQ(plane.result, 0);
  EXPECT_NEAR(plane.normal.y(), 0.8, 1e-5);
  EXPECT_NEAR(plane.normal.z(), -0.6, 1e-5);
  EXPECT_LT(plane.residual, 1e-13);
}

TEST(PlaneFit, LargestComponentOfTheNormalIsPositiveTheLastOfAlmostEqualOnes) {
  const double s = std::sqrt(0.5);
  const struct {
    giVector3 across, expected;
  } cases[] = {{{0, 0, -1}, {0, 0, 1}},
               {{-1, 0, 0}, {1, 0, 0}},
               {{s, -s, 0}, {-s, s, 0}},
               {{-s, 0, -s}, {s, 0, s}},
               {{-0.8, 0.6, 0}, {0.8, -0.6, 0}}};
  for (const auto& c : cases) {
    const giVector3 u(c.across.y() + c.across.z(), -c.across.x() + c.across.z(), -c.across.x() - c.across.y());
    const giVector3 v = c.across.cross(u);
    std::vector<giPoint3> points;
    for (int i = 0; i < 7; ++i) points.push_back(giPoint3() + u * std::cos(i * 0.9) + v * std::sin(i * 0.9));
    const Plane plane{PointFit(points)};
    ASSERT_EQ(plane.result, 0);
    EXPECT_LT((plane.normal - c.expected).length(), 1e-14) << c.across.x() << " " << c.across.y();
  }
}

TEST(PlaneFit, FailsWithoutAPlaneAndLeavesTheArguments) {
  std::vector<giPoint3> line, place(9, giPoint3(0.1, 1e8, 3));
  for (int i = 0; i < 100; ++i) line.emplace_back(1e6 + 0.1 * i, 3e5 + 0.7 * i, -0.3 * i);
  const giPoint3 a(1, 0, 0), b(0, 1, 0), c(0, 0, 1);
  const struct {
    std::vector<giPoint3> points;
    int result;
  } cases[] = {{{}, 1},
               {{a, b}, 1},
               {{a, b, giPoint3(0, NAN, 0)}, 2},
               {{a, giPoint3(0, 0, -INFINITY), b}, 2},
               {{a, a, b, b}, 3},
               {line, 3},
               {place, 3},
               {{giPoint3(), giPoint3(), giPoint3()}, 3}};
  for (const auto& refused : cases) {
    const Plane plane{PointFit(refused.points)};
    EXPECT_EQ(plane.result, refused.result) << refused.points.size();
    EXPECT_EQ(plane.residual, 7.0);
    EXPECT_EQ(plane.origin, giPoint3(7, 7, 7));
    EXPECT_EQ(plane.normal, giVector3(7, 7, 7));
  }
  EXPECT_EQ(Plane{PointFit({a, b, c})}.result, 0);
}

}  // namespace
