// Merging nodes within a tolerance.

#include <gtest/gtest.h>

#include <cfloat>

#include "oracles/literal_mesh.h"
#include "support/journal_recorder.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

constexpr double smallest = 5e-324;

TEST(Merging, RestoresAnExplodedSurface) {
  for (const Shape& shape : {closed_box(), sphere(7), torus(9, 6), shuffled(bumpy_sphere(500), 1)}) {
    BlockOf block(exploded(shape));
    EXPECT_EQ(block.unduplicate_nodes(smallest), 1);
    EXPECT_EQ(block.valid_nodes(), static_cast<int>(shape.points.size()));
    EXPECT_EQ(block.valid_elements(), static_cast<int>(shape.triangles.size()));
    EXPECT_TRUE(is_sound(block));
    block.build_edges();
    EXPECT_TRUE(listed_free_edges(block).empty());
  }
}

TEST(Merging, OfTwoTrianglesThatShareAnEdge) {
  BlockOf block(exploded(flat_sheet(1, 1)));
  EXPECT_EQ(block.unduplicate_nodes(1e-3), 1);
  EXPECT_EQ(block.valid_nodes(), 4);
  EXPECT_EQ(block.valid_elements(), 2);
  EXPECT_EQ(block.undup_tol, 1e-3);
  EXPECT_EQ(block.element(2)[0], 1);
  EXPECT_EQ(block.element(2)[1], 3);
}

TEST(Merging, DeletesWhatCollapses) {
  trTriBlock block;
  const double d = 1e-3;
  for (const giPoint3& p :
       {giPoint3(0, 0, 0), giPoint3(d, 0, 0), giPoint3(0, d, 0), giPoint3(1, 0, 0), giPoint3(1, d, 0)}) {
    block.set_node(block.node_count(), p);
  }
  block.generate(1, 2, 3);
  block.generate(1, 4, 5);
  block.generate(1, 4, 2);
  EXPECT_EQ(block.unduplicate_nodes(2 * d), 1);
  EXPECT_EQ(block.valid_elements(), 0);
  EXPECT_EQ(block.valid_nodes(), 2);
}

TEST(Merging, WithToleranceZeroNeverMerges) {
  BlockOf block(exploded(closed_box()));
  EXPECT_EQ(block.unduplicate_nodes(0.0), 0);
  EXPECT_EQ(block.unduplicate_nodes(-1.0), 0);
  EXPECT_EQ(block.unduplicate_nodes(std::nan("")), 0);
  EXPECT_EQ(block.valid_nodes(), 36);
  EXPECT_EQ(block.unduplicate_nodes(smallest), 1);
  EXPECT_EQ(block.valid_nodes(), 8);
}

// A tolerance not above that of the last completed merge cannot find anything, so nothing is even looked at.
TEST(Merging, AgainWithNoLargerToleranceIsSkipped) {
  BlockOf block(exploded(closed_box()));
  EXPECT_EQ(block.unduplicate_nodes(0.5), 1);
  block.build_edges();
  *block.node(block.element(1)[1]).coords = block.point(block.element(1)[0]);
  EXPECT_EQ(block.unduplicate_nodes(0.5), 0);
  EXPECT_EQ(block.unduplicate_nodes(0.25), 0);
  EXPECT_EQ(block.edges_built, 1);
  EXPECT_EQ(block.unduplicate_nodes(0.75), 1);
  EXPECT_EQ(block.edges_built, 0);
  // Any move of a node lifts the bar.
  block.set_node(1, block.point(1));
  EXPECT_EQ(block.undup_tol, 0.0);
}

TEST(Merging, OfNothingStillRecordsItsTolerance) {
  BlockOf block(closed_box());
  block.build_edges();
  block.force_changed_status(0);
  EXPECT_EQ(block.unduplicate_nodes(0.5), 0);
  EXPECT_EQ(block.undup_tol, 0.5);
  EXPECT_EQ(block.edges_built, 1);
  EXPECT_EQ(block.changed, 0);
}

// The chain 0, 1, 2, 3 with tolerance 1: 1 goes to 0, then 2 is farther than 1 from 0 and stays, and 3 goes to 2.
TEST(Merging, DoesNotFollowChains) {
  trTriBlock block;
  for (int i = 1; i <= 4; ++i) block.set_node(i, giPoint3(i - 1, 0, 0));
  EXPECT_EQ(block.unduplicate_nodes(1.0), 1);
  EXPECT_EQ(block.node(1).invalid, 0);
  EXPECT_EQ(block.node(2).invalid, 1);
  EXPECT_EQ(block.node(3).invalid, 0);
  EXPECT_EQ(block.node(4).invalid, 1);
}

// Of several nodes in reach the lowest number is the survivor, even when another is nearer.
TEST(Merging, NamesTheLowestInReach) {
  trTriBlock block;
  for (const double x : {0.0, 1.5, 0.9}) block.set_node(block.node_count(), giPoint3(x, 0, 0));
  block.set_node(4, giPoint3(0, 9, 0));
  block.set_element(1, 3, 2, 4);
  EXPECT_EQ(block.unduplicate_nodes(1.0), 1);
  EXPECT_EQ(block.element(1)[0], 1);
}

TEST(Merging, AveragesAttributesByWeight) {
  trTriBlock block;
  block.set_node_data_size(1);
  const double values[] = {0, 10, 20, 60};
  const int weights[] = {0, 1, 3, 2};
  for (int i = 1; i <= 3; ++i) {
    block.set_node(i, giPoint3(1, 2, 3));
    block.node_data(i).weight = weights[i];
    block.node_data(i).values[0] = values[i];
  }
  JournalRecorder journal(block);
  EXPECT_EQ(block.unduplicate_nodes(smallest), 1);
  // (10 * 1 + 20 * 3 + 60 * 2) / 6, in two steps.
  EXPECT_NEAR(block.node_data(1).values[0], 190.0 / 6, 1e-12);
  EXPECT_EQ(block.node_data(1).weight, 6);
  EXPECT_EQ(journal.reports().nodes, (std::vector<int>{1, 2, 1, 3}));
  EXPECT_TRUE(journal.restores_the_start());
}

// Coordinates in a few clusters, on a grid whose steps are exact multiples of the tolerance, with and without noise,
// signed zeros, infinities and what is not a number.
giPoint3 awkward_point(Random& random, double step, bool hostile) {
  giPoint3 p;
  for (int k = 0; k < 3; ++k) {
    p[k] = random.between(-2, 2) * step;
    if (random.one_in(3)) p[k] += random.between(-step, step);
    if (random.one_in(8)) p[k] = -0.0;
    if (hostile && random.one_in(12)) {
      const double odd[] = {HUGE_VAL, -HUGE_VAL, std::nan(""), DBL_MAX, -DBL_MAX, 1e200, 5e-324, 1e-170, 1e17};
      p[k] = odd[random.below(9)];
    }
  }
  return p;
}

struct MergeSetting {
  const char* name;
  double step;
  double tol;
  bool hostile;
};

std::ostream& operator<<(std::ostream& out, const MergeSetting& s) { return out << s.name; }

class RandomMerges : public testing::TestWithParam<MergeSetting> {};

// The rule, pairwise and in order, on thousands of small meshes; and what it promises, whatever the rule.
TEST_P(RandomMerges, MatchThePairwiseRule) {
  const MergeSetting& s = GetParam();
  Random random(31);
  int merged = 0;
  int apart = 0;
  for (int round = 0; round < 700; ++round) {
    trTriBlock block;
    LiteralMesh literal;
    const int triangles = random.between(2, 12);
    for (int i = 1; i <= 3 * triangles; ++i) {
      giPoint3 p = awkward_point(random, s.step, s.hostile);
      if (i > 1 && random.one_in(4)) p = block.point(random.between(1, i - 1));
      block.set_node(i, p);
      literal.set_node(i, p);
    }
    for (int e = 1; e <= triangles; ++e) {
      block.set_element(e, 3 * e - 2, 3 * e - 1, 3 * e);
      literal.set_element(e, 3 * e - 2, 3 * e - 1, 3 * e);
    }
    std::vector<giPoint3> places;
    for (int i = 0; i < block.node_count(); ++i) places.push_back(block.point(i));
    ASSERT_EQ(block.unduplicate_nodes(s.tol), literal.unduplicate_nodes(s.tol)) << "round " << round;
    ASSERT_EQ(difference(block, literal), "") << "round " << round;
    ASSERT_TRUE(s.hostile || is_sound(block)) << "round " << round;
    const auto within = [&](int i, int k) {
      return places[static_cast<std::size_t>(i)].distance_sq(places[static_cast<std::size_t>(k)]) <= s.tol * s.tol;
    };
    for (int i = 1; i < block.node_count(); ++i) {
      int near = 0;
      for (int k = 1; k < i; ++k) near += !block.node(k).invalid && within(i, k);
      ASSERT_EQ(near > 0, block.node(i).invalid != 0) << "node " << i << " in round " << round;
      (near > 0 ? merged : apart) += 1;
    }
  }
  EXPECT_GT(merged, 500);
  EXPECT_GT(apart, 1000);
}

INSTANTIATE_TEST_SUITE_P(
    Settings, RandomMerges,
    testing::Values(MergeSetting{"OneStep", 0.25, 0.25, false}, MergeSetting{"HalfAStep", 0.5, 0.25, false},
                    MergeSetting{"TenthThatIsNotExact", 0.1, 0.1, false},
                    MergeSetting{"ExactCopies", 1.0, smallest, false},
                    MergeSetting{"SquareUnderflows", 1e-160, 1e-170, true},
                    MergeSetting{"FarFromTheOrigin", 1e9, 1e9, false}, MergeSetting{"Hostile", 0.25, 0.25, true},
                    MergeSetting{"HostileExact", 1.0, smallest, true},
                    MergeSetting{"SquareOverflows", 1.0, 1e200, true}, MergeSetting{"Infinite", 1.0, HUGE_VAL, true}),
    [](const auto& param_info) { return std::string(param_info.param.name); });

// Dense clusters whose nodes all lie within reach of each other, then the same nodes in other orders: always few
// survivors.
TEST(Merging, OfDenseClustersKeepsSurvivorsApart) {
  Random random(41);
  for (int round = 0; round < 5; ++round) {
    BlockOf block(clustered_soup(random, 1500, 0.05));
    const double tol = 0.03;
    std::vector<giPoint3> places;
    for (int i = 0; i < block.node_count(); ++i) places.push_back(block.point(i));
    ASSERT_EQ(block.unduplicate_nodes(tol), 1);
    std::vector<int> kept;
    for (int i = 1; i < block.node_count(); ++i) {
      if (!block.node(i).invalid) kept.push_back(i);
    }
    EXPECT_LT(kept.size(), 4000u);
    for (int i = 1; i < block.node_count(); ++i) {
      const giPoint3& p = places[static_cast<std::size_t>(i)];
      const auto reaches = [&](int k) { return k != i && p.distance_sq(block.point(k)) <= tol * tol; };
      const bool near = std::any_of(kept.begin(), kept.end(), reaches);
      ASSERT_EQ(near, block.node(i).invalid != 0) << i;
    }
    EXPECT_TRUE(is_sound(block));
  }
}

// A line of points in ascending order is the worst case of an unbalanced tree.
TEST(Merging, OfAMillionSortedPointsTakesNoTime) {
  trTriBlock block;
  const int n = 1000000;
  for (int i = 1; i <= n; ++i) block.set_node(i, giPoint3(i / 2, 0, 0));
  EXPECT_EQ(block.unduplicate_nodes(0.5), 1);
  EXPECT_EQ(block.valid_nodes(), n / 2 + 1);
}

// Points that all share one coordinate plane, at one place each many times over, or all within reach of one another.
TEST(Merging, OfManyPointsInFewPlacesTakesNoTime) {
  trTriBlock block;
  const int n = 200000;
  for (int i = 1; i <= n; ++i) block.set_node(i, giPoint3(5, i % 7, (i % 11) * 1e-9));
  EXPECT_EQ(block.unduplicate_nodes(1e-6), 1);
  EXPECT_EQ(block.valid_nodes(), 7);
}

TEST(Merging, AtATinyToleranceChangesNoMeasure) {
  BlockOf block(exploded(shuffled(bumpy_sphere(2000), 7)));
  const double area = block.surface_area();
  const double volume = block.volume();
  EXPECT_EQ(block.unduplicate_nodes(1e-12), 1);
  EXPECT_NEAR(block.surface_area(), area, 1e-9);
  EXPECT_NEAR(block.volume(), volume, 1e-9);
}

}  // namespace
