#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <vector>

#include "platform/common/plane_fit.h"
#include "support/random.h"

namespace {

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
