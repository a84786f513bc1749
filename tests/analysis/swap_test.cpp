// Swapping the longest edge of thin elements.

#include <gtest/gtest.h>

#include "mesh/aspect_utils.h"
#include "oracles/shapes_literal.h"
#include "support/interrupting_handler.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

double least_aspect(trTriBlock& block) {
  intcoPageArr out;
  return block.find_thin(0, 1, out);
}

// A sheet whose inner nodes are moved about, so that many diagonals are the worse ones.
Shape rough_sheet(int n, Random& random) {
  Shape sheet = flat_sheet(n, n);
  for (giPoint3& p : sheet.points) {
    if (p.x > 0 && p.x < 1 && p.y > 0 && p.y < 1) {
      p = p + giVector3(random.between(-0.24, 0.24), random.between(-0.24, 0.24), 0) * (1.0 / n);
    }
  }
  return sheet;
}

// The flat quadrilateral 1, 2, 3, 4 with the long diagonal 1-3, and what becomes of it: (o, v, s) and (s, u, o), made
// in this order behind all others.
TEST(SwapElements, SwapsTheLongestEdge) {
  BlockOf block(Shape{{{-3, 0, 0}, {0, -1, 0}, {3, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 3}}});
  block.force_changed_status(0);
  EXPECT_EQ(block.swap_elements(1.0 / 6), 0);  // equal to the aspect of both
  EXPECT_EQ(block.swap_elements(0.2), 1);
  EXPECT_EQ(block.changed, 0);
  EXPECT_FALSE(block.element(1).valid() || block.element(2).valid());
  EXPECT_EQ(block.element_count(), 5);
  const int expected[2][3] = {{4, 1, 2}, {2, 3, 4}};
  for (int e = 0; e < 2; ++e) {
    for (int k = 0; k < 3; ++k) EXPECT_EQ(block.element(3 + e)[k], expected[e][k]);
  }
  EXPECT_TRUE(is_sound(block));
  EXPECT_EQ(block.swap_elements(10), 0);
}

TEST(SwapElements, NeverLowersTheLeastAspect) {
  Random random(33);
  int swapped = 0;
  for (int round = 0; round < 40; ++round) {
    BlockOf block(shuffled(rough_sheet(random.between(3, 12), random), random.bits()));
    block.build_edges();
    for (int pass = 0; pass < 20; ++pass) {
      const double before = least_aspect(block);
      const double area = block.surface_area();
      const int count = block.valid_elements();
      if (!block.swap_elements(1)) break;
      ++swapped;
      ASSERT_GE(least_aspect(block), before);
      ASSERT_NEAR(block.surface_area(), area, 1e-9);
      ASSERT_EQ(block.valid_elements(), count);
      ASSERT_TRUE(is_sound(block));
    }
  }
  EXPECT_GT(swapped, 30);
}

// Elements and lists in their order. Nodes of more than 64 elements included, at which neighbours come and go.
TEST(SwapElements, AgreesWithTheRulesStepByStep) {
  Random random(34);
  int swaps = 0, at_hub = 0;
  for (int round = 0; round < 600; ++round) {
    trTriBlock block;
    LiteralMesh literal;
    const auto both = [&](auto edit) {
      edit(block);
      edit(literal);
    };
    const bool hub = round % 10 == 0;
    const int nodes = hub ? 90 : random.between(4, 12);
    for (int i = 1; i <= nodes; ++i) {
      const bool grid = random.one_in(2);
      const giPoint3 p(grid ? random.below(4) : random.between(0.0, 4.0), random.between(0.0, 4.0),
                       random.one_in(3) ? random.between(0.0, 0.3) : 0);
      both([&](auto& mesh) { mesh.set_node(i, p); });
    }
    for (int k = hub ? 400 : random.between(3, 30); k > 0; --k) {
      const int a = hub && !random.one_in(4) ? 1 : random.between(1, nodes);
      const int b = random.between(1, nodes), c = random.between(1, nodes), twin = random.between(1, nodes);
      both([&](auto& mesh) {
        mesh.generate(a, b, c);
        mesh.generate(c, b, twin);
      });
    }
    if (round % 2) both([](auto& mesh) { mesh.build_edges(); });
    for (int pass = 0; pass < 3; ++pass) {
      const double tol = random.one_in(5) ? -1 : random.between(0.0, 1.0);
      const int expected = swap_elements_literal(literal, tol);
      ASSERT_EQ(block.swap_elements(tol), expected > 0) << "round " << round;
      ASSERT_EQ(difference(block, literal), "") << "round " << round;
      swaps += expected;
      at_hub += hub ? expected : 0;
    }
  }
  EXPECT_GT(swaps, 2000);
  EXPECT_GT(at_hub, 500);
}

// An element without an aspect is a candidate whatever the tolerance: there is one poll for each candidate.
TEST(SwapElements, ConsidersElementsWithoutAspect) {
  Shape shape{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {5, 5, 5}, {5, 5, 5}, {5, 5, 5}}, {{0, 1, 2}}};
  const auto polls = [](const Shape& of, double tol) {
    BlockOf block(of);
    InterruptingHandler handler;
    EXPECT_EQ(block.swap_elements(tol), 0);
    return handler.polls;
  };
  const int without = polls(shape, -1);
  EXPECT_EQ(polls(shape, 1), without + 1);
  shape.triangles.push_back({3, 4, 5});
  EXPECT_EQ(polls(shape, -1), without + 2);
}

TEST(SwapElements, SwapsAllEdgesAtOneNode) {
  constexpr int many = 20000;
  Shape wheel = cone_fan(many);
  wheel.points[0] = giPoint3(0, 0, 0);
  const int first = static_cast<int>(wheel.points.size());
  for (int k = 0; k < many; ++k) {
    const giPoint3& p = wheel.points[static_cast<std::size_t>(1 + k)];
    wheel.points.push_back(p + (p - giPoint3()) * 1e-6);
    wheel.triangles.push_back({1 + (k + 1) % many, 1 + k, first + k});
    wheel.triangles.push_back({1 + (k + 1) % many, first + k, first + (k + 1) % many});
  }
  BlockOf block(wheel);
  for (int pass = 0; pass < 4; ++pass) block.swap_elements(1);
  EXPECT_EQ(block.valid_elements(), 3 * many);
  EXPECT_TRUE(is_sound(block));
}

TEST(SwapElements, IsInterruptedAtAnyPoll) {
  Random random(35);
  const Shape sheet = rough_sheet(4, random);
  int polls = 1;
  for (int stop = 0; stop <= polls; ++stop) {
    BlockOf block(sheet);
    block.build_edges();
    block.elements_referenced = 0;
    {
      InterruptingHandler handler(stop);
      EXPECT_EQ(block.swap_elements(1), stop == 0);
      if (stop == 0) polls = handler.polls;
      EXPECT_EQ(handler.polls, stop == 0 ? polls : stop);
    }
    EXPECT_TRUE(is_sound(block));
    EXPECT_EQ(block.valid_elements(), 32);
  }
  EXPECT_GT(polls, 3 * 32);
}

}  // namespace
