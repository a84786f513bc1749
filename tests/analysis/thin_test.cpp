// Small, thin and overhanging elements, and the distance of a node from an edge.

#include <gtest/gtest.h>

#include "mesh/aspect_utils.h"
#include "support/interrupting_handler.h"
#include "support/random.h"
#include "support/shapes.h"

namespace {

std::vector<int> numbers(const intcoPageArr& list) {
  std::vector<int> result;
  for (int k = 0; k < list.count(); ++k) result.push_back(list[k]);
  return result;
}

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
      ASSERT_EQ(numbers(out), expected) << "round " << round << ", tolerance " << tol;
      listed += out.count();
    }
  }
  EXPECT_GT(listed, 1000);
  EXPECT_GT(equal, 500);
}

// Triangles with coincident corners or with all corners on a line have no height; one that is a single point has no
// aspect, and what has none is not thin.
TEST(FindThin, TakesCollapsedTriangles) {
  BlockOf block(Shape{{{0, 0, 0}, {1, 0, 0}, {3, 0, 0}, {0, 0, 0}, {0, 0, 0}}, {{0, 1, 2}, {0, 3, 1}, {0, 3, 4}}});
  intcoPageArr out;
  EXPECT_EQ(block.find_thin(1e-9, 0, out), 0);
  EXPECT_EQ(numbers(out), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(block.find_thin(1e-9, 1, out), 0);
  EXPECT_EQ(numbers(out), (std::vector<int>{1, 2}));
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
  EXPECT_EQ(numbers(out), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(block.changed, 1);
  EXPECT_EQ(handler.messages.size(), 1u);
}

// Facing away from `up`, by the sign of a product that is not normalised: upright triangles are not listed.
TEST(FindOverhanging, ListsWhatFacesDown) {
  BlockOf box(closed_box());
  intcoPageArr out{3};
  box.find_overhanging(out, giUnitVec3(gi_z_axis));
  EXPECT_EQ(numbers(out), (std::vector<int>{1, 2}));
  for (int e : numbers(out)) box.reverse_element(e);
  box.delete_element(3);
  box.find_overhanging(out, giUnitVec3(giVector3(-1, 0, 0)));
  EXPECT_EQ(numbers(out), (std::vector<int>{11, 12}));
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
  EXPECT_EQ(numbers(out), expected);
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

}  // namespace
