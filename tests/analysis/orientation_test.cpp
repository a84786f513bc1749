// Orientation: every piece after its majority, then the whole mesh outward.

#include <gtest/gtest.h>

#include <chrono>

#include "analysis/orient_group.h"
#include "oracles/shapes_literal.h"
#include "support/interrupting_handler.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

constexpr int many = 100000;

// Fails when the rest of a test takes longer than its work can need; a quadratic cost exceeds it by far.
class Deadline {
 public:
  explicit Deadline(double seconds) : seconds_(seconds) {}
  ~Deadline() {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    EXPECT_LT(elapsed.count(), seconds_);
  }

 private:
  double seconds_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

bool consistent_and_closed(trTriBlock& block) {
  block.alter(0);
  block.build_edges();
  return listed_free_edges(block).empty();
}

void reverse_some(trTriBlock& block, Random& random, int one_in) {
  for (int e = 1; e < block.element_count(); ++e) {
    if (random.one_in(one_in)) block.reverse_element(e);
  }
}

std::vector<int> second_corners(const trTriBlock& block) {
  std::vector<int> result;
  for (int e = 1; e < block.element_count(); ++e) result.push_back(block.element(e)[1]);
  return result;
}

// A strip of n quadrilaterals, closed with half a turn.
Shape moebius_strip(int n) {
  Shape strip;
  for (int k = 0; k < n; ++k) {
    const double turn = 2 * std::acos(-1.0) * k / n;
    for (double w : {-0.5, 0.5}) {
      const double r = 2 + w * std::cos(turn / 2);
      strip.points.emplace_back(r * std::cos(turn), r * std::sin(turn), w * std::sin(turn / 2));
    }
  }
  for (int k = 0; k < n; ++k) {
    const bool last = k == n - 1;
    const int a = 2 * k, b = 2 * k + 1, c = last ? 1 : a + 2, d = last ? 0 : b + 2;
    strip.triangles.push_back({a, c, b});
    strip.triangles.push_back({b, c, d});
  }
  return strip;
}

// Crowded edges, copies, gaps, elements that name a node twice: elements, the order in which they are reversed (by the
// lists of free edges), the state of each, and what each group counted.
TEST(Orientation, AgreesWithTheWalkRoundEachElement) {
  Random random(36);
  int reversed = 0, contradictions = 0, pieces = 0;
  for (int round = 0; round < 3000; ++round) {
    trTriBlock block, traced;
    LiteralMesh literal;
    const auto all = [&](auto edit) {
      edit(block);
      edit(traced);
      edit(literal);
    };
    const bool hub = round % 50 == 0;
    const int nodes = hub ? 100 : random.between(3, 16);
    for (int i = 1; i <= nodes; ++i) {
      const giPoint3 p(random.below(4), random.below(4), random.below(3));
      all([&](auto& mesh) { mesh.set_node(i, p); });
    }
    const int last = hub ? 300 : random.between(1, 20);
    for (int e = 1; e <= last; ++e) {
      const int a = hub ? 1 : random.between(1, nodes), b = random.between(1, nodes), c = random.between(1, nodes);
      if (a != b && b != c && c != a) all([&](auto& mesh) { mesh.set_element(e, a, b, c); });
      if (random.one_in(12)) all([&](auto& mesh) { mesh.set_element(e, a, e % 2 ? a : b, b); });
      const int gone = random.between(1, e);
      if (random.one_in(10) && gone < block.element_count()) all([&](auto& mesh) { mesh.delete_element(gone); });
    }
    all([](auto& mesh) { mesh.build_edges(); });
    EXPECT_EQ(block.find_top_element(), find_top_element_literal(literal));
    const OrientationLiteral expected = orient_normals_literal(literal);

    trOrienter orienter(&traced);
    for (const OrientationLiteral::Group& wanted : expected.groups) {
      trOrientGroup group(&orienter);
      group.find_seed();
      group.find_connected_group();
      ASSERT_EQ(group.seed, wanted.seed);
      ASSERT_EQ(group.num_same, wanted.num_same);
      ASSERT_EQ(group.num_opposite, wanted.num_opposite);
      ASSERT_EQ(group.orientable, wanted.orientable) << "round " << round << ", seed " << group.seed;
      ASSERT_EQ(group.do_reversals(), group.num_reverse() > 0);
      contradictions += group.non_orientable();
      reversed += group.num_reverse();
    }
    trOrientGroup none(&orienter);
    none.find_seed();
    ASSERT_TRUE(none.no_seed());
    ASSERT_EQ(static_cast<std::size_t>(none.group_index), expected.groups.size());
    for (int e = 0; e < orienter.num_elements(); ++e) {
      ASSERT_EQ(orienter.status(e), LiteralMesh::at(expected.status, e)) << "round " << round << ", element " << e;
    }
    ASSERT_EQ(block.orient_normals(), expected.result);
    ASSERT_EQ(difference(block, literal), "") << "round " << round;
    pieces += expected.groups.size() > 1;
  }
  EXPECT_GT(reversed, 3000);
  EXPECT_GT(contradictions, 500);
  EXPECT_GT(pieces, 1000);
}

TEST(Orientation, TurnsFlippedClosedSurfacesOutward) {
  Random random(37);
  const Shape shapes[] = {closed_box(), sphere(9), torus(12, 8), bumpy_sphere(800)};
  for (int round = 0; round < 40; ++round) {
    const Shape& shape = shapes[round % 4];
    BlockOf block(shuffled(shape, random.bits()));
    const double volume = block.volume();
    reverse_some(block, random, random.between(1, 6));
    block.orient_normals();
    EXPECT_TRUE(consistent_and_closed(block));
    EXPECT_NEAR(block.volume(), volume, 1e-9);
    EXPECT_EQ(block.orient_normals(), 0);
  }
}

// A consistent piece keeps status 1; a later piece whose seed is in the minority reverses its own elements of that
// status, and no others.
TEST(Orientation, LeavesAConsistentPieceAloneWhenALaterOneIsReversed) {
  BlockOf block(closed_box({0, 0, 5}));
  add_to(block, closed_box());
  const std::vector<int> good = second_corners(block);
  block.reverse_element(13);
  block.reverse_element(17);
  EXPECT_EQ(block.orient_normals(), 1);
  EXPECT_EQ(second_corners(block), good);

  block.reverse_element(13);
  trOrienter orienter(&block);
  for (int k = 0; k < 2; ++k) {
    trOrientGroup group(&orienter);
    group.find_seed();
    group.find_connected_group();
    EXPECT_EQ(group.do_reversals(), k);
    EXPECT_EQ(group.group_index, k);
  }
  for (int e = 1; e <= 24; ++e) EXPECT_EQ(orienter.status(e), e <= 12 ? tr_orient_same : tr_orient_done);
  EXPECT_EQ(orienter.status(0), tr_orient_ignore);
  EXPECT_EQ(second_corners(block), good);
}

// Each piece by its own majority, whatever the others do; the direction of the highest piece decides for all.
TEST(Orientation, TurnsAllPiecesWithTheTopmost) {
  BlockOf block(closed_box());
  add_to(block, closed_box({3, 0, 5}));
  for (int e = 13; e <= 24; ++e) block.reverse_element(e);
  EXPECT_DOUBLE_EQ(block.volume(), 0);
  EXPECT_EQ(block.orient_normals(), 1);
  for (int e = 1; e <= 12; ++e) EXPECT_EQ(block.element(e)[1], closed_box().triangles[std::size_t(e - 1)][2] + 1);
  for (int e = 13; e <= 24; ++e) EXPECT_EQ(block.element(e)[1], closed_box().triangles[std::size_t(e - 13)][1] + 9);
}

// On a tie the seed, the lower number, keeps its orientation.
TEST(Orientation, LetsTheSeedWinATie) {
  BlockOf block(Shape{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}, {{0, 1, 2}, {1, 2, 3}}});
  EXPECT_EQ(block.orient_normals(), 1);
  EXPECT_EQ(second_corners(block), (std::vector<int>{2, 4}));
}

TEST(Orientation, EndsOnAMoebiusStrip) {
  Random random(38);
  for (int n : {3, 4, 7, 40}) {
    BlockOf block(shuffled(moebius_strip(n), random.bits()));
    block.orient_normals();
    trOrienter orienter(&block);
    trOrientGroup group(&orienter);
    group.find_seed();
    group.find_connected_group();
    EXPECT_TRUE(group.non_orientable());
    EXPECT_EQ(group.num_same + group.num_opposite, 2 * n);
    EXPECT_TRUE(is_sound(block));
  }
}

// The highest node by exact height; there, the element whose lower other corner is highest; on a further tie the first.
// Of two other corners of equal height either gives the same height, and so the same winner.
TEST(TopElement, IsAtTheHighestNodeTheOneWhoseLowerCornerIsHighest) {
  struct Case {
    const char* name;
    std::vector<double> z;
    std::vector<std::array<int, 3>> triangles;
    int top;
  };
  const double above = std::nextafter(9.0, 10.0);
  const Case cases[] = {
      {"nothing", {1, 2}, {}, -1},
      {"a loose highest node has no element", {9, 1, 2, 3}, {{1, 2, 3}}, -1},
      {"lower other corner, not the higher one", {9, 8, 1, 5, 4}, {{0, 1, 2}, {0, 3, 4}}, 2},
      {"nodes of equal height", {9, 1, 2, 9, 4, 5}, {{0, 1, 2}, {3, 4, 5}}, 2},
      {"one unit in the last place is higher", {above, 1, 2, 9, 4, 5}, {{0, 1, 2}, {3, 4, 5}}, 1},
      {"a tie keeps the first met: lower node, then newest", {9, 1, 1, 1}, {{0, 1, 2}, {2, 0, 3}, {3, 1, 0}}, 3},
  };
  for (const Case& c : cases) {
    Shape shape{{}, c.triangles};
    for (double z : c.z) shape.points.emplace_back(shape.points.size(), 0, z);
    EXPECT_EQ(BlockOf(shape).find_top_element(), c.top) << c.name;
  }
}

TEST(Orientation, TakesNodesAndEdgesOfManyElements) {
  Random random(39);
  BlockOf cone(shuffled(cone_fan(many), 8));
  reverse_some(cone, random, 3);
  Shape book{{{0, 0, 0}, {0, 0, 1}}, {}};
  for (int k = 0; k < many; ++k) {
    book.points.emplace_back(std::cos(k), std::sin(k), 0);
    book.triangles.push_back({k % 2, 1 - k % 2, k + 2});
  }
  BlockOf pages(book);
  const Deadline deadline(20);
  EXPECT_EQ(cone.orient_normals(), 1);
  cone.build_edges();
  EXPECT_EQ(listed_free_edges(cone).size(), std::size_t{many});
  EXPECT_GT(cone.volume(), 0);
  EXPECT_EQ(pages.orient_normals(), 1);
  EXPECT_TRUE(is_sound(pages));
}

TEST(Orientation, TakesManyLooseTriangles) {
  Shape loose;
  for (int k = 0; k < 500000; ++k) {
    loose.triangles.push_back({3 * k, 3 * k + 1, 3 * k + 2});
    loose.points.insert(loose.points.end(), {{double(k), 0, 0}, {double(k), 1, 0}, {double(k), 0, 1}});
  }
  BlockOf block(loose);
  const Deadline deadline(20);
  EXPECT_EQ(block.orient_normals(), 0);
}

// Whatever is reversed until then stays reversed; the mesh is sound at any stop.
TEST(Orientation, IsInterruptedAtAnyPoll) {
  Random random(40);
  int polls = 1;
  std::set<int> results;
  for (int stop = 0; stop <= polls; ++stop) {
    BlockOf block(closed_box());
    add_to(block, closed_box({0, 0, 3}));
    block.build_edges();
    for (int e : {2, 5, 14, 19, 20}) block.reverse_element(e);
    block.elements_referenced = 0;
    {
      InterruptingHandler handler(stop);
      const int result = block.orient_normals();
      if (stop == 0) polls = handler.polls;
      EXPECT_EQ(handler.polls, stop == 0 ? polls : stop);
      if (stop > 0) results.insert(result);
    }
    EXPECT_TRUE(is_sound(block));
  }
  EXPECT_EQ(results, (std::set<int>{0, 1}));
  EXPECT_GT(polls, 3 * 24);
  BlockOf block(closed_box());
  InterruptingHandler handler(3);
  EXPECT_EQ(block.find_top_element(), -2);
}

}  // namespace
