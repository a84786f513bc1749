// Holes closed by triangles in a plane, or on a surface.

#include <gtest/gtest.h>

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

const giVector3 up_z(0, 0, 1);
const Outline notched = {{0, 0}, {6, 0}, {6, 3}, {6, 6}, {4, 6}, {3, 1}, {2, 6}, {0, 6}, {0, 3}};
const Outline square = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
const Outline bow_tie = {{0, 0}, {3, 3}, {3, 0}, {0, 2}};
const Outline comb = {{0, 0}, {9, 0}, {9, 5}, {8, 5}, {8, 1}, {5, 1}, {5, 5}, {4, 5}, {4, 1}, {1, 1}, {1, 5}, {0, 5}};

// A block with all its boundaries selected, and what capping makes of it.
struct Open : BlockOf {
  explicit Open(const Shape& shape) : BlockOf(shape), set(this), first(element_count()) { select_all(set); }

  // Picks nodes on the first cycle.
  void pick(const std::vector<int>& nodes) {
    double average = 0.0;
    for (int k = -1; k < static_cast<int>(nodes.size()); ++k) {
      const int node = k < 0 ? -1 : nodes[static_cast<std::size_t>(k)];
      set.select_cycles(intcoSet{0}, 1, average, node, intcoSet(), -1, -1);
    }
  }
  int cap(double spacing) { return set.cap_holes(spacing, 1e-7, error, 0); }
  int cap_first(double spacing, int curvature = 0) { return set.cap_hole(0, 0, spacing, curvature, error); }

  // Normal of an element, as long as twice its area.
  giVector3 normal(int e) const {
    const trElement& t = element(e);
    return (point(t[1]) - point(t[0])).cross(point(t[2]) - point(t[0]));
  }
  double cap_area() const {
    double area = 0.0;
    for (int e = first; e < element_count(); ++e) area += 0.5 * normal(e).length();
    return area;
  }
  // Of the unit normals of the cap along `up`.
  double least_facing(giVector3 up) const {
    double least = 1.0;
    up.make_unit();
    for (int e = first; e < element_count(); ++e) least = std::min(least, normal(e).dot(up) / normal(e).length());
    return least;
  }
  // How often the cap has the directed edge.
  int uses(int from, int to) const {
    int n = 0;
    for (int e = first; e < element_count(); ++e) {
      const trElement& t = element(e);
      for (int k = 0; k < 3; ++k) n += t[k] == from && t[(k + 1) % 3] == to;
    }
    return n;
  }

  // Triangles that all face one way and have the rim as their only boundary cover its area once, and nothing outside.
  void expect_capped(const Outline& rim, const giVector3& up) const {
    EXPECT_NEAR(cap_area() / area_of(rim), 1.0, 1e-9);
    EXPECT_GT(least_facing(up), 1.0 - 1e-6);
    EXPECT_TRUE(expected_free_edges(*this).empty());
    const int n = static_cast<int>(rim.size());
    for (int k = 0; k < n; k += std::max(1, n / 100)) EXPECT_EQ(uses(k + 1, (k + 1) % n + 1), 1);
    EXPECT_TRUE(is_sound(*this));
  }

  trCycleArray set;
  int first;  // element of the cap
  at2PlaneError error = at2_no_memory;
};

TEST(Capping, CoversTheHoleOnceAndFacesAsItsSurroundings) {
  const struct {
    const char* name;
    Outline rim;
    giVector3 up;
    giPoint3 at;
    double spacing;
  } holes[] = {
      {"up", round_outline(40), {0, 0, 1}, {}, 0.157},
      {"down", round_outline(40), {0, 0, -1}, {5, 5, 5}, 0.157},
      {"tilted", round_outline(40), {1, 2, 3}, {-3, 0, 7}, 0.157},
      {"tilted down", round_outline(40), {-0.3, 0.1, -0.9}, {100, -200, 300}, 0.157},
      {"almost up", round_outline(40), {3e-4, 0, 1}, {}, 0.157},
      {"sideways", round_outline(7), {-1, 0, 0}, {}, 0.3},
      {"triangle", {{0, 0}, {1, 0}, {0, 1}}, {1, 1, 1}, {}, 100.0},
      {"square", square, {0, 1, 0}, {}, 1.0},
      {"notched", notched, {0, 1, 1}, {}, 0.7},
      {"comb", comb, {-1, -1, 5}, {}, 0.5},
      {"large spacing", round_outline(12), {0, 0, 1}, {}, 100.0},
      {"ten thousand edges", round_outline(10000, 50), {2, -1, 1}, {}, 1000.0},
  };
  for (const auto& hole : holes) {
    SCOPED_TRACE(hole.name);
    Open block(bowl(hole.rim, frame_of(hole.up, hole.at)));
    const int nodes = block.node_count();
    ASSERT_EQ(block.cap(hole.spacing), 1);
    EXPECT_EQ(block.error, at2_success);
    block.expect_capped(hole.rim, hole.up);
    const int made = block.node_count() - nodes;
    EXPECT_EQ(made > 0, hole.spacing < 100.0);
    const double edge = std::hypot(hole.rim[1].x - hole.rim[0].x, hole.rim[1].y - hole.rim[0].y);
    if (std::fabs(edge / hole.spacing - 1.0) < 0.1) {
      // A net of equilateral triangles has one node to each sqrt(3) / 2 of the squared spacing.
      const double expected = area_of(hole.rim) / (0.866 * hole.spacing * hole.spacing);
      EXPECT_TRUE(made > 0.5 * expected && made < 1.6 * expected) << made;
    }
    EXPECT_EQ(block.set.selection.count(), 0);
    EXPECT_EQ(block.set.num_boundaries(), 0);
  }
}

// A try counts, whether it closed the hole or not; a spacing larger than the hole makes no nodes, one that asks for too
// many is refused before anything is made.
TEST(Capping, ExtremesOfSpacing) {
  const double inf = std::numeric_limits<double>::infinity();
  const std::pair<double, at2PlaneError> cases[] = {
      {1e300, at2_success},  {inf, at2_success},     {1e-9, at2_too_many_nodes}, {5e-324, at2_too_many_nodes},
      {0.0, at2_bad_length}, {-1.0, at2_bad_length}, {-inf, at2_bad_length},     {std::nan(""), at2_bad_length}};
  for (const auto& [spacing, error] : cases) {
    SCOPED_TRACE(spacing);
    Open block(bowl(round_outline(20)));
    const BlockSnapshot before(block);
    EXPECT_EQ(block.cap(spacing), 1);
    EXPECT_EQ(block.error, error);
    EXPECT_EQ(block.set.selection.count(), 0);
    EXPECT_EQ(block.set.num_boundaries(), error == at2_success ? 0 : 1);
    EXPECT_EQ(block.node_count(), 22);
    EXPECT_EQ(block.element_count(), error == at2_success ? 21 + 18 : 21);
    if (error != at2_success) { EXPECT_EQ(before.difference(BlockSnapshot(block)), ""); }
  }
}

// Nodes and triangles are made only when all is known: a hole that cannot be triangulated leaves the block as it was. Where there is no
// plane, or no surface, the error is not touched.
TEST(Capping, RefusedRims) {
  const struct {
    Outline rim;
    int curvature;
    at2PlaneError error;
  } cases[] = {{bow_tie, 0, at2_crossing_loops},
               {{{0, 0}, {4, 0}, {4, 4}, {2, 0}, {0, 4}}, 0, at2_touching_loops},
               {{{0, 0}, {1, 0}, {2, 0}, {1, 0}}, 0, at2_no_memory},
               {square, 1, at2_no_memory}};
  for (const auto& c : cases) {
    Open block(bowl(c.rim));
    const BlockSnapshot before(block);
    const InterruptingHandler handler;
    EXPECT_EQ(block.cap_first(0.5, c.curvature), 0);
    EXPECT_EQ(block.error, c.error);
    EXPECT_EQ(before.difference(BlockSnapshot(block)), "");
    EXPECT_TRUE(block.surface == nullptr && block.curvature_adjust == 0);
    EXPECT_EQ(handler.percent_sup_range(), 100.0);
    EXPECT_EQ(block.set.num_boundaries(), 1);
  }
}

// The error is that of the last hole that came so far as to be triangulated.
TEST(Capping, OneFailureLeavesTheOthersCapped) {
  Shape shape = bowl(square);
  append(shape, bowl(bow_tie, moved_to(10)));
  append(shape, bowl(square, moved_to(20)));
  for (const bool ends_well : {true, false}) {
    Open block(shape);
    if (!ends_well) block.set.selection = {0, 1};
    EXPECT_EQ(block.cap(1.0), 1);
    EXPECT_EQ(block.error, ends_well ? at2_success : at2_crossing_loops);
    EXPECT_EQ(block.set.num_boundaries(), ends_well ? 1 : 2);
    EXPECT_TRUE(is_sound(block));
  }
}

// Cycles that are gone and numbers that never were may stand in the selection.
TEST(Capping, SelectionOfWhatIsNotThere) {
  Open block(bowl(square));
  for (const intcoSet& ids : {intcoSet(), intcoSet{-1, 1, 1000000}}) {
    block.set.selection = ids;
    block.error = at2_no_memory;
    EXPECT_EQ(block.cap(1.0), ids.count() != 0);
    EXPECT_EQ(block.error, at2_success);
    EXPECT_EQ(block.set.num_boundaries(), 1);
  }
  EXPECT_EQ(block.cap_first(1.0), 1);
  EXPECT_EQ(block.cap_first(1.0), 0);
  EXPECT_EQ(block.set.cycles.count(), 1);
}

// Cycles whose entries another set discarded, or whose nodes are gone, are not walked.
TEST(Capping, StaleCycles) {
  Open block(bowl(square)), other(bowl(round_outline(500)));
  EXPECT_EQ(block.cap_first(1.0), 0);
  EXPECT_EQ(other.cap_first(1.0), 1);
  block.set.num_boundaries();
  block.clear();
  EXPECT_EQ(block.cap_first(1.0), 0);
  EXPECT_EQ(block.element_count(), 1);
}

// Cross vectors up to 1e-9 in length give no orientation: of a hole so small the fitted normal is used as it is.
TEST(Capping, SmallHolesAreNotOriented) {
  const MarkingHook hook;
  for (const double size : {1e-5, 1e-4}) {
    CapturedOutput output;
    Open block(bowl({{0, 0}, {size, 0}, {size, size}, {0, size}}));
    block.cap(1.0);
    EXPECT_EQ(output.text(), size > 5e-5 ? "" : "<Warning! Failed to check orientation of capping plane.\n");
    EXPECT_TRUE(block.error == at2_success || (size < 5e-5 && block.error == at2_wrong_direction));
  }
}

// The far corner has edges too short to turn by: it and the corner behind it tell the sense of the rim round its middle.
TEST(Capping, IsOrientedRoundItsMiddleWhereTheFarCornerDoesNotTurn) {
  const double e = 1e-5;
  const Outline rim = {{0, 0}, {4, 0}, {12 - 4 * e, 2 - e}, {12, 2}, {12 - 4 * e, 2 + e}, {4, 4}, {0, 4}, {0, 3}, {0, 2}, {0, 1}};
  for (const giVector3& up : {up_z, giVector3(0, 0, -1), giVector3(1, 2, 3), giVector3(-1, -2, 3)}) {
    CapturedOutput output;
    Open block(bowl(rim, frame_of(up)));
    EXPECT_EQ(block.cap(1.0), 1);
    EXPECT_EQ(block.error, at2_success);
    EXPECT_EQ(output.text(), "");
    EXPECT_NEAR(block.cap_area(), area_of(rim), 1e-9);
    EXPECT_TRUE(expected_free_edges(block).empty());
  }
}

// --- arcs ---------------------------------------------------------------------------------------------------------

// Two picks and a third on the side to be capped: the arc is closed by a row of nodes along the line between the two.
// What is left is a hole, found again by itself, that closes the rest.
TEST(CappingArc, TheArcAndThenTheRestCloseTheHole) {
  const struct {
    std::vector<int> picks;
    double area;
  } cases[] = {
      {{9, 3, 1}, 18.0}, {{3, 9, 2}, 18.0}, {{9, 3}, 18.0},  // the lower part, by a third pick or as the shorter arc
      {{1, 2, 5}, 31.0}, {{1, 2}, 0.0},                      // beside an edge lies all, or nothing
  };
  for (const auto& c : cases) {
    Open block(bowl(notched));
    block.pick(c.picks);
    ASSERT_EQ(block.cap_first(20.0), c.area > 0.0) << block.error;
    if (c.area == 0.0) continue;
    EXPECT_NEAR(block.cap_area(), c.area, 1e-9);
    EXPECT_GT(block.least_facing(up_z), 0.999);
    EXPECT_TRUE(is_sound(block));
  }
  for (const std::vector<int>& picks : {std::vector<int>{1, 11}, {11, 1}, {1, 11, 15}, {1, 11, 5}, {5, 17, 1}}) {
    const Outline rim = round_outline(20);
    Open block(bowl(rim));
    block.pick(picks);
    EXPECT_EQ(block.changed, 0);
    ASSERT_EQ(block.cap(0.3), 1);
    EXPECT_EQ(block.error, at2_success);
    EXPECT_EQ(block.changed, 1);
    EXPECT_EQ(block.set.edge_count, -1);
    EXPECT_EQ(block.set.num_boundaries(), 1);
    select_all(block.set);
    ASSERT_EQ(block.cap(0.3), 1);
    EXPECT_EQ(block.error, at2_success);
    block.expect_capped(rim, up_z);
  }
}

// A rim folded along the line between the picks: once the row along it is made, the plane is that of the arc, not of the whole rim.
TEST(CappingArc, LiesInThePlaneOfTheArc) {
  Shape shape = bowl({{0, 0}, {4, 0}, {4, 4}, {4, 8}, {0, 8}, {0, 4}});
  for (std::size_t k : {3u, 4u}) shape.points[k].z = 3.0;
  Open block(shape);
  block.pick({6, 3, 1});
  ASSERT_EQ(block.cap_first(1.0), 1);
  std::set<int> inside;
  for (int e = block.first; e < block.element_count(); ++e) {
    for (int k = 0; k < 3; ++k) {
      const giPoint3& p = block.point(block.element(e)[k]);
      EXPECT_NEAR(p.z, 0.0, 1e-12);
      if (p.x > 0.1 && p.x < 3.9 && p.y > 0.1 && p.y < 3.9) inside.insert(block.element(e)[k]);
    }
  }
  EXPECT_GE(inside.size(), 4u);
}

// The first plane is that of the whole rim. Where the arc between the picks has none, or cannot be capped, the rows of nodes that were to
// close it are made all the same, and stay in the block.
TEST(CappingArc, RefusedArcLeavesItsRows) {
  const struct {
    Outline rim;
    std::vector<int> picks;
    at2PlaneError error;
  } cases[] = {{{{0, 0}, {2, 0}, {4, 0}, {6, 0}, {6, 6}, {0, 6}}, {1, 4, 2}, at2_no_memory},  // never triangulated
               {notched, {9, 3, 4}, at2_crossing_loops}};
  for (const auto& c : cases) {
    Open block(bowl(c.rim));
    block.pick(c.picks);
    const int nodes = block.node_count();
    EXPECT_EQ(block.cap_first(1.0), 0);
    EXPECT_EQ(block.error, c.error);
    EXPECT_EQ(block.node_count(), nodes + 2 * 5);
    EXPECT_EQ(block.element_count(), block.first);
    EXPECT_TRUE(is_sound(block));
    EXPECT_EQ(block.set.cycles[0].arc_start, -1);
    EXPECT_EQ(block.set.cycles[0].subrange_nodes.count(), 0);
  }
}

// --- curved caps --------------------------------------------------------------------------------------------------

using Height = double (*)(double x, double y);

double on_sphere(double x, double y) { return std::sqrt(4.0 - x * x - y * y); }
double on_cylinder(double x, double) { return std::sqrt(4.0 - x * x); }
double on_saddle(double x, double y) { return 0.25 * (x * x - y * y); }

// A surface over the plane between the circles of radius 1, a hole of 32 edges, and 1.6; it faces up.
Shape holed_surface(Height height) {
  constexpr int around = 32, rings = 4;
  Shape shape;
  for (int r = 0; r <= rings; ++r) {
    for (const giPoint2& p : round_outline(around, 1.0 + 0.6 * r / rings)) shape.points.emplace_back(p.x, p.y, height(p.x, p.y));
  }
  for (int k = 0; k < rings * around; ++k) {
    const int b = k / around * around + (k + 1) % around;
    shape.triangles.push_back({k, k + around, b});
    shape.triangles.push_back({b, k + around, b + around});
  }
  return shape;
}

// By how much corners of the cap miss the surface. The second row made beside a line between picks is in none.
double cap_error(Height height, int curvature, const std::vector<int>& picks) {
  Open block(holed_surface(height));
  block.pick(picks);
  EXPECT_EQ(block.cap_first(0.2, curvature), 1) << block.error;
  EXPECT_GT(block.element_count(), block.first + 60);
  EXPECT_GT(block.least_facing(up_z), 0.4);
  EXPECT_TRUE(block.surface == nullptr && block.curvature_adjust == 0);
  EXPECT_TRUE(is_sound(block));
  double largest = 0.0;
  for (int e = block.first; e < block.element_count(); ++e) {
    for (int k = 0; k < 3; ++k) {
      const giPoint3& p = block.point(block.element(e)[k]);
      largest = std::max(largest, std::fabs(p.z - height(p.x, p.y)));
    }
  }
  return largest;
}

// New nodes miss the surface by at most 5 % of what a flat cap misses it by, those of a row between picks by 10 %; no
// triangle turns over.
TEST(CurvedCap, FollowsTheSurfaceRoundTheHole) {
  for (const Height height : {on_sphere, on_cylinder, on_saddle}) {
    const double flat = cap_error(height, 0, {});
    EXPECT_GT(flat, 0.1);
    EXPECT_LE(cap_error(height, 1, {}), 0.05 * flat);
    EXPECT_LE(cap_error(height, 1, {3, 19}), 0.1 * flat);  // half of the surroundings to go by
  }
}

// --- progress and interruption --------------------------------------------------------------------------------------

// A fitted surface takes the first fifth of the range that the host had set before, whichever hole it is; the cap fills the rest.
TEST(CappingProgress, CurvatureIsReportedInTheRangeOfTheHost) {
  Shape shape = holed_surface(on_sphere), second = shape;
  for (giPoint3& p : second.points) p.x += 10.0;
  append(shape, second);
  Open block(shape);
  block.set.selection = {0, 2};
  InterruptingHandler handler;
  tr_set_percent_range(10.0, 60.0);
  ASSERT_EQ(block.cap_first(0.1, 1), 1) << block.error;
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
  int stopped_between = 0;
  bool is_stopped = true;
  for (int stop = 1; is_stopped; ++stop) {
    Open block(shape);
    int result = 0;
    {
      const InterruptingHandler handler(stop);
      result = block.cap(1.0);
      is_stopped = handler.interrupted_flag;
    }
    EXPECT_EQ(block.set.selection.count(), 0);
    EXPECT_EQ(block.changed, result) << "stopped at " << stop;
    EXPECT_TRUE(is_sound(block));
    stopped_between += result == 0 && block.element_count() > block.first;
  }
  EXPECT_GE(stopped_between, 1);
}

// --- the parts ------------------------------------------------------------------------------------------------------

// Directions within 1e-4 of the z axis are taken for it: the plane is then parallel to x and y, not tilted.
TEST(TriPlane, FramesAndBack) {
  trTriBlock block;
  const giPoint3 at(3, -5, 7), p(0.25, 11, -2);
  const struct {
    giVector3 normal;
    int tilt;  // 0: none, 1: upside down, 2: any
  } cases[] = {{{0, 0, 1}, 0},      {{0.9e-4, 0, 1}, 0},  {{0, -0.9e-4, -1}, 1}, {{1e-5, 0, -1}, 1},
               {{1.1e-4, 0, 1}, 2}, {{0, 1.1e-4, -1}, 2}, {{1, 0, 0}, 2},        {{-2, 3, -6}, 2}};
  for (auto c : cases) {
    c.normal.make_unit();
    const trTriPlane plane(&block, 1.0, at, c.normal);
    EXPECT_LT(plane.from_plane.apply(plane.to_plane.apply(p)).distance(p), 1e-13);
    EXPECT_LT(plane.to_plane.apply(at).distance(giPoint3()), 1e-14);
    const giPoint3 q = plane.to_plane.apply(p);
    EXPECT_EQ(q == p - (at - giPoint3()), c.tilt == 0);
    EXPECT_EQ(q == giPoint3(-2.75, -16, 9), c.tilt == 1);
    EXPECT_EQ((plane.to_plane.apply(c.normal) - up_z).length() < 1e-14, c.tilt == 2 || c.normal == up_z);
  }
}

// Any order gives the points of the walk; a number that is none of theirs gives the origin.
TEST(PlaneFitCycle, PointsInAnyOrder) {
  Open block(bowl(round_outline(11), frame_of(giVector3(1, 2, 2), giPoint3(5, 0, 0))));
  const std::vector<int> nodes = nodes_of(block.set.cycles[0]);
  const trPlaneFitCycle plane(&block, &block.set.cycles[0]);
  ASSERT_EQ(plane.size(), 11);
  Random random(5);
  for (int k = 0; k < 50; ++k) {
    const int i = k < 11 ? k : random.below(11);
    EXPECT_EQ(plane.data_point(i), block.point(nodes[static_cast<std::size_t>(i)]));
  }
  EXPECT_EQ(plane.data_point(11), giPoint3());
  EXPECT_EQ(plane.data_point(-3), giPoint3());
}

}  // namespace
