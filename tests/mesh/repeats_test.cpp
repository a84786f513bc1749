// Elements that repeat or cancel each other.

#include <gtest/gtest.h>

#include "oracles/literal_mesh.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

struct Corners {
  int a, b, c;
};

struct Case {
  const char* name;
  std::vector<Corners> elements;
  int same;
  int both;
  int result;
  std::set<int> survivors;
};

const Case cases[] = {
    {"identical triangles keep the highest number", {{1, 2, 3}, {2, 3, 1}, {3, 1, 2}}, 1, 0, 1, {3}},
    {"opposite triangles do not repeat", {{1, 2, 3}, {1, 3, 2}}, 1, 0, 0, {1, 2}},
    {"different triangles do not repeat", {{1, 2, 3}, {1, 2, 4}, {4, 2, 3}}, 1, 0, 0, {1, 2, 3}},
    {"cancelling one of two deletes the lower number", {{1, 2, 3}, {2, 1, 3}}, 0, 0, 1, {2}},
    {"cancelling both deletes both", {{1, 2, 3}, {3, 2, 1}}, 0, 1, 1, {}},
    {"the same orientation does not cancel", {{1, 2, 3}, {2, 3, 1}}, 0, 1, 0, {1, 2}},
    // Element 1 takes the newest opposite one with it: 4; element 2 then takes 3.
    {"two pairs cancel", {{1, 2, 3}, {2, 3, 1}, {1, 3, 2}, {3, 2, 1}}, 0, 1, 1, {}},
    {"an odd one is left", {{1, 2, 3}, {1, 3, 2}, {2, 3, 1}}, 0, 1, 1, {3}},
    // Each of 1 to 3 finds an opposite one, so all go but the last.
    // Where an element has a corner twice, its last place counts: seen from there (1, 1, 2) runs 1, 2, 1.
    {"collapsed triangles do not repeat", {{1, 1, 2}, {1, 1, 2}}, 1, 0, 0, {1, 2}},
    {"but they cancel", {{1, 1, 2}, {1, 1, 2}}, 0, 0, 1, {2}},
    {"cancelling one of two goes on to the last", {{1, 2, 3}, {1, 3, 2}, {2, 3, 1}, {3, 2, 1}}, 0, 0, 1, {4}},
};

std::set<int> live(const trTriBlock& block) {
  std::set<int> result;
  for (int e = 1; e < block.element_count(); ++e) {
    if (block.element(e).valid()) result.insert(e);
  }
  return result;
}

TEST(Repeats, FollowTheTable) {
  for (const Case& c : cases) {
    for (const bool edges : {false, true}) {
      trTriBlock block;
      for (int i = 1; i <= 4; ++i) block.set_node(i, giPoint3(i, i * i, 0));
      for (const Corners& t : c.elements) block.set_element(block.element_count(), t.a, t.b, t.c);
      if (edges) block.build_edges();
      block.force_changed_status(0);
      EXPECT_EQ(block.remove_repeats(c.same, c.both), c.result) << c.name;
      EXPECT_EQ(live(block), c.survivors) << c.name;
      // Only removing repeats counts as a change.
      EXPECT_EQ(block.changed, c.same && c.result) << c.name;
      EXPECT_TRUE(is_sound(block)) << c.name;
    }
  }
}

TEST(Repeats, ShortNamesAreTheLongCall) {
  trTriBlock block;
  for (int i = 1; i <= 3; ++i) block.set_node(i, giPoint3(i, i * i, 0));
  for (int k = 0; k < 3; ++k) block.generate(1, 2, 3);
  block.generate(1, 3, 2);
  EXPECT_EQ(block.repeating(), 1);
  EXPECT_EQ(live(block), (std::set<int>{3, 4}));
  EXPECT_EQ(block.cancelling(0), 1);
  EXPECT_EQ(live(block), (std::set<int>{4}));
  block.generate(1, 2, 3);
  EXPECT_EQ(block.cancelling(1), 1);
  EXPECT_TRUE(live(block).empty());
  EXPECT_EQ(block.cancelling(1), 0);
}

// Corners sorted into one rotation, so that elements of the same orientation compare equal.
std::array<int, 3> rotation_free(const trElement& t) {
  std::array<int, 3> c = {t[0], t[1], t[2]};
  std::rotate(c.begin(), std::min_element(c.begin(), c.end()), c.end());
  return c;
}

// How many elements of either orientation survive depends on how many there were, not on their order: of p and q
// opposite ones, repeating leaves one each, and cancelling both leaves the difference.
TEST(Repeats, LeaveTheNumbersThatMultiplicitiesDemand) {
  Random random(11);
  int effective = 0;
  for (int round = 0; round < 600; ++round) {
    trTriBlock block;
    for (int i = 1; i <= 5; ++i) block.set_node(i, giPoint3(i, i * i, i * i * i));
    for (int k = 0; k < 14; ++k) block.generate(random.between(1, 5), random.between(1, 5), random.between(1, 5));
    std::map<std::array<int, 3>, int> count;
    for (int e = 1; e < block.element_count(); ++e) ++count[rotation_free(block.element(e))];
    const bool same = random.one_in(2);
    effective += block.remove_repeats(same, 1);
    std::map<std::array<int, 3>, int> left;
    for (int e : live(block)) ++left[rotation_free(block.element(e))];
    for (const auto& [corners, n] : count) {
      const auto opposite = count.find({corners[0], corners[2], corners[1]});
      const int m = opposite == count.end() ? 0 : opposite->second;
      EXPECT_EQ(left[corners], same ? 1 : std::max(0, n - m)) << "round " << round;
    }
  }
  EXPECT_GT(effective, 300);
}

// At a node with more elements than are walked one by one, the answers must stay those of the walk, for every
// multiplicity.
TEST(Repeats, AtAHubMatchTheWalk) {
  Random random(12);
  for (int round = 0; round < 30; ++round) {
    trTriBlock block;
    LiteralMesh literal;
    for (int i = 1; i <= 12; ++i) {
      block.set_node(i, giPoint3(i, i * i, 0));
      literal.set_node(i, giPoint3(i, i * i, 0));
    }
    for (int k = 0; k < 400; ++k) {
      const int t[3] = {1, random.between(1, 12), random.between(1, 12)};
      const int turn = random.below(3);
      block.set_element(k + 1, t[turn], t[(turn + 1) % 3], t[(turn + 2) % 3]);
      literal.set_element(k + 1, t[turn], t[(turn + 1) % 3], t[(turn + 2) % 3]);
    }
    if (round % 2) {
      block.build_edges();
      literal.build_edges();
    }
    const int same = round % 3 == 0;
    const int both = round % 3 == 1;
    EXPECT_EQ(block.remove_repeats(same, both), literal.remove_repeats(same, both));
    ASSERT_EQ(difference(block, literal), "") << "round " << round;
    ASSERT_TRUE(is_sound(block));
  }
}

}  // namespace
