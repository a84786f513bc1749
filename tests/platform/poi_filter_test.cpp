#include "platform/digitiser/poi_filter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "platform/containers/feature_pool.h"
#include "support/random.h"

namespace {

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

}  // namespace
