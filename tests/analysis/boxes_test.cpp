// The grid, the cache and the checker of boxes, each on its own.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "analysis/box_cache.h"
#include "analysis/box_checker.h"
#include "analysis/box_grid.h"
#include "support/interrupting_handler.h"
#include "support/random.h"
#include "support/shapes.h"

namespace {

constexpr double tol = 1e-5;

struct GridCase {
  const char* name;
  giPoint3 size;
  int count;
  int per_box;
  int x_div, y_div, z_div;
};

// Edge of the cubes s = (volume * per_box / count) ^ (1/3), then trunc(0.5 + length / s) + 1 divisions: one more than
// fit.
TEST(BoxGrid, DividesIntoCubesOfAboutTheWantedContent) {
  const GridCase cases[] = {
      {"27 cubes of edge 1 get 4 divisions", {3, 3, 3}, 27, 1, 4, 4, 4},
      {"oblong, s = 1", {8, 2, 0.5}, 8, 1, 9, 3, 2},
      {"two in a box, s = 1", {2, 2, 2}, 16, 2, 3, 3, 3},
      {"fewer items than a box holds", {2, 2, 2}, 10, 500, 1, 1, 1},
      {"per_box 0 counts as 1", {2, 2, 2}, 8, 0, 3, 3, 3},
      {"negative too", {2, 2, 2}, 8, -3, 3, 3, 3},
      {"flat: squares of edge 1", {4, 3, 0}, 12, 1, 5, 4, 1},
      {"a line: pieces of length 1", {0, 5, 0}, 5, 1, 1, 6, 1},
      {"a point", {0, 0, 0}, 100, 1, 1, 1, 1},
      {"nothing to hold", {2, 2, 2}, 0, 1, 1, 1, 1},
      {"an infinite axis is not divided", {HUGE_VAL, 4, 4}, 16, 1, 1, 5, 5},
      {"nor one that is not a number", {std::nan(""), 4, 4}, 16, 1, 1, 5, 5},
      {"no more than 1000 an axis", {1e9, 1e-3, 1e-3}, 1000, 1, 1000, 1, 1},
      {"no more than 4 * 10 + 64 in all", {1e9, 1e-3, 1e-3}, 10, 1, 104, 1, 1},
  };
  for (const GridCase& test : cases) {
    const trBoxGrid grid(giBox3(giPoint3(), test.size), test.count, test.per_box);
    EXPECT_EQ(grid.x_div(), test.x_div) << test.name;
    EXPECT_EQ(grid.y_div(), test.y_div) << test.name;
    EXPECT_EQ(grid.z_div(), test.z_div) << test.name;
  }
}

// Whatever the box, the boxes stay few, fill it, and share their sides.
TEST(BoxGrid, CoversTheBoxWithoutGaps) {
  Random random(2);
  for (int n = 0; n < 300; ++n) {
    giPoint3 low, high;
    for (int k = 0; k < 3; ++k) {
      low[k] = random.between(-1e3, 1e3);
      high[k] = low[k] + (random.one_in(4) ? 0.0 : std::pow(10.0, random.between(-12.0, 12.0)));
    }
    const int count = random.below(1000);
    const trBoxGrid grid(giBox3(low, high), count, random.between(-2, 20));
    const int nx = grid.x_div(), ny = grid.y_div(), nz = grid.z_div();
    ASSERT_LE(1LL * nx * ny * nz, 4 * count + 64);
    EXPECT_EQ(grid.sub_box(1, 1, 1).min(), low);
    EXPECT_EQ(grid.sub_box(nx, ny, nz).max(), high);
    for (int i = 1; i < nx; ++i) EXPECT_EQ(grid.sub_box(i, 1, 1).max().x, grid.sub_box(i + 1, 1, 1).min().x);
  }
}

// Octant o covers the second half of x for o even, of y for 3, 4, 7, 8, of z from 5 on; one small triangle lies in
// each.
TEST(BoxChecker, DealsElementsToOctants) {
  Shape shape;
  for (int o = 0; o < 8; ++o) {
    const giPoint3 p(o & 1 ? 3 : 1, o & 2 ? 3 : 1, o & 4 ? 3 : 1);
    shape.points.insert(shape.points.end(), {p, giPoint3(p.x + 0.1, p.y, p.z), giPoint3(p.x, p.y + 0.1, p.z)});
    shape.triangles.push_back({3 * o, 3 * o + 1, 3 * o + 2});
  }
  shape.points.insert(shape.points.end(),
                      {{1.9, 1.9, 1.9}, {2.1, 2, 2}, {2, 2.1, 2}});  // in the middle: in all of them
  shape.triangles.push_back({24, 25, 26});
  const BlockOf block(shape);
  trBoxChecker root(&block, 1, tol);
  EXPECT_EQ(root.total_num_elements(), 10);
  EXPECT_EQ(root.ith_element(7), 7);
  EXPECT_EQ(root.num_box_elements(), 0);
  root.reset(giBox3(giPoint3(), giPoint3(4, 4, 4)));
  EXPECT_EQ(root.num_box_elements(), 9);
  for (int o = 1; o <= 8; ++o) {
    const trBoxChecker child(&root, o);
    EXPECT_EQ(child.total_num_elements(), 9);
    EXPECT_EQ(child.ith_element(2), 3);
    ASSERT_EQ(child.num_box_elements(), 2) << o;
    const trBoxChecker grandchild(&child, 1);
    EXPECT_EQ(grandchild.ith_element(0), o);
    EXPECT_EQ(grandchild.ith_element(1), 9);
  }
  root.reset(giBox3(giPoint3(), giPoint3(1, 1, 1)));  // touches the first triangle
  EXPECT_EQ(root.num_box_elements(), 1);
}

// A box is not divided where that does not part the elements: the pair test gets them as they are, and each pair comes
// once.
TEST(BoxChecker, StopsDividingWhatLiesInOnePlace) {
  Shape shape;
  for (int t = 0; t < 30; ++t) {
    shape.points.insert(shape.points.end(), {{1, 1, 1}, {1.5, 1, 1.2}, {1, 1.5, 1.1}});
    shape.triangles.push_back({3 * t, 3 * t + 1, 3 * t + 2});
  }
  const BlockOf block(shape);
  for (const int limit : {1000, 2, 1, 0, -5}) {
    trBoxChecker checker(&block, limit, tol);
    checker.reset(giBox3(giPoint3(), giPoint3(1e6, 1e6, 1e6)));
    intcoPageArr out;
    EXPECT_EQ(checker.check_intersecting(out), 30 * 29 / 2) << limit;
    EXPECT_EQ(out.count(), 30 * 29);
  }
}

TEST(BoxChecker, AppendsAPairForEachOctantThatHoldsIt) {
  const BlockOf block(Shape{
      {{0, 0, 0}, {4, 0, 0}, {0, 4, 4}, {0.5, 0.1, -1}, {0.5, 0.2, 5}, {3, 2, 5}, {9, 9, 9}, {9, 9, 8}, {9, 8, 9}},
      {{0, 1, 2}, {3, 4, 5}, {6, 7, 8}}});
  trBoxChecker checker(&block, 2, tol);
  checker.reset(giBox3(giPoint3(-0.5, -0.5, -1), giPoint3(9, 9, 9)));
  intcoPageArr out;
  EXPECT_EQ(checker.check_intersecting(out), 2);  // in both halves of z, and nowhere else
  EXPECT_EQ(out.count(), 4);
  for (int k = 0; k < out.count(); ++k) EXPECT_EQ(out[k], k % 2 + 1);
}

TEST(BoxChecker, StopsBetweenPairs) {
  const BlockOf block(cone_fan(40));
  trBoxChecker checker(&block, 1000, tol);
  checker.reset(block.box());
  InterruptingHandler handler(100);
  intcoPageArr out;
  checker.check_intersecting(out);
  EXPECT_EQ(handler.polls, 100);
  checker.reset(block.box());
  EXPECT_EQ(checker.num_box_elements(), 0);
}

TEST(BoxChecker, CountsSharedNodesAndKeepsTheLast) {
  int common = -7;
  EXPECT_EQ(trBoxChecker::nodes_shared(trElement(1, 2, 3), trElement(4, 5, 6), common), 0);
  EXPECT_EQ(common, -7);
  EXPECT_EQ(trBoxChecker::nodes_shared(trElement(1, 2, 3), trElement(9, 3, 8), common), 1);
  EXPECT_EQ(common, 3);
  EXPECT_EQ(trBoxChecker::nodes_shared(trElement(1, 2, 3), trElement(3, 2, 1), common), 3);
  EXPECT_EQ(common, 3);
  EXPECT_EQ(trBoxChecker::nodes_shared(trElement(5, 5, 2), trElement(5, 1, 5), common), 4);
  EXPECT_EQ(common, 5);
}

// The triangle lies in z = 0 with legs of 1 on the axes; the segment stands on it at (x, y), its ends at the given
// heights.
struct SpanCase {
  const char* name;
  double x, y, from, to;
  int meets;
};

}  // namespace
