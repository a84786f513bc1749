// Small, thin and overhanging elements, the distance of a node from an edge, and swapping the longest edge of thin elements.

#include <gtest/gtest.h>

#include "mesh/aspect_utils.h"
#include "oracles/shapes_literal.h"
#include "support/interrupting_handler.h"
#include "support/numbers.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

giLength measure_of(const trTriBlock& block, int e, int aspect) {
  const trElement& t = block.element(e);
  const giPoint3 &a = block.point(t[0]), &b = block.point(t[1]), &c = block.point(t[2]);
  return aspect ? trAspectUtils::triangle_aspect(a, b, c) : trAspectUtils::triangle_height(a, b, c);
}

// A triangle of any shape: slivers, needles, equal edges, coincident corners; of any size; near to or far from the
// origin.
void add_random_triangle(Shape& shape, Random& random) {
  static const double sizes[] = {1e-170, 1e-40, 1e-3, 1, 1, 1, 1e6, 1e60, 1e160};
  static const double flatness[] = {0, 1e-17, 1e-12, 1e-8, 1e-6, 1e-3, 1, 1};
  const double size = sizes[random.below(9)];
  const double thickness = flatness[random.below(8)];
  const double offset = random.one_in(3) ? 1000 * size : 0;
  const giPoint3 start(offset, -offset, 2 * offset);
  const giVector3 u = size * giVector3(random.between(-3, 3), random.between(-3, 3), random.between(-3, 3));
  const giVector3 v = size * giVector3(random.unit(), random.unit(), random.unit());
  const int first = static_cast<int>(shape.points.size());
  shape.points.push_back(start);
  shape.points.push_back(start + u);
  shape.points.push_back(start + random.between(-1.0, 2.0) * u + thickness * v);
  shape.triangles.push_back({first, first + 1, first + 2});
}

// Every element is measured by itself; the tolerance is often exactly the measure of one of them, which is not listed
// then.
TEST(FindThin, ListsWhatIsBelowTheToleranceAndReturnsTheLeast) {
  Random random(31);
  int listed = 0, equal = 0;
  for (int round = 0; round < 3000; ++round) {
    Shape shape;
    for (int k = random.between(1, 8); k > 0; --k) add_random_triangle(shape, random);
    BlockOf block(shape);
    if (random.one_in(4)) block.delete_element(random.between(1, block.element_count() - 1));
    for (int aspect = 0; aspect < 2; ++aspect) {
      const double pivot = measure_of(block, 1 + random.below(static_cast<int>(shape.triangles.size())), aspect).value();
      const double tolerances[] = {pivot, std::nextafter(pivot, 0), std::nextafter(pivot, 1e300), 0.1, 0, -1, HUGE_VAL};
      const double tol = tolerances[random.below(7)];
      std::vector<int> expected;
      double least = HUGE_VAL;
      for (int e = 1; e < block.element_count(); ++e) {
        if (!block.element(e).valid()) continue;
        const giLength value = measure_of(block, e, aspect);
        if (!value.is_set()) continue;
        if (tol >= 0 && value.squared() < tol * tol) expected.push_back(e);
        if (value.value() < least) least = value.value();
        equal += value.value() == tol;
      }
      intcoPageArr out{99};
      ASSERT_EQ(block.find_thin(tol, aspect, out), least == HUGE_VAL ? 0 : least) << "round " << round;
      ASSERT_EQ(numbers_in(out), expected) << "round " << round << ", tolerance " << tol;
      listed += out.count();
    }
  }
  EXPECT_GT(listed, 1000);
  EXPECT_GT(equal, 500);
}

// A find counts as a change, so that boundaries are looked for anew.
TEST(FindThin, MarksTheMeshChangedWhenItFindsAny) {
  trTriBlock block;
  intcoPageArr out{7};
  block.force_changed_status(0);
  EXPECT_EQ(block.find_thin(1, 0, out), 0);
  EXPECT_EQ(out.count(), 0);
  EXPECT_EQ(block.changed, 0);
  add_to(block, closed_box());
  block.force_changed_status(0);
  EXPECT_EQ(block.find_thin(0.1, 1, out), 0.5);
  EXPECT_EQ(block.changed, 0);
  block.find_thin(0.6, 1, out);
  EXPECT_EQ(block.changed, 1);
}

// One poll an element, the reserved one included; what was found until then stays.
TEST(FindThin, KeepsWhatItFoundWhenInterrupted) {
  BlockOf block(closed_box());
  intcoPageArr out;
  block.force_changed_status(0);
  InterruptingHandler handler(5);
  EXPECT_EQ(block.find_thin(1, 1, out), 0.5);
  EXPECT_EQ(numbers_in(out), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(block.changed, 1);
  EXPECT_EQ(handler.messages.size(), 1u);
}

// Facing away from `up`, by the sign of a product that is not normalised: upright triangles are not listed.
TEST(FindOverhanging, ListsWhatFacesDown) {
  BlockOf box(closed_box());
  intcoPageArr out{3};
  box.find_overhanging(out, giUnitVec3(gi_z_axis));
  EXPECT_EQ(numbers_in(out), (std::vector<int>{1, 2}));
  for (int e : numbers_in(out)) box.reverse_element(e);
  box.delete_element(3);
  box.find_overhanging(out, giUnitVec3(giVector3(-1, 0, 0)));
  EXPECT_EQ(numbers_in(out), (std::vector<int>{11, 12}));
  BlockOf ball(shuffled(bumpy_sphere(2000), 5));
  const giUnitVec3 up(giVector3(1, -2, 3));
  std::vector<int> expected;
  for (int e = 1; e < ball.element_count(); ++e) {
    const trElement& t = ball.element(e);
    const giPoint3& p = ball.point(t[0]);
    if (up.dot((ball.point(t[1]) - p).cross(ball.point(t[2]) - p)) < 0) expected.push_back(e);
  }
  EXPECT_GT(expected.size(), 500u);
  ball.find_overhanging(out, up);
  EXPECT_EQ(numbers_in(out), expected);
}

// A stop is obeyed before the search, never within it.
TEST(FindOverhanging, IsStoppedOnlyBeforeItStarts) {
  BlockOf block(closed_box());
  intcoPageArr out;
  for (int stop : {1, 2, 7}) {
    InterruptingHandler handler(stop);
    block.find_overhanging(out, giUnitVec3(gi_z_axis));
    EXPECT_EQ(out.count(), stop == 1 ? 0 : 2);
  }
}

TEST(CheckHeight, WantsTheFootInsideTheEdgeAndADistanceBelowTheTolerance) {
  struct Case {
    giPoint3 node;
    double tol;
    int result;
    double par;
  };
  const Case cases[] = {
      {{1, 0.5, 0}, 0.6, 1, 0.25}, {{1, 0.5, 0}, 0.5, 0, 0.25}, {{2, 0, 0}, 1e-9, 1, 0.5}, {{0, 0.1, 0}, 1, 0, 0},
      {{4, 0.1, 0}, 1, 0, 1},      {{-2, 0, 0}, 9, 0, -0.5},    {{6, 0, 0}, 9, 0, 1.5},    {{2, 3, 4}, 5.1, 1, 0.5},
  };
  for (const Case& c : cases) {
    BlockOf block(Shape{{c.node, {0, 0, 0}, {4, 0, 0}, {4, 0, 0}}, {}});
    double par = -7;
    EXPECT_EQ(block.check_height_get_par(1, 2, 3, c.tol, par), c.result);
    EXPECT_EQ(par, c.par);
    par = -7;
    EXPECT_EQ(block.check_height_get_par(1, 3, 4, c.tol, par), 0);
    EXPECT_EQ(par, -7);
  }
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
  EXPECT_EQ(elements_of(block), (std::vector<std::array<int, 3>>{{4, 1, 2}, {2, 3, 4}}));
  EXPECT_TRUE(is_sound(block));
  EXPECT_EQ(block.swap_elements(10), 0);
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
  Shape sheet = flat_sheet(4, 4);
  for (giPoint3& p : sheet.points) {
    if (p.x > 0 && p.x < 1 && p.y > 0 && p.y < 1) p = p + giVector3(random.between(-0.06, 0.06), random.between(-0.06, 0.06), 0);
  }
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
