#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "oracles/point_tree_literal.h"
#include "platform/spatial/box_tree.h"
#include "platform/spatial/live_tree.h"
#include "platform/spatial/point_index.h"
#include "support/random.h"

namespace {

std::vector<int> found_by_tree(const BoxTree& tree, const giBox3& query) {
  std::vector<int> found;
  tree.visit_crossing(query, [&](int i) { found.push_back(i); });
  std::sort(found.begin(), found.end());
  return found;
}

std::vector<int> found_by_all(const std::vector<giBox3>& boxes, const giBox3& query) {
  std::vector<int> found;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (boxes[i].crosses(query, 0.0)) found.push_back(static_cast<int>(i));
  }
  return found;
}

// Coordinates on a grid, so that boxes touch; far from zero, where single precision cannot tell them apart; stray and
// infinite ones, and ones that are not numbers.
double coordinate(Random& random, double offset) {
  constexpr double odd[] = {HUGE_VAL, -HUGE_VAL, std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300, 1e30};
  if (random.one_in(60)) return odd[random.below(6)];
  return offset + random.below(30);
}

giBox3 random_box(Random& random, double offset) {
  if (random.one_in(50)) return giBox3();
  const giPoint3 low(coordinate(random, offset), coordinate(random, offset), coordinate(random, offset));
  return giBox3(low, giPoint3(low.x + random.below(4), low.y + random.below(4), low.z + random.below(4)));
}

TEST(BoxTree, FindsExactlyTheBoxesThatOverlap) {
  Random random(11);
  std::size_t found_total = 0;
  for (const int count : {0, 1, 8, 9, 64, 65, 600, 5000}) {
    for (const double offset : {0.0, 1e9, -1e13}) {
      std::vector<giBox3> boxes;
      for (int i = 0; i < count; ++i) boxes.push_back(random_box(random, offset));
      const BoxTree tree(boxes);
      for (int q = 0; q < 50; ++q) {
        const giBox3 query = random_box(random, offset);
        const std::vector<int> expected = found_by_all(boxes, query);
        ASSERT_EQ(found_by_tree(tree, query), expected) << count << " boxes at " << offset;
        found_total += expected.size();
      }
    }
  }
  EXPECT_GT(found_total, 1000u);
}

struct OutOf {
  giBox3 query;
  bool operator()(const giBox3& box) const { return !box.crosses(query, 0.0); }
};

std::vector<int> left_of(const std::vector<int>& numbers, const LiveTree<giBox3>& tree) {
  std::vector<int> left;
  std::copy_if(numbers.begin(), numbers.end(), std::back_inserter(left), [&](int i) { return tree.has(i); });
  return left;
}

// Boxes are taken out between the searches, and in the middle of each.
TEST(LiveTree, NamesWhatIsLeftByNumberAndOneAtATime) {
  Random random(12);
  std::size_t found_total = 0;
  for (const int count : {0, 1, 8, 9, 33, 600, 3000}) {
    std::vector<giBox3> boxes;
    for (int i = 0; i < count; ++i) boxes.push_back(random_box(random, 0.0));
    LiveTree<giBox3> tree(boxes);
    for (int q = 0; q < 60; ++q) {
      giBox3 query = random_box(random, 0.0);
      query.grow(random.below(6));
      const std::vector<int> expected = left_of(found_by_all(boxes, query), tree);
      std::vector<int> any_order, ascending;
      ASSERT_TRUE(tree.visit(OutOf{query}, [&](int i) { return any_order.push_back(i), true; }));
      std::sort(any_order.begin(), any_order.end());
      ASSERT_EQ(any_order, expected) << count << " boxes";
      LiveTree<giBox3>::Ascending<OutOf> near(tree, {query});
      const std::size_t middle = expected.size() / 2;
      while (ascending.size() < middle) ascending.push_back(near.next());
      ASSERT_TRUE(std::equal(ascending.begin(), ascending.end(), expected.begin())) << count << " boxes";
      for (int k = 0; k < count / 60; ++k) tree.remove(random.below(count));
      ascending.clear();
      for (int i = near.next(); i >= 0; i = near.next()) ascending.push_back(i);
      ASSERT_TRUE(std::is_sorted(ascending.begin(), ascending.end()));
      ASSERT_EQ(left_of(ascending, tree), left_of({expected.begin() + static_cast<std::ptrdiff_t>(middle), expected.end()}, tree));
      found_total += expected.size();
    }
  }
  EXPECT_GT(found_total, 1000u);
}

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
using Winner = PointIndex::Winner;

// Compares with every point kept so far.
class BruteForce {
 public:
  explicit BruteForce(double tol) : reach_sq_(tol * tol) {}

  int find_or_add(const giPoint3& p, int number) {
    int lowest = -1;
    for (const Kept& kept : kept_) {
      const double dx = p.x - kept.point.x, dy = p.y - kept.point.y, dz = p.z - kept.point.z;
      if (!(dx * dx + dy * dy + dz * dz <= reach_sq_)) continue;
      ++matches;
      if (lowest < 0 || kept.number < lowest) lowest = kept.number;
    }
    if (lowest < 0) kept_.push_back({p, number});
    return lowest;
  }

  int matches = 0;

 private:
  struct Kept {
    giPoint3 point;
    int number;
  };
  double reach_sq_;
  std::vector<Kept> kept_;
};

// Coordinates that fall on and just beside multiples of half a tolerance, so that distances equal to the tolerance, equal x and
// several matches are frequent.
class Coordinates {
 public:
  Coordinates(double step, double offset, int span, int odd_percent, std::mt19937& random)
      : step_(step), offset_(offset), span_(span), odd_percent_(odd_percent), random_(&random) {}

  double operator()() {
    std::mt19937& random = *random_;
    if (static_cast<int>(random() % 100) < odd_percent_) {
      const double odd[] = {infinity, -infinity, not_a_number, DBL_MAX, -DBL_MAX, 0.0, -0.0, DBL_TRUE_MIN, 1e154, -1e160};
      return odd[random() % 10];
    }
    double x = offset_ + step_ * static_cast<int>(random() % span_);
    for (unsigned ulps = random() % 4; ulps > 1; --ulps) x = std::nextafter(x, random() % 2 ? infinity : -infinity);
    return x;
  }
  giPoint3 point() {
    const double x = (*this)(), y = random_->operator()() % 2 ? offset_ : (*this)();
    return giPoint3(x, y, random_->operator()() % 2 ? offset_ : (*this)());
  }

 private:
  double step_, offset_;
  int span_, odd_percent_;
  std::mt19937* random_;
};

struct Scale {
  double tol, step, offset;
};

// Ordinary sizes; tolerances that vanish beside the coordinates, near the size at which every coordinate is a cell of its own
// (2^53 tolerances) and beyond; squares that underflow in part or wholly; squares that overflow; no tolerance at all.
const Scale scales[] = {
    {1.0, 0.5, 0.0},       {0.1, 0.1, -0.3},     {1e-3, 5e-4, 1000.0},     {3.0, 1.0, -7.0},       {1e-9, 1e-9, 1e6},
    {1.0, 0.5, 0x1p50},    {1.0, 1.0, 0x1p53},   {1.0, 2.0, 0x1p54},       {1.3, 1.0, 0x1p52},     {0.7, 0.5, 0x1.8p52},
    {0.0, 0.25, 0.0},      {-0.0, 0.25, 1.0},    {0.0, 1e-170, 0.0},       {1e-200, 1e-163, 0.0},  {1e-161, 5e-162, 0.0},
    {3e-162, 1e-162, 0.0}, {1e-155, 5e-156, 0},  {1e-200, 1e-200, 5.0},    {DBL_TRUE_MIN, 1e-320, 0}, {1e150, 5e149, 0.0},
    {1e154, 5e153, 1e154}, {1e155, 1e155, 0.0},  {1e300, 1e307, 0.0},      {infinity, 1.0, 0.0},   {not_a_number, 0.0, 0.0},
    {-1.0, 0.5, 0.0},      {-0.1, 0.1, -0.3},    {-1e-3, 5e-4, 1000.0},    {-1.0, 0.5, 0x1p53},   {-infinity, 1.0, 0.0}, {1e-3, 0x1p-42, 4096.0}, {0x1p-20, 0x1p-21, 0x1p33}, {1e-12, 2e-12, 1e4}};

std::vector<giPoint3> random_points(const Scale& scale, int round, std::mt19937& random) {
  const int odd_percent = round % 3 == 0 ? 0 : round % 3 == 1 ? 3 : 15;
  Coordinates coordinates(scale.step, scale.offset, 2 + static_cast<int>(random() % 12), odd_percent, random);
  std::vector<giPoint3> points;
  for (int k = 0; k < 60; ++k) points.push_back(random() % 8 || k == 0 ? coordinates.point() : points[random() % k]);
  return points;
}

TEST(PointIndex, NamesTheLowestMatchLikeBruteForce) {
  std::mt19937 random(41);
  int matches = 0;
  for (const Scale& scale : scales) {
    for (int round = 0; round < 150; ++round) {
      const std::vector<giPoint3> points = random_points(scale, round, random);
      std::vector<int> numbers(points.size());
      for (std::size_t k = 0; k < numbers.size(); ++k) numbers[k] = static_cast<int>(k) * 3;
      if (round % 2) std::shuffle(numbers.begin(), numbers.end(), random);
      PointIndex index(scale.tol, Winner::lowest_number);
      BruteForce brute(scale.tol);
      for (std::size_t k = 0; k < points.size(); ++k) {
        const int expected = brute.find_or_add(points[k], numbers[k]);
        ASSERT_EQ(index.find(points[k]), expected) << scale.tol << " round " << round << " point " << k;
        ASSERT_EQ(index.find_or_add(points[k], numbers[k]), expected);
      }
      matches += brute.matches;
    }
  }
  EXPECT_GT(matches, 50000);
}

// Where squares are of normal size the search conditions on x count to the last bit; elsewhere they are passed over.
TEST(PointIndex, TreeOrderNamesWhatTheTreeFindsFirst) {
  std::mt19937 random(43);
  int not_first = 0, cut_off = 0;
  for (const Scale& scale : scales) {
    const double reach_sq = scale.tol * scale.tol;
    const bool follow = std::isnormal(reach_sq);
    for (int round = 0; round < 400; ++round) {
      const std::vector<giPoint3> points = random_points(scale, round, random);
      PointIndex index(scale.tol, Winner::tree_order);
      PointTreeLiteral tree(scale.tol, follow);
      BruteForce brute(scale.tol);
      for (std::size_t k = 0; k < points.size(); ++k) {
        const int number = static_cast<int>(k);
        const int expected = tree.add(points[k], number);
        const int lowest = brute.find_or_add(points[k], number);
        not_first += expected > lowest;
        cut_off += expected < 0 && lowest >= 0;
        ASSERT_EQ(index.find(points[k]), expected) << scale.tol << " round " << round << " point " << k;
        ASSERT_EQ(index.find_or_add(points[k], number), expected);
      }
    }
  }
  EXPECT_GT(not_first, 2000);
  EXPECT_GT(cut_off, 50);
}

// All points in a plane of constant x: the tree is one long branch, and most searches find several matches.
TEST(PointIndex, TreeOrderInAPlaneOfConstantX) {
  std::mt19937 random(47);
  PointIndex index(1.0, Winner::tree_order);
  PointTreeLiteral tree(1.0, true);
  BruteForce brute(1.0);
  for (int k = 0; k < 4000; ++k) {
    const giPoint3 p(2.0 + (k % 7 == 0 ? 1e-9 * static_cast<int>(random() % 9) : 0.0), (random() % 4000) * 0.01, (random() % 4000) * 0.01);
    brute.find_or_add(p, k);
    ASSERT_EQ(index.find_or_add(p, k), tree.add(p, k)) << k;
  }
  EXPECT_GT(brute.matches, 3500);
}

// A batch whose points all miss the table grows it under the probes already prepared.
TEST(PointIndex, ProbesOutliveGrowth) {
  std::mt19937 random(53);
  PointIndex batched(0.01, Winner::lowest_number), single(0.01, Winner::lowest_number);
  int merged = 0;
  for (int batch = 0; batch < 200; ++batch) {
    std::vector<giPoint3> points;
    std::vector<PointIndex::Probe> probes;
    for (int k = 0; k < 100; ++k) points.emplace_back((random() % 100) * 0.05, (random() % 100) * 0.05, (random() % 3) * 0.005);
    for (const giPoint3& p : points) probes.push_back(batched.probe(p));
    for (std::size_t k = 0; k < points.size(); ++k) {
      batched.prefetch(probes[k]);
      batched.prefetch_record(points[k], probes[k]);
    }
    for (int k = 0; k < 100; ++k) {
      const int expected = single.find_or_add(points[k], batch * 100 + k);
      const int position = batched.find_or_add_position(points[k], batch * 100 + k, probes[k]);
      ASSERT_EQ(position < 0 ? -1 : batched.number(position), expected);
      merged += expected >= 0;
    }
  }
  EXPECT_GT(merged, 5000);
  EXPECT_LT(merged, 19000);
}

// Inputs that would take hours if a search looked through a slab of x, through a cell without bound, or through a table in which
// regular coordinates pile up.
TEST(PointIndex, MillionsOfPointsInHardArrangements) {
  const struct { double tol, step, offset; int across; bool plane; } cases[] = {
      {0.5, 1.0, 0.0, 400000, false},     // sorted along x
      {0.5, 0.75, 1e3, 500, true},        // a plane of constant x
      {1e-300, 1.0, 0.0, 500, true},      // whole numbers, each a cell of its own
      {1e-300, 1e150, 0.0, 400, true},    // the same with coordinates that are large beside any cell
      {1.0, 1.0 + 1e-9, 0.0, 50, false},  // as close to each other as kept points can be
      {1.0, 4.0, 0.0, 500, true},         // all on the borders of cells
  };
  for (const auto& c : cases) {
    for (Winner winner : {Winner::lowest_number, Winner::tree_order}) {
      PointIndex index(c.tol, winner);
      const int total = c.across == 400000 ? c.across : c.plane ? c.across * c.across : c.across * c.across * c.across;
      const auto point = [&](int k) {
        if (c.across == 400000) return giPoint3(k * c.step, 0, 0);
        const int i = k % c.across, j = k / c.across % c.across, l = k / c.across / c.across;
        return giPoint3(c.offset + (c.plane ? 0.0 : l * c.step), i * c.step, j * c.step);
      };
      for (int k = 0; k < total; ++k) ASSERT_EQ(index.find_or_add(point(k), k), -1) << k;
      for (int k = 0; k < total; ++k) ASSERT_EQ(index.find_or_add(point(k), k), k);
    }
  }
}

}  // namespace
