// Holes closed by triangles in a plane.

#include <gtest/gtest.h>

#include <limits>
#include <set>

#include "boundaries/boundary_shapes.h"
#include "boundaries/bowls.h"
#include "boundaries/plane_fit_cycle.h"
#include "boundaries/tri_plane.h"
#include "progress/progress.h"
#include "support/block_snapshot.h"
#include "support/captured_output.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/validator.h"

namespace {

const Outline notched = {{0, 0}, {6, 0}, {6, 3}, {6, 6}, {4, 6}, {3, 1}, {2, 6}, {0, 6}, {0, 3}};
const Outline square = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
const Outline bow_tie = {{0, 0}, {3, 3}, {3, 0}, {0, 2}};
const Outline comb = {{0, 0}, {9, 0}, {9, 5}, {8, 5}, {8, 1}, {5, 1}, {5, 5}, {4, 5}, {4, 1}, {1, 1}, {1, 5}, {0, 5}};

void select_all(const trCycleArray& set) {
  double average = 0.0;
  for (int i = 0; i < set.num_boundaries(); ++i) set.select_cycles(intcoSet{i}, 1, average, -1, intcoSet(), -1, -1);
}

// Selects cycle `id` and picks nodes on it.
void pick(const trCycleArray& set, int id, const std::vector<int>& nodes) {
  double average = 0.0;
  set.select_cycles(intcoSet{id}, 1, average, -1, intcoSet(), -1, -1);
  for (const int node : nodes) set.select_cycles(intcoSet{id}, 1, average, node, intcoSet(), -1, -1);
}

struct Cap {
  double area = 0.0;          // of the elements from `first` on
  double least_facing = 1.0;  // of their unit normals along `up`
};

Cap cap_of(const trTriBlock& block, int first, const giVector3& up) {
  Cap cap;
  for (int e = first; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    giVector3 n = (block.point(t[1]) - block.point(t[0])).cross(block.point(t[2]) - block.point(t[0]));
    cap.area += 0.5 * n.length();
    n.make_unit();
    cap.least_facing = std::min(cap.least_facing, n.dot(up));
  }
  return cap;
}

// How often the elements from `first` on have the directed edge.
int uses(const trTriBlock& block, int first, int from, int to) {
  int n = 0;
  for (int e = first; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    for (int k = 0; k < 3; ++k) n += t[k] == from && t[(k + 1) % 3] == to;
  }
  return n;
}

// Triangles that all face one way and have the rim as their only boundary cover its area once, and nothing outside.
void expect_capped(const trTriBlock& block, int first, const Outline& rim, const giVector3& up) {
  const Cap cap = cap_of(block, first, up);
  EXPECT_NEAR(cap.area / area_of(rim), 1.0, 1e-9);
  EXPECT_GT(cap.least_facing, 1.0 - 1e-6);
  EXPECT_TRUE(expected_free_edges(block).empty());
  const int n = static_cast<int>(rim.size());
  for (int k = 0; k < n; k += std::max(1, n / 100)) EXPECT_EQ(uses(block, first, k + 1, (k + 1) % n + 1), 1);
  EXPECT_TRUE(is_sound(block));
}

struct Hole {
  const char* name;
  Outline rim;
  giVector3 up;
  giPoint3 at;
  double spacing;
};

void PrintTo(const Hole& hole, std::ostream* out) { *out << hole.name; }

class CappedHole : public testing::TestWithParam<Hole> {};

TEST_P(CappedHole, IsCoveredOnceAndFacesAsItsSurroundings) {
  const Hole& hole = GetParam();
  BlockOf block(bowl(hole.rim, frame_of(hole.up, hole.at)));
  trCycleArray set(&block);
  select_all(set);
  const int first = block.element_count();
  const int nodes = block.node_count();
  at2PlaneError error = at2_no_memory;
  ASSERT_EQ(set.cap_holes(hole.spacing, 1e-7, error, 0), 1);
  EXPECT_EQ(error, at2_success);
  giVector3 up = hole.up;
  up.make_unit();
  expect_capped(block, first, hole.rim, up);
  const int made = block.node_count() - nodes;
  const double edge = std::hypot(hole.rim[1].x - hole.rim[0].x, hole.rim[1].y - hole.rim[0].y);
  if (std::fabs(edge / hole.spacing - 1.0) < 0.1) {
    // A net of equilateral triangles has one node to each sqrt(3) / 2 of the squared spacing.
    const double expected = area_of(hole.rim) / (0.866 * hole.spacing * hole.spacing);
    EXPECT_TRUE(made > 0.5 * expected && made < 1.6 * expected) << made;
  } else {
    EXPECT_EQ(made > 0, hole.spacing < 100.0);
  }
  EXPECT_EQ(set.selection.count(), 0);
  EXPECT_EQ(set.num_boundaries(), 0);
}

const Hole holes[] = {
    {"Up", round_outline(40), {0, 0, 1}, {}, 0.157},
    {"Down", round_outline(40), {0, 0, -1}, {5, 5, 5}, 0.157},
    {"Tilted", round_outline(40), {1, 2, 3}, {-3, 0, 7}, 0.157},
    {"TiltedDown", round_outline(40), {-0.3, 0.1, -0.9}, {100, -200, 300}, 0.157},
    {"AlmostUp", round_outline(40), {3e-4, 0, 1}, {}, 0.157},
    {"Sideways", round_outline(7), {-1, 0, 0}, {}, 0.3},
    {"Triangle", {{0, 0}, {1, 0}, {0, 1}}, {1, 1, 1}, {}, 100.0},
    {"Square", square, {0, 1, 0}, {}, 1.0},
    {"Notched", notched, {0, 1, 1}, {}, 0.7},
    {"Comb", comb, {-1, -1, 5}, {}, 0.5},
    {"LargeSpacing", round_outline(12), {0, 0, 1}, {}, 100.0},
    {"TenThousandEdges", round_outline(10000, 50), {2, -1, 1}, {}, 1000.0},
};

INSTANTIATE_TEST_SUITE_P(Holes, CappedHole, testing::ValuesIn(holes),
                         [](const auto& param_info) { return std::string(param_info.param.name); });

// A rim out of the plane is capped all the same, facing as the elements beside it.
TEST(Capping, RimOutOfThePlane) {
  for (const double height : {0.1, 0.3, -0.3}) {
    Shape shape = bowl(round_outline(60));
    for (std::size_t k = 0; k < 60; ++k) {
      giPoint3& p = shape.points[k];
      p.z = height * (p.x * p.x - p.y * p.y);
    }
    BlockOf block(shape);
    trCycleArray set(&block);
    select_all(set);
    const int first = block.element_count();
    at2PlaneError error = at2_success;
    set.cap_holes(0.1, 0.0, error, 0);
    EXPECT_EQ(error, at2_success);
    EXPECT_TRUE(expected_free_edges(block).empty());
    EXPECT_GT(cap_of(block, first, giVector3(0, 0, 1)).least_facing, 0.15);
    EXPECT_TRUE(is_sound(block));
  }
}

// A try counts, whether it closed the hole or not; a spacing larger than the hole makes no nodes, one that asks for too
// many is refused before anything is made.
TEST(Capping, ExtremesOfSpacing) {
  const double inf = std::numeric_limits<double>::infinity();
  const struct {
    double spacing;
    at2PlaneError error;
  } cases[] = {
      {1e300, at2_success},  {inf, at2_success},     {1e-9, at2_too_many_nodes}, {5e-324, at2_too_many_nodes},
      {0.0, at2_bad_length}, {-1.0, at2_bad_length}, {-inf, at2_bad_length},     {std::nan(""), at2_bad_length}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.spacing);
    BlockOf block(bowl(round_outline(20)));
    const BlockSnapshot before(block);
    trCycleArray set(&block);
    select_all(set);
    at2PlaneError error = at2_success;
    EXPECT_EQ(set.cap_holes(c.spacing, 1e-7, error, 0), 1);
    EXPECT_EQ(error, c.error);
    EXPECT_EQ(set.selection.count(), 0);
    EXPECT_EQ(set.num_boundaries(), c.error == at2_success ? 0 : 1);
    EXPECT_EQ(block.node_count(), 22);
    EXPECT_EQ(block.element_count(), c.error == at2_success ? 21 + 18 : 21);
    if (c.error == at2_success) continue;
    EXPECT_EQ(before.difference(BlockSnapshot(block)), "");
  }
}

// Nodes and triangles are made only when all is known: a hole that cannot be triangulated leaves the block as it was.
TEST(Capping, RefusedRims) {
  Outline nearly_flat = {{0, 0}, {1, 0}, {2, 0}, {1, 0}};
  const struct {
    Outline rim;
    at2PlaneError error;
  } cases[] = {{bow_tie, at2_crossing_loops}, {{{0, 0}, {4, 0}, {4, 4}, {2, 0}, {0, 4}}, at2_touching_loops}};
  for (const auto& c : cases) {
    BlockOf block(bowl(c.rim));
    const BlockSnapshot before(block);
    trCycleArray set(&block);
    select_all(set);
    at2PlaneError error = at2_success;
    EXPECT_EQ(set.cap_hole(0, 0, 0.5, 0, error), 0);
    EXPECT_EQ(error, c.error);
    EXPECT_EQ(before.difference(BlockSnapshot(block)), "");
    EXPECT_EQ(set.num_boundaries(), 1);
  }
  // Nodes on a line have no plane: the error is not touched.
  BlockOf block(bowl(nearly_flat));
  trCycleArray set(&block);
  select_all(set);
  at2PlaneError error = at2_no_memory;
  EXPECT_EQ(set.cap_hole(0, 0, 0.5, 0, error), 0);
  EXPECT_EQ(error, at2_no_memory);
}

// The error is that of the last hole that came so far as to be triangulated.
TEST(Capping, OneFailureLeavesTheOthersCapped) {
  Shape shape = bowl(square);
  append(shape, bowl(bow_tie, moved_to(10)));
  append(shape, bowl(square, moved_to(20)));
  for (const bool ends_well : {true, false}) {
    BlockOf block(shape);
    trCycleArray set(&block);
    double average = 0.0;
    set.select_cycles(ends_well ? intcoSet{0, 1, 2} : intcoSet{0, 1}, 1, average, -1, intcoSet(), -1, -1);
    at2PlaneError error = at2_success;
    EXPECT_EQ(set.cap_holes(1.0, 0.0, error, 0), 1);
    EXPECT_EQ(error, ends_well ? at2_success : at2_crossing_loops);
    EXPECT_EQ(set.num_boundaries(), ends_well ? 1 : 2);
    EXPECT_TRUE(is_sound(block));
  }
}

// Cycles that are gone and numbers that never were may stand in the selection.
TEST(Capping, SelectionOfWhatIsNotThere) {
  BlockOf block(bowl(square));
  trCycleArray set(&block);
  EXPECT_EQ(set.num_boundaries(), 1);
  at2PlaneError error = at2_no_memory;
  EXPECT_EQ(set.cap_holes(1.0, 0.0, error, 0), 0);
  EXPECT_EQ(error, at2_success);
  for (const int id : {-1, 1, 1000000}) set.selection.add(id);
  set.cap_holes(1.0, 0.0, error, 0);
  EXPECT_EQ(error, at2_success);
  EXPECT_EQ(set.num_boundaries(), 1);
  EXPECT_EQ(set.cap_hole(0, 0, 1.0, 0, error), 1);
  EXPECT_EQ(set.cap_hole(0, 0, 1.0, 0, error), 0);
  EXPECT_EQ(set.cycles.count(), 1);
}

// Cycles whose entries another set discarded, or whose nodes are gone, are not walked.
TEST(Capping, StaleCycles) {
  BlockOf block(bowl(square));
  BlockOf other(bowl(round_outline(500)));
  trCycleArray set(&block);
  trCycleArray others(&other);
  set.num_boundaries();
  others.num_boundaries();
  at2PlaneError error = at2_success;
  EXPECT_EQ(set.cap_hole(0, 0, 1.0, 0, error), 0);
  EXPECT_EQ(others.cap_hole(0, 0, 1.0, 0, error), 1);
  set.num_boundaries();
  block.clear();
  EXPECT_EQ(set.cap_hole(0, 0, 1.0, 0, error), 0);
  EXPECT_EQ(block.element_count(), 1);
}

// Cross vectors up to 1e-9 in length give no orientation: of a hole so small the fitted normal is used as it is.
TEST(Capping, SmallHolesAreNotOriented) {
  const MarkingHook hook;
  for (const double size : {1e-5, 1e-4}) {
    CapturedOutput output;
    BlockOf block(bowl({{0, 0}, {size, 0}, {size, size}, {0, size}}));
    trCycleArray set(&block);
    select_all(set);
    at2PlaneError error = at2_success;
    set.cap_holes(1.0, 0.0, error, 0);
    EXPECT_EQ(output.text(), size > 5e-5 ? "" : "<Warning! Failed to check orientation of capping plane.\n");
    EXPECT_TRUE(error == at2_success || (size < 5e-5 && error == at2_wrong_direction));
  }
}

// The far corner has edges too short to turn by: it and the corner behind it tell the sense of the rim round its middle.
TEST(Capping, IsOrientedRoundItsMiddleWhereTheFarCornerDoesNotTurn) {
  const double e = 1e-5;
  const Outline rim = {{0, 0}, {4, 0}, {12 - 4 * e, 2 - e}, {12, 2}, {12 - 4 * e, 2 + e}, {4, 4}, {0, 4}, {0, 3}, {0, 2}, {0, 1}};
  for (const giVector3& up : {giVector3(0, 0, 1), giVector3(0, 0, -1), giVector3(1, 2, 3), giVector3(-1, -2, 3)}) {
    CapturedOutput output;
    BlockOf block(bowl(rim, frame_of(up)));
    trCycleArray set(&block);
    select_all(set);
    const int first = block.element_count();
    at2PlaneError error = at2_no_memory;
    EXPECT_EQ(set.cap_holes(1.0, 0.0, error, 0), 1);
    EXPECT_EQ(error, at2_success);
    EXPECT_EQ(output.text(), "");
    giVector3 facing = up;
    facing.make_unit();
    EXPECT_NEAR(cap_of(block, first, facing).area, area_of(rim), 1e-9);
    EXPECT_TRUE(expected_free_edges(block).empty());
  }
}

// --- arcs ---------------------------------------------------------------------------------------------------------

// Two picks and a third on the side to be capped: the arc is closed by a row of nodes along the line between the two.
// What is left is a hole that closes the rest.
TEST(CappingArc, TheArcAndThenTheRestCloseTheHole) {
  const struct {
    std::vector<int> picks;
    double area;
  } cases[] = {
      {{9, 3, 1}, 18.0}, {{3, 9, 2}, 18.0}, {{9, 3}, 18.0},  // the lower part, by a third pick or as the shorter arc
      {{1, 2, 5}, 31.0}, {{1, 2}, 0.0},                      // beside an edge lies all, or nothing
  };
  for (const auto& c : cases) {
    BlockOf block(bowl(notched));
    trCycleArray set(&block);
    pick(set, 0, c.picks);
    const int first = block.element_count();
    at2PlaneError error = at2_success;
    ASSERT_EQ(set.cap_hole(0, 0, 20.0, 0, error), c.area > 0.0) << error;
    if (c.area == 0.0) continue;
    EXPECT_NEAR(cap_of(block, first, giVector3(0, 0, 1)).area, c.area, 1e-9);
    EXPECT_GT(cap_of(block, first, giVector3(0, 0, 1)).least_facing, 0.999);
    EXPECT_TRUE(is_sound(block));
  }
  for (const std::vector<int>& picks : {std::vector<int>{1, 11}, {11, 1}, {1, 11, 15}, {1, 11, 5}, {5, 17, 1}}) {
    const Outline rim = round_outline(20);
    BlockOf block(bowl(rim));
    trCycleArray set(&block);
    pick(set, 0, picks);
    const int first = block.element_count();
    at2PlaneError error = at2_success;
    ASSERT_EQ(set.cap_hole(0, 0, 0.3, 0, error), 1) << error;
    EXPECT_FALSE(expected_free_edges(block).empty());
    block.alter(0);
    EXPECT_EQ(set.num_boundaries(), 1);
    select_all(set);
    ASSERT_EQ(set.cap_holes(0.3, 0.0, error, 0), 1);
    EXPECT_EQ(error, at2_success);
    expect_capped(block, first, rim, giVector3(0, 0, 1));
  }
}

// A cap makes the boundary stale by itself: the part of the hole that is left is found again.
TEST(CappingArc, TheRestIsFoundAgain) {
  BlockOf block(bowl(round_outline(20)));
  trCycleArray set(&block);
  pick(set, 0, {1, 11, 5});
  EXPECT_EQ(block.changed, 0);
  at2PlaneError error = at2_success;
  EXPECT_EQ(set.cap_holes(0.3, 0.0, error, 0), 1);
  EXPECT_EQ(error, at2_success);
  EXPECT_EQ(block.changed, 1);
  EXPECT_EQ(set.edge_count, -1);
  EXPECT_EQ(set.num_boundaries(), 1);
}

// A rim folded along the line between the picks: once the row along it is made, the plane is that of the arc, not of the whole rim.
TEST(CappingArc, LiesInThePlaneOfTheArc) {
  const Outline rim = {{0, 0}, {4, 0}, {4, 4}, {4, 8}, {0, 8}, {0, 4}};
  Shape shape = bowl(rim);
  for (std::size_t k : {3u, 4u}) shape.points[k].z = 3.0;
  BlockOf block(shape);
  trCycleArray set(&block);
  pick(set, 0, {6, 3, 1});
  const int first = block.element_count();
  at2PlaneError error = at2_success;
  ASSERT_EQ(set.cap_hole(0, 0, 1.0, 0, error), 1);
  std::set<int> inside;
  for (int e = first; e < block.element_count(); ++e) {
    for (int k = 0; k < 3; ++k) {
      const giPoint3& p = block.point(block.element(e)[k]);
      EXPECT_NEAR(p.z, 0.0, 1e-12);
      if (p.x > 0.1 && p.x < 3.9 && p.y > 0.1 && p.y < 3.9) inside.insert(block.element(e)[k]);
    }
  }
  EXPECT_GE(inside.size(), 4u);
}

// The first plane is that of the whole rim. Where the arc between the picks has none the row is made all the same, and stays.
TEST(CappingArc, TheWholeRimIsFittedBeforeTheArcIsSet) {
  BlockOf block(bowl({{0, 0}, {2, 0}, {4, 0}, {6, 0}, {6, 6}, {0, 6}}));
  trCycleArray set(&block);
  pick(set, 0, {1, 4, 2});
  const int nodes = block.node_count();
  const int elements = block.element_count();
  at2PlaneError error = at2_no_memory;
  EXPECT_EQ(set.cap_hole(0, 0, 1.0, 0, error), 0);
  EXPECT_EQ(error, at2_no_memory) << "never triangulated";
  EXPECT_EQ(block.node_count(), nodes + 2 * 5);
  EXPECT_EQ(block.element_count(), elements);
}

// The row of nodes that was to close the arc stays in the block when the arc cannot be capped.
TEST(CappingArc, RefusedArcLeavesItsRow) {
  BlockOf block(bowl(notched));
  trCycleArray set(&block);
  pick(set, 0, {9, 3, 4});
  const int elements = block.element_count();
  const int nodes = block.node_count();
  at2PlaneError error = at2_success;
  EXPECT_EQ(set.cap_hole(0, 0, 1.0, 0, error), 0);
  EXPECT_EQ(error, at2_crossing_loops);
  EXPECT_EQ(block.element_count(), elements);
  EXPECT_GT(block.node_count(), nodes);
  EXPECT_TRUE(is_sound(block));
  EXPECT_EQ(set.cycles[0].arc_start, -1);
  EXPECT_EQ(set.cycles[0].subrange_nodes.count(), 0);
}

// --- curved caps --------------------------------------------------------------------------------------------------

using Height = double (*)(double x, double y);

const struct Surface {
  const char* name;
  Height height;
} surfaces[] = {{"sphere", [](double x, double y) { return std::sqrt(4.0 - x * x - y * y); }},
                {"cylinder", [](double x, double) { return std::sqrt(4.0 - x * x); }},
                {"saddle", [](double x, double y) { return 0.25 * (x * x - y * y); }}};

// A surface over the plane between the circles of radius 1, a hole of 32 edges, and 1.6; it faces up.
Shape holed_surface(Height height) {
  constexpr int around = 32, rings = 4;
  Shape shape;
  for (int r = 0; r <= rings; ++r) {
    for (const giPoint2& p : round_outline(around, 1.0 + 0.6 * r / rings))
      shape.points.emplace_back(p.x, p.y, height(p.x, p.y));
  }
  for (int r = 0; r < rings; ++r) {
    for (int k = 0; k < around; ++k) {
      const int a = r * around + k, b = r * around + (k + 1) % around;
      shape.triangles.push_back({a, a + around, b});
      shape.triangles.push_back({b, a + around, b + around});
    }
  }
  return shape;
}

// Of the corners of the elements from `first` on. The second row made beside a line between picks is in none.
double largest_error(const trTriBlock& block, int first, Height height) {
  double largest = 0.0;
  for (int e = first; e < block.element_count(); ++e) {
    for (int k = 0; k < 3; ++k) {
      const giPoint3& p = block.point(block.element(e)[k]);
      largest = std::max(largest, std::fabs(p.z - height(p.x, p.y)));
    }
  }
  return largest;
}

double cap_error(Height height, int curvature, const std::vector<int>& picks) {
  BlockOf block(holed_surface(height));
  trCycleArray set(&block);
  pick(set, 0, picks);
  const int first = block.element_count();
  at2PlaneError error = at2_success;
  EXPECT_EQ(set.cap_hole(0, 0, 0.2, curvature, error), 1) << error;
  EXPECT_GT(block.element_count(), first + 60);
  EXPECT_GT(cap_of(block, first, giVector3(0, 0, 1)).least_facing, 0.4);
  EXPECT_TRUE(block.surface == nullptr && block.curvature_adjust == 0);
  EXPECT_TRUE(is_sound(block));
  return largest_error(block, first, height);
}

// New nodes miss the surface by at most 5 % of what a flat cap misses it by, those of a row between picks by 10 %; no
// triangle turns over.
TEST(CurvedCap, FollowsTheSurfaceRoundTheHole) {
  for (const Surface& surface : surfaces) {
    SCOPED_TRACE(surface.name);
    const double flat = cap_error(surface.height, 0, {});
    EXPECT_GT(flat, 0.1);
    EXPECT_LE(cap_error(surface.height, 1, {}), 0.05 * flat);
    EXPECT_LE(cap_error(surface.height, 1, {3, 19}), 0.1 * flat);  // half of the surroundings to go by
  }
}

// Where no surface can be fitted the hole stays open, and the error is not touched.
TEST(CurvedCap, WithoutASurfaceTheHoleStaysOpen) {
  BlockOf block(bowl(square));
  const BlockSnapshot before(block);
  trCycleArray set(&block);
  pick(set, 0, {});
  InterruptingHandler handler;
  at2PlaneError error = at2_no_memory;
  EXPECT_EQ(set.cap_hole(0, 0, 1.0, 1, error), 0);
  EXPECT_EQ(error, at2_no_memory);
  EXPECT_EQ(before.difference(BlockSnapshot(block)), "");
  EXPECT_TRUE(block.surface == nullptr && block.curvature_adjust == 0);
  EXPECT_EQ(handler.percent_sup_range(), 100.0);
  EXPECT_EQ(set.num_boundaries(), 1);
}

// --- progress and interruption --------------------------------------------------------------------------------------

TEST(CappingProgress, EachHoleHasItsShareAndTheRangeIsRestored) {
  Shape shape = bowl(round_outline(200));
  append(shape, bowl(round_outline(200), moved_to(10)));
  BlockOf block(shape);
  trCycleArray set(&block);
  select_all(set);
  InterruptingHandler handler;
  tr_set_percent_range(10.0, 60.0);
  at2PlaneError error = at2_success;
  ASSERT_EQ(set.cap_hole(0, 0, 0.03, 0, error), 1);
  const std::size_t of_first = handler.percents.size();
  ASSERT_EQ(set.cap_hole(1, 1, 0.03, 0, error), 1);
  EXPECT_EQ(handler.percent_inf_range(), 10.0);
  EXPECT_EQ(handler.percent_sup_range(), 60.0);
  EXPECT_EQ(handler.default_feedback_message, utString("Filling Holes"));
  ASSERT_GT(of_first, 4u);
  ASSERT_GT(handler.percents.size(), of_first + 4u);
  EXPECT_TRUE(std::is_sorted(handler.percents.begin(), handler.percents.end()));
  EXPECT_EQ(handler.percents.front(), 0.0);
  EXPECT_LE(handler.percents[of_first - 1], 50.0);
  EXPECT_EQ(handler.percents[of_first], 50.0);
  EXPECT_LE(handler.percents.back(), 100.0);
  // The triangles begin at two fifths of a hole's share.
  const auto middle = std::find(handler.messages.begin(), handler.messages.end(), "Triangulating");
  ASSERT_NE(middle, handler.messages.end());
  EXPECT_NEAR(handler.percents[static_cast<std::size_t>(middle - handler.messages.begin())], 20.0, 1e-12);
}

// A fitted surface takes the first fifth of the range that the host had set before, whichever hole it is; the cap fills the rest.
TEST(CappingProgress, CurvatureIsReportedInTheRangeOfTheHost) {
  Shape shape = holed_surface(surfaces[0].height);
  Shape second = shape;
  for (giPoint3& p : second.points) p.x += 10.0;
  append(shape, second);
  BlockOf block(shape);
  trCycleArray set(&block);
  pick(set, 0, {});
  pick(set, 2, {});
  InterruptingHandler handler;
  tr_set_percent_range(10.0, 60.0);
  at2PlaneError error = at2_success;
  ASSERT_EQ(set.cap_hole(0, 0, 0.1, 1, error), 1) << error;
  int fitting = 0, capping = 0;
  for (std::size_t k = 0; k < handler.messages.size(); ++k) {
    const bool is_fitting = handler.messages[k].rfind("Filling Holes - ", 0) == 0;
    ++(is_fitting ? fitting : capping);
    EXPECT_GE(handler.percents[k], is_fitting ? 10.0 : 20.0) << handler.messages[k];
    EXPECT_LE(handler.percents[k], is_fitting ? 20.0 : 60.0) << handler.messages[k];
    if (handler.messages[k] == "Filling Holes - Calculating Curvature...") { EXPECT_GE(handler.percents[k], 13.0); }
  }
  EXPECT_GE(fitting, 3);
  EXPECT_GE(capping, 3);
  EXPECT_GT(handler.percents.back(), 50.0);
  EXPECT_EQ(handler.percent_inf_range(), 10.0);
  EXPECT_EQ(handler.percent_sup_range(), 60.0);
}

// Interrupted, it returns 0 with nothing selected and the mesh not marked as changed, also after holes were closed.
TEST(CappingProgress, InterruptionEmptiesTheSelection) {
  Shape shape = bowl(square);
  append(shape, bowl(square, moved_to(10)));
  int polls = 1;
  int stopped_between = 0;
  for (int stop = 1; stop <= polls; ++stop) {
    BlockOf block(shape);
    trCycleArray set(&block);
    select_all(set);
    const int first = block.element_count();
    at2PlaneError error = at2_success;
    int result = 0;
    {
      const InterruptingHandler handler(stop);
      result = set.cap_holes(1.0, 0.0, error, 0);
      if (handler.interrupted_flag) polls = stop + 1;
    }
    EXPECT_EQ(set.selection.count(), 0);
    EXPECT_EQ(block.changed, result) << "stopped at " << stop;
    EXPECT_TRUE(is_sound(block));
    if (result == 0 && block.element_count() > first) ++stopped_between;
  }
  EXPECT_GE(stopped_between, 1);
}

// --- the parts ------------------------------------------------------------------------------------------------------

// Directions within 1e-4 of the z axis are taken for it: the plane is then parallel to x and y, not tilted.
TEST(TriPlane, FramesAndBack) {
  trTriBlock block;
  const giPoint3 at(3, -5, 7);
  const struct {
    giVector3 normal;
    int tilt;  // 0: none, 1: upside down, 2: any
  } cases[] = {{{0, 0, 1}, 0},      {{0.9e-4, 0, 1}, 0},  {{0, -0.9e-4, -1}, 1}, {{1e-5, 0, -1}, 1},
               {{1.1e-4, 0, 1}, 2}, {{0, 1.1e-4, -1}, 2}, {{1, 0, 0}, 2},        {{-2, 3, -6}, 2}};
  for (auto c : cases) {
    c.normal.make_unit();
    const trTriPlane plane(&block, 1.0, at, c.normal);
    const giPoint3 p(0.25, 11, -2);
    EXPECT_LT(plane.from_plane.apply(plane.to_plane.apply(p)).distance(p), 1e-13);
    EXPECT_LT(plane.to_plane.apply(at).distance(giPoint3()), 1e-14);
    const giVector3 up = plane.to_plane.apply(c.normal);
    const giPoint3 q = plane.to_plane.apply(p);
    EXPECT_EQ(q == p - (at - giPoint3()), c.tilt == 0);
    EXPECT_EQ(q == giPoint3(-2.75, -16, 9), c.tilt == 1);
    EXPECT_EQ((up - giVector3(0, 0, 1)).length() < 1e-14, c.tilt == 2 || c.normal == giVector3(0, 0, 1));
  }
}

// Any order gives the points of the walk; the fit meets the nodes of the row that closes an arc.
TEST(PlaneFitCycle, PointsInAnyOrder) {
  BlockOf block(bowl(round_outline(11), frame_of(giVector3(1, 2, 2), giPoint3(5, 0, 0))));
  trCycleArray set(&block);
  ASSERT_EQ(set.num_boundaries(), 1);
  const std::vector<int> nodes = nodes_of(set.cycles[0]);
  const trPlaneFitCycle plane(&block, &set.cycles[0]);
  ASSERT_EQ(plane.size(), 11);
  Random random(5);
  for (int k = 0; k < 200; ++k) {
    const int i = k < 11 ? k : random.below(11);
    EXPECT_EQ(plane.data_point(i), block.point(nodes[static_cast<std::size_t>(i)]));
  }
  EXPECT_EQ(plane.data_point(11), giPoint3());
  EXPECT_EQ(plane.data_point(-3), giPoint3());
  giPoint3 origin;
  giVector3 normal;
  ASSERT_EQ(plane.fit(origin, normal), 0);
  EXPECT_NEAR(std::fabs(normal.dot(giVector3(1, 2, 2))), 3.0, 1e-12);
  EXPECT_NEAR((origin - giPoint3(5, 0, 0)).dot(giVector3(1, 2, 2)), 0.0, 1e-12);
}

}  // namespace
