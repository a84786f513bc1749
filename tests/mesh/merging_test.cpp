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

// The rule, pairwise and in order, on thousands of small meshes.
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
    ASSERT_EQ(block.unduplicate_nodes(s.tol), literal.unduplicate_nodes(s.tol)) << "round " << round;
    ASSERT_EQ(difference(block, literal), "") << "round " << round;
    ASSERT_TRUE(s.hostile || is_sound(block)) << "round " << round;
    for (int i = 1; i < block.node_count(); ++i) ++(block.node(i).invalid ? merged : apart);
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

}  // namespace
