// Orientation: every piece after its majority, then the whole mesh outward; and neighbours that are folded onto each other.

#include <gtest/gtest.h>

#include <chrono>

#include "analysis/orient_group.h"
#include "oracles/shapes_literal.h"
#include "support/interrupting_handler.h"
#include "support/numbers.h"
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

// Every page hangs on the same two nodes.
Shape book() {
  Shape shape{{{0, 0, 0}, {0, 0, 1}}, {}};
  for (int k = 0; k < many; ++k) {
    shape.points.emplace_back(std::cos(k), std::sin(k), 0);
    shape.triangles.push_back({k % 2, 1 - k % 2, k + 2});
  }
  return shape;
}

// Two triangles at the edge from (0,0,0) to (1,0,0); the second is turned about it by so many degrees, 0 being flat.
Shape hinge(double degrees) {
  const double turn = degrees * std::acos(-1.0) / 180;
  return Shape{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, -std::cos(turn), std::sin(turn)}}, {{0, 1, 2}, {1, 0, 3}}};
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

// On a tie the seed, the lower number, keeps its orientation.
TEST(Orientation, LetsTheSeedWinATie) {
  BlockOf block(Shape{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}, {{0, 1, 2}, {1, 2, 3}}});
  EXPECT_EQ(block.orient_normals(), 1);
  EXPECT_EQ(elements_of(block), (std::vector<std::array<int, 3>>{{1, 2, 3}, {2, 4, 3}}));
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

TEST(Orientation, TakesManyElementsAtOneNodeAndAtOneEdgeAndManyPieces) {
  Random random(39);
  BlockOf cone(shuffled(cone_fan(many), 8)), pages(book());
  for (int e = 1; e <= many; ++e) {
    if (random.one_in(3)) cone.reverse_element(e);
  }
  Shape loose;
  for (int k = 0; k < 5 * many; ++k) {
    loose.triangles.push_back({3 * k, 3 * k + 1, 3 * k + 2});
    loose.points.insert(loose.points.end(), {{double(k), 0, 0}, {double(k), 1, 0}, {double(k), 0, 1}});
  }
  BlockOf pieces(loose);
  const Deadline deadline(40);
  EXPECT_EQ(cone.orient_normals(), 1);
  cone.build_edges();
  EXPECT_EQ(listed_free_edges(cone).size(), std::size_t{many});
  EXPECT_GT(cone.volume(), 0);
  EXPECT_EQ(pages.orient_normals(), 1);
  EXPECT_EQ(pieces.orient_normals(), 0);
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

TEST(FindOverlapping, MeasuresTheAngleThatNeighboursEnclose) {
  intcoPageArr out{5};
  for (double turn : {0.0, 30.0, 90.0, 179.0, 180.0}) {
    BlockOf block(hinge(turn));
    EXPECT_NEAR(block.find_overlapping(giAngle::from_degrees(2.5), out).degrees(), 180 - turn, 1e-5);
    EXPECT_EQ(numbers_in(out), turn > 178 ? (std::vector<int>{1, 2}) : std::vector<int>{});
  }
  // Neighbours that run the edge in the same direction do not count, nor do loose ones.
  BlockOf block(hinge(180));
  block.reverse_element(2);
  EXPECT_EQ(block.find_overlapping(giAngle::from_degrees(200), out).degrees(), 180);
  EXPECT_EQ(out.count(), 0);
  EXPECT_EQ(trTriBlock().find_overlapping(giAngle::from_degrees(2.5), out).degrees(), 180);
}

// Crowded edges, gaps, copies and elements that name a node twice; tolerances that equal an angle of the mesh.
TEST(FindOverlapping, AgreesWithTheWalkRoundEachElement) {
  Random random(32);
  int listed = 0, equal = 0;
  for (int round = 0; round < 3000; ++round) {
    trTriBlock block;
    const int nodes = random.between(4, 9);
    for (int i = 1; i <= nodes; ++i) block.set_node(i, giPoint3(random.below(4), random.below(4), random.below(3)));
    const int last = random.between(2, 24);
    for (int e = 1; e <= last; ++e) {
      const int a = random.between(1, nodes), b = random.between(1, nodes), c = random.between(1, nodes);
      if (a != b && b != c && c != a) block.set_element(e, a, b, c);
      if (random.one_in(8)) block.set_element(e, a, random.one_in(2) ? a : b, b);
      if (random.one_in(9) && block.element_count() > 1) block.delete_element(random.between(1, block.element_count() - 1));
    }
    std::vector<int> expected;
    giAngle tol = giAngle::from_degrees(random.one_in(9) ? random.between(-1.0, 200.0) : random.between(0.0, 120.0));
    if (random.one_in(2)) tol = find_overlapping_literal(block, tol, expected);
    const giAngle sharpest = find_overlapping_literal(block, tol, expected);
    intcoPageArr out;
    ASSERT_EQ(block.find_overlapping(tol, out).radians(), sharpest.radians()) << "round " << round;
    ASSERT_EQ(numbers_in(out), expected) << "round " << round;
    listed += out.count();
    equal += sharpest.radians() == tol.radians() && sharpest.degrees() < 179;
  }
  EXPECT_GT(listed, 3000);
  EXPECT_GT(equal, 500);
}

TEST(FindOverlapping, TakesNodesOfManyElements) {
  BlockOf cone(shuffled(cone_fan(many), 7));
  intcoPageArr out;
  EXPECT_GT(cone.find_overlapping(giAngle::from_degrees(2.5), out).degrees(), 179);
  EXPECT_EQ(out.count(), 0);
  BlockOf pages(book());
  pages.find_overlapping(giAngle::from_degrees(60), out);
  EXPECT_GT(out.count(), many / 10);
  for (int k = 1; k < out.count(); ++k) ASSERT_LT(out[k - 1], out[k]);
}

// What was found until then is sorted as well. The element lists are made anew each time.
TEST(FindOverlapping, IsInterruptedAtAnyPoll) {
  BlockOf block(shuffled(bumpy_sphere(9000), 9));
  intcoPageArr out;
  const auto search = [&](int stop) {
    InterruptingHandler handler(stop);
    block.elements_referenced = 0;
    block.find_overlapping(giAngle::from_degrees(170), out);
    for (int k = 1; k < out.count(); ++k) EXPECT_LT(out[k - 1], out[k]);
    return handler.polls;
  };
  const int polls = search(0);
  EXPECT_GT(polls, 2 * block.valid_elements());
  std::set<int> counts;
  for (int k = 1; k <= 20; ++k) {
    EXPECT_EQ(search(polls * k / 20), polls * k / 20);
    counts.insert(out.count());
    EXPECT_TRUE(is_sound(block));
  }
  EXPECT_GT(counts.size(), 3u);
}

}  // namespace
