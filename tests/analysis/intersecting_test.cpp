// find_intersecting against every pair of elements, and its order against a search of one grid box after the other.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "analysis/box_checker.h"
#include "analysis/box_grid.h"
#include "mesh/tri_block.h"
#include "oracles/intersections_literal.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/numbers.h"
#include "support/random.h"
#include "support/shapes.h"

namespace {

std::vector<int> found_in(const trTriBlock& block, int limit) {
  intcoPageArr out;
  out[5] = 77;  // what a list held before is dropped
  block.find_intersecting(out, limit);
  return numbers_in(out);
}

giPoint3 random_point(Random& random, double size) {
  return giPoint3(random.between(0.0, size), random.between(0.0, size), random.between(0.0, size));
}

// A triangle of three new points.
void add(Shape& shape, const giPoint3& a, const giPoint3& b, const giPoint3& c) {
  const int first = static_cast<int>(shape.points.size());
  shape.points.insert(shape.points.end(), {a, b, c});
  shape.triangles.push_back({first, first + 1, first + 2});
}

// Triangles of the given size on nodes of their own or, one time in three, on nodes that exist.
Shape random_soup(Random& random, int triangles, double size, double space) {
  Shape shape;
  for (int t = 0; t < triangles; ++t) {
    const giPoint3 at = random_point(random, space);
    std::array<int, 3> nodes{};
    for (int& node : nodes) {
      if (shape.points.size() > 3 && random.one_in(3)) {
        node = random.below(static_cast<int>(shape.points.size()));
        continue;
      }
      node = static_cast<int>(shape.points.size());
      const giPoint3 p = random_point(random, size);
      shape.points.emplace_back(at.x + p.x, at.y + p.y, at.z + p.z);
    }
    if (nodes[0] != nodes[1] && nodes[1] != nodes[2] && nodes[2] != nodes[0]) shape.triangles.push_back(nodes);
  }
  return shape;
}

// Small whole coordinates in a plane: sides touch, overlap and end on each other all the time, and many triangles are
// equal.
Shape planar_soup(Random& random, int triangles) {
  Shape shape;
  for (int t = 0; t < triangles; ++t) {
    std::array<int, 3> nodes{};
    for (int& node : nodes) {
      node = static_cast<int>(shape.points.size());
      const double x = random.below(9), y = random.below(9);
      shape.points.emplace_back(x, y, 0.25 * x - y);
    }
    if (t > 0 && random.one_in(4)) nodes = shape.triangles[static_cast<std::size_t>(random.below(t))];
    shape.triangles.push_back(nodes);
  }
  return shape;
}

// Long and thin, some thinner than any tolerance.
Shape needles(Random& random, int triangles) {
  Shape shape;
  for (int t = 0; t < triangles; ++t) {
    const double width = std::pow(10.0, -random.between(0.0, 8.0));
    const giPoint3 a = random_point(random, 4.0), b = random_point(random, 4.0);
    add(shape, a, b, giPoint3(b.x + width, b.y - width, b.z + width));
  }
  return shape;
}

// Coordinates that differ by about the tolerance: every comparison with it goes both ways.
Shape near_tolerance(Random& random, int triangles) {
  Shape shape = random_soup(random, triangles, 0.02, 0.02);
  for (giPoint3& p : shape.points) {
    for (int k = 0; k < 3; ++k) p[k] = std::round(p[k] / 5e-3) * 5e-3 + random.between(-2, 2) * 0.5e-5;
  }
  return shape;
}

// Triangles that all name point 0, some of them more points in common or one point twice, in sizes from the tolerance
// up.
Shape crowded_fan(Random& random, int triangles) {
  Shape shape;
  const double size = std::pow(10.0, random.between(-4.0, 1.0));
  const int points = triangles / random.between(1, 4) + 3;
  for (int i = 0; i < points; ++i) {
    const giPoint3 p = random_point(random, size);
    shape.points.push_back(random.one_in(2) ? p : giPoint3(p.x, p.y, 0.0));
  }
  for (int t = 0; t < triangles; ++t) shape.triangles.push_back({0, random.below(points), random.one_in(3) ? 1 : random.below(points)});
  return shuffled(shape, random.bits());
}

// Some coordinates are so large that products overflow, infinite, or not numbers.
Shape with_odd_points(Random& random, Shape shape) {
  constexpr double odd[] = {1e200, -1e308, 1e9, HUGE_VAL, -HUGE_VAL, std::numeric_limits<double>::quiet_NaN()};
  for (int n = random.below(4); n >= 0; --n) {
    giPoint3& p = shape.points[static_cast<std::size_t>(random.below(static_cast<int>(shape.points.size())))];
    p[random.below(3)] = odd[random.below(6)];
  }
  return shape;
}

struct Family {
  const char* name;
  std::function<Shape(Random&)> make;
  int least_found;  // elements over all cases
};

const std::vector<Family> families = {
    {"soup", [](Random& r) { return random_soup(r, 60, 1.0, 3.0); }, 400},
    {"dense soup", [](Random& r) { return random_soup(r, 90, 3.0, 1.0); }, 1000},
    {"plane", [](Random& r) { return planar_soup(r, 30); }, 300},
    {"needles", [](Random& r) { return needles(r, 80); }, 200},
    {"near tolerance", [](Random& r) { return near_tolerance(r, 60); }, 300},
    {"fan", [](Random& r) { return crowded_fan(r, 160); }, 500},
    {"odd soup", [](Random& r) { return with_odd_points(r, random_soup(r, 60, 1.0, 2.0)); }, 300},
    {"odd fan", [](Random& r) { return with_odd_points(r, crowded_fan(r, 120)); }, 300},
    {"two tori",
     [](Random& r) {
       Shape shape = torus(20, 10), other = torus(20, 10);
       const int first = static_cast<int>(shape.points.size());
       const double shift = r.between(0.1, 1.0);
       for (giPoint3& p : other.points) shape.points.emplace_back(p.x + shift, p.y + 0.1, p.z);
       for (auto t : other.triangles) shape.triangles.push_back({t[0] + first, t[1] + first, t[2] + first});
       return shape;
     },
     100},
};

// Each element once. Boxes find pairs again and again, and cleaning fetches entries from the end: the list is not sorted, and it depends
// on the limit.
TEST(FindIntersecting, FindsWhatEveryPairGivesInTheOrderOfTheBoxes) {
  int unsorted = 0;
  for (const Family& family : families) {
    Random random(7);
    int found = 0;
    for (int n = 0; n < 12; ++n) {
      const BlockOf block(family.make(random));
      const std::set<int> expected = literal_intersecting(block);
      for (const int limit : {1000, 40, 8, 1, 0, -5}) {
        SCOPED_TRACE(testing::Message() << family.name << ' ' << n << ", limit " << limit);
        const std::vector<int> list = found_in(block, limit);
        ASSERT_EQ(std::set<int>(list.begin(), list.end()), expected);
        ASSERT_EQ(list.size(), expected.size()) << "an element is listed twice";
        if (n < 5 && limit > 0) { ASSERT_EQ(list, box_by_box(block, limit)); }
        unsorted += !std::is_sorted(list.begin(), list.end());
      }
      found += static_cast<int>(expected.size());
    }
    EXPECT_GE(found, family.least_found) << family.name;
  }
  EXPECT_GT(unsorted, 50);
}

// Boxes are taken in the workplane, where a skew box of a triangle is another one than in the world.
TEST(FindIntersecting, WorksInAWorkplane) {
  Random random(23);
  const giWorkplane3 axes(giPoint3(1, 2, 3), giUnitVec3(giVector3(1, 1, 0)), giUnitVec3(giVector3(1, -1, 1)));
  for (int n = 0; n < 20; ++n) {
    BlockOf block(random_soup(random, 60, 1.0, 2.0));
    const std::set<int> expected = literal_intersecting(block);
    block.set_workplane(ccWorkplane(axes));
    block.enable_workplane(1);
    const std::vector<int> list = found_in(block, 20);
    EXPECT_EQ(std::set<int>(list.begin(), list.end()), expected);
    EXPECT_EQ(list, box_by_box(block, 20));
  }
}

// A rim of 5,000 points, round or square, in a plane or with the apex above it: ten million pairs share the apex, and
// must be told apart without a test of each. One more triangle through the cone is found with all that it cuts.
TEST(FindIntersecting, TakesManyElementsAtOneNode) {
  constexpr int n = 5000;
  for (const bool square : {false, true}) {
    for (const double height : {0.0, 0.7}) {
      Shape shape = cone_fan(n);
      shape.points[0].z = height;
      for (giPoint3& p : shape.points) {
        const double scale = square ? std::max(std::fabs(p.x), std::fabs(p.y)) : 1.0;
        if (scale > 0.0) p = giPoint3(10.0 * p.x / scale, 10.0 * p.y / scale, p.z);
      }
      EXPECT_TRUE(found_in(BlockOf(shape), 1000).empty());
      add(shape, giPoint3(5, 0.1, -1), giPoint3(5, 0.2, 1), giPoint3(5.5, 0.1, 1));
      const BlockOf block(shape);
      const std::vector<int> found = found_in(block, 1000);
      std::set<int> expected = {n + 1};
      for (int e = 1; e <= n; ++e) {
        if (literal_cut(block, e, n + 1)) expected.insert(e);
      }
      EXPECT_EQ(std::set<int>(found.begin(), found.end()), expected);
      EXPECT_GT(found.size(), 5u);
    }
  }
}

// So many pairs are not kept, and the list is ascending. Triangles without nodes in common, in one place.
TEST(FindIntersecting, ListsAscendingWhereNearlyAllCutAll) {
  Shape shape;
  for (int t = 0; t < 1500; ++t) add(shape, {0, 0, 0}, {1, 0, 0}, {0, 1, 0});
  const std::vector<int> found = found_in(BlockOf(shape), 1000);
  ASSERT_EQ(found.size(), 1500u);
  EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
}

// Two triangles in a known position each.
struct PairCase {
  const char* name;
  std::vector<giPoint3> points;
  std::array<int, 3> second;  // the first is 0, 1, 2
  bool cut;
};

TEST(FindIntersecting, DecidesPairs) {
  const giPoint3 a(0, 0, 0), b(4, 0, 0), c(0, 4, 0);
  const PairCase cases[] = {
      {"through the middle", {a, b, c, {1, 1, -1}, {1, 1, 1}, {2, 5, 1}}, {3, 4, 5}, true},
      {"folded back over a common edge", {a, b, c, {0, 3.9, 0}}, {0, 1, 3}, false},
      {"all nodes in common", {a, b, c}, {0, 1, 2}, true},
      {"common node, opposite side passes through", {a, b, c, {1, 2, 1}, {1, 2, -1}}, {0, 3, 4}, true},
      {"common node, opposite side passes by", {a, b, c, {3, -1, 1}, {3, -1, -1}}, {0, 3, 4}, false},
      {"in a plane, a midpoint inside", {a, b, c, {-1, 1, 0}, {2, 1, 0}, {-1, 9, 0}}, {3, 4, 5}, true},
      {"in a plane, overlapping without a midpoint inside",
       {a, b, c, {3, 0.5, 0}, {40, 0.6, 0}, {40, 3, 0}},
       {3, 4, 5},
       false},
      {"corner on the inside", {a, b, c, {1, 1, 0}, {1, 1, 3}, {2, 1, 3}}, {3, 4, 5}, true},
      {"corner just above, within the tolerance", {a, b, c, {1, 1, 0.9e-5}, {1, 1, 3}, {2, 1, 3}}, {3, 4, 5}, true},
      {"corner above the tolerance", {a, b, c, {1, 1, 1.1e-5}, {1, 1, 3}, {2, 1, 3}}, {3, 4, 5}, false},
      {"no area, but its side passes through", {a, b, c, {1, 1, -1}, {1, 1, 1}, {1, 1, 2}}, {3, 4, 5}, true},
      {"boxes within twice the tolerance, sides touch", {a, b, c, {0, 0, 0}, {-4, 0, 0}, {0, 0, 4}}, {3, 4, 5}, true},
  };
  for (const PairCase& test : cases) {
    const BlockOf block(Shape{test.points, {{0, 1, 2}, test.second}});
    EXPECT_EQ(found_in(block, 1000).size(), test.cut ? 2u : 0u) << test.name;
    EXPECT_EQ(literal_cut(block, 1, 2), test.cut) << test.name;
  }
}

// Each box is reported once, in order, with the number of elements in it; the text passes the translation.
TEST(FindIntersecting, ReportsEveryBox) {
  const BlockOf block(torus(60, 30));
  const MarkingHook hook;
  InterruptingHandler handler;
  found_in(block, 60);
  const trBoxGrid grid(block.box(), block.element_count(), 30);
  const int total = grid.x_div() * grid.y_div() * grid.z_div();
  ASSERT_GT(total, 50);
  ASSERT_EQ(handler.messages.size(), static_cast<std::size_t>(total));
  trBoxChecker checker(&block, 60, 1e-5);
  for (int visit = 0; visit < total; ++visit) {
    const int yz = grid.y_div() * grid.z_div();
    checker.reset(grid.sub_box(visit / yz + 1, visit % yz / grid.z_div() + 1, visit % grid.z_div() + 1));
    const std::string expected = "<Box " + std::to_string(visit + 1) + "/" + std::to_string(total) + " (" +
                                 std::to_string(checker.num_box_elements()) + " triangles)";
    EXPECT_EQ(handler.messages[static_cast<std::size_t>(visit)], expected);
    EXPECT_DOUBLE_EQ(handler.percents[static_cast<std::size_t>(visit)], 100.0 * (visit + 1) / total);
  }
}

// What was found stays as it came, pair by pair; nothing is polled once the host has said stop.
TEST(FindIntersecting, StopsWhereItIsInterrupted) {
  Random random(31);
  const BlockOf block(random_soup(random, 200, 2.0, 3.0));
  block.box();
  int polls = 0;
  {
    InterruptingHandler handler;
    found_in(block, 20);
    polls = handler.polls;
  }
  int with_pairs = 0;
  for (int stop = 1; stop <= polls; stop += 1 + polls / 150) {
    InterruptingHandler handler(stop);
    const std::vector<int> list = found_in(block, 20);
    EXPECT_EQ(handler.polls, stop);
    ASSERT_EQ(list.size() % 2, 0u);
    for (std::size_t k = 0; k < list.size(); k += 2) EXPECT_TRUE(literal_cut(block, list[k], list[k + 1]));
    with_pairs += !list.empty();
  }
  EXPECT_GT(with_pairs, 5);
}

}  // namespace
