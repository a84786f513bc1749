// Neighbours that are folded onto each other.

#include <gtest/gtest.h>

#include "oracles/shapes_literal.h"
#include "support/interrupting_handler.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

std::vector<int> numbers(const intcoPageArr& list) {
  std::vector<int> result;
  for (int k = 0; k < list.count(); ++k) result.push_back(list[k]);
  return result;
}

// Two triangles at the edge from (0,0,0) to (1,0,0); the second is turned about it by so many degrees, 0 being flat.
Shape hinge(double degrees) {
  const double turn = degrees * std::acos(-1.0) / 180;
  return Shape{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, -std::cos(turn), std::sin(turn)}}, {{0, 1, 2}, {1, 0, 3}}};
}

TEST(FindOverlapping, MeasuresTheAngleThatNeighboursEnclose) {
  intcoPageArr out{5};
  for (double turn : {0.0, 30.0, 90.0, 179.0, 180.0}) {
    BlockOf block(hinge(turn));
    EXPECT_NEAR(block.find_overlapping(giAngle::from_degrees(2.5), out).degrees(), 180 - turn, 1e-5);
    EXPECT_EQ(numbers(out), turn > 178 ? (std::vector<int>{1, 2}) : std::vector<int>{});
  }
  // Neighbours that run the edge in the same direction do not count, nor do loose ones.
  BlockOf block(hinge(180));
  block.reverse_element(2);
  EXPECT_EQ(block.find_overlapping(giAngle::from_degrees(200), out).degrees(), 180);
  EXPECT_EQ(out.count(), 0);
  EXPECT_EQ(trTriBlock().find_overlapping(giAngle::from_degrees(2.5), out).degrees(), 180);
}

// An angle equal to the tolerance is not listed.
TEST(FindOverlapping, ComparesStrictly) {
  intcoPageArr out;
  for (double turn : {10.0, 90.0, 177.0, 179.9999}) {
    BlockOf block(hinge(turn));
    const giAngle sharpest = block.find_overlapping(giAngle(), out);
    EXPECT_EQ(out.count(), 0);
    block.find_overlapping(sharpest, out);
    EXPECT_EQ(out.count(), 0);
    block.find_overlapping(giAngle::from_radians(std::nextafter(sharpest.radians(), 9)), out);
    EXPECT_EQ(out.count(), 2);
  }
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
    ASSERT_EQ(numbers(out), expected) << "round " << round;
    listed += out.count();
    equal += sharpest.radians() == tol.radians() && sharpest.degrees() < 179;
  }
  EXPECT_GT(listed, 3000);
  EXPECT_GT(equal, 500);
}

// The reports of the block name the sharpest angle by another search.
TEST(FindOverlapping, FindsTheAngleOfTheLeastScalarProduct) {
  BlockOf block(shuffled(bumpy_sphere(3000), 6));
  block.set_node(7, giPoint3(0.3, 0.2, 0.1));
  int count = 0;
  intcoPageArr out;
  const double angle = block.find_overlapping(giAngle::from_degrees(150), out).radians();
  EXPECT_NEAR(std::cos(angle), -block.min_dotp(0, count), 1e-12);
  EXPECT_GT(out.count(), 0);
}

TEST(FindOverlapping, TakesNodesOfManyElements) {
  constexpr int many = 100000;
  BlockOf cone(shuffled(cone_fan(many), 7));
  intcoPageArr out;
  EXPECT_GT(cone.find_overlapping(giAngle::from_degrees(2.5), out).degrees(), 179);
  EXPECT_EQ(out.count(), 0);
  // A book: every page hangs on the same two nodes.
  Shape book{{{0, 0, 0}, {0, 0, 1}}, {}};
  for (int k = 0; k < many; ++k) {
    book.points.emplace_back(std::cos(k), std::sin(k), 0);
    book.triangles.push_back({k % 2, 1 - k % 2, k + 2});
  }
  BlockOf pages(book);
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
