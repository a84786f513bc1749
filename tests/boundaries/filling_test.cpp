// Filling: what the new triangles are, rule by rule, and that holes are closed by them.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "boundaries/boundary_shapes.h"
#include "boundaries/filling_support.h"
#include "oracles/boundaries_literal.h"
#include "support/interrupting_handler.h"
#include "support/journal_recorder.h"
#include "support/validator.h"

namespace {

using Numbers = std::vector<int>;

// A flat rim of eight nodes at whole coordinates, all edges of length 1, without triangles inside: those hang outside.
Shape square_frame() {
  Shape shape;
  const int rim[8][2] = {{0, 0}, {1, 0}, {2, 0}, {2, 1}, {2, 2}, {1, 2}, {0, 2}, {0, 1}};
  for (const auto& p : rim) shape.points.emplace_back(p[0], p[1], 0);
  for (const auto& p : rim) shape.points.emplace_back(3 * p[0] - 2, 3 * p[1] - 2, 0);
  for (int k = 0; k < 8; ++k) {
    const int next = (k + 1) % 8;
    shape.triangles.push_back({k, k + 8, next + 8});
    shape.triangles.push_back({k, next + 8, next});
  }
  return shape;
}

// The nodes of a pentagon have no row of nodes round them, and are too few for a surface.
Shape pentagon() {
  Shape shape = cone_fan(5);
  shape.points.erase(shape.points.begin());
  shape.triangles = {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}};
  return shape;
}

}  // namespace

// Random picks and selections on random meshes, against the rules written down on plain vectors.
TEST(Filling, MakesTheTrianglesOfTheRules) {
  Random random(5);
  std::map<int, int> sizes;
  int arcs = 0;
  for (int round = 0; round < 1500; ++round) {
    BlockOf block(random_tangle(random, 12, 14, 4));
    if (random.one_in(2)) give_attributes(block, random);
    trCycleArray set(&block);
    set.num_boundaries();
    LiteralFilling literal(block);
    for (int id = 0; id < set.cycles.count(); ++id) {
      if (random.one_in(3)) continue;
      const Numbers loop = nodes_of(set.cycles[id]);
      const Picks picks = random_picks(loop, random);
      picks.set_on(set.cycles[id]);
      const Numbers closed = picks.arc_of(loop, block);
      set.selection.add(id);
      literal.close(closed);
      ++sizes[static_cast<int>(closed.size())];
      arcs += picks.any();
    }
    ASSERT_EQ(set.fill_holes(0), literal.closed > 0);
    literal.mesh.changed = 1;
    ASSERT_EQ(difference(block, literal.mesh), "") << "round " << round;
    ASSERT_TRUE(is_sound(block));
  }
  for (int n : {2, 3, 4, 5, 6, 7}) EXPECT_GE(sizes[n], 50) << n;
  EXPECT_GE(arcs, 500);
}

// Loops of 3, 4 and 6 edges in the faces of a cube.
TEST(Filling, ClosesAPuncturedCubeAndRestoresItsVolume) {
  Random random(11);
  trTriBlock block;
  make_grid_cube(block, 20);
  std::map<int, int> holes = puncture_flat(block, random);
  for (int n : {3, 4, 6}) EXPECT_GE(holes[n], 5) << n;
  EXPECT_GT(std::abs(block.volume() - 1.0), 1e-3);
  JournalRecorder journal(block);
  trCycleArray set(&block);
  select_all(set);
  EXPECT_EQ(set.selection.count(), holes[3] + holes[4] + holes[6]);
  EXPECT_EQ(set.fill_holes(0), 1);
  EXPECT_EQ(set.num_edges(), 0);
  EXPECT_EQ(set.num_boundaries(), 0);
  EXPECT_NEAR(block.volume(), 1.0, 1e-12);
  EXPECT_TRUE(is_sound(block));
  EXPECT_TRUE(journal.restores_the_start());
}

// Pairs of triangles that share one node, taken out of a closed surface: some of the holes are one cycle that passes the node twice.
TEST(Filling, ClosesCyclesThatTouchThemselves) {
  int eights = 0;
  for (int centre = 2; centre <= 40; ++centre) {
    BlockOf block(sphere(6));
    const Numbers around = entries(block.node(centre).elements);
    if (around.size() < 6) continue;
    block.delete_element(around[0]);
    for (int e : around) {
      if (shared_corners(block, e, around[0]) == 1) {
        block.delete_element(e);
        break;
      }
    }
    trCycleArray set(&block);
    select_all(set);
    eights += set.cycles.count() == 1;
    EXPECT_EQ(set.fill_holes(0), 1);
    EXPECT_EQ(set.num_edges(), 0) << "node " << centre;
    EXPECT_TRUE(is_sound(block));
  }
  EXPECT_GE(eights, 5);
}

TEST(Filling, AnArcAndThenTheRestCloseTheHoleInAllPickOrders) {
  int filled = 0;
  for (int code = 0; code < 9 * 9 * 10; ++code) {
    const int a = 2 + code % 9, b = 2 + code / 9 % 9, c = 1 + code / 81;
    if (a == b) continue;
    BlockOf block(cone_fan(9));
    trCycleArray set(&block);
    double length = 0.0;
    for (int pick : {-1, a, b, c}) set.select_cycles({0}, 1, length, pick, intcoSet(), -1, -1);
    EXPECT_EQ(set.fill_holes(0), 1);
    select_all(set);
    set.fill_holes(0);
    ASSERT_EQ(set.num_edges(), 0) << a << ' ' << b << ' ' << c;
    ASSERT_TRUE(is_sound(block));
    ++filled;
  }
  EXPECT_EQ(filled, 9 * 8 * 10);
}

// Two picks opposite one another on a rim of equal edges: of two arcs as long the forward one is filled.
TEST(Filling, OfTwoArcsAsLongTheForwardOneIsFilled) {
  BlockOf block(square_frame());
  trCycleArray set(&block);
  set.num_boundaries();
  trCycle& cycle = set.cycles[0];
  const Numbers rim = nodes_of(cycle);
  ASSERT_EQ(rim, (Numbers{1, 8, 7, 6, 5, 4, 3, 2}));
  Picks{{7, 3, 7}, 2}.set_on(cycle);
  set.selection = {0};
  const int before = block.element_count();
  EXPECT_EQ(set.fill_holes(0), 1);
  EXPECT_EQ(block.element_count() - before, 5) << "a fan round the loop 7 6 5 4 3";
  std::set<int> used;
  for (int e = before; e < block.element_count(); ++e) used.insert({block.element(e)[0], block.element(e)[1]});
  EXPECT_EQ(used, (std::set<int>{3, 4, 5, 6, 7}));
  EXPECT_EQ(block.point(block.node_count() - 1), giPoint3(1.4, 1.4, 0)) << "the mean of the nodes";
}

// Neighbouring picks enclose one edge: two triangles back to back through a node at its middle. A pick that is no node of the cycle
// gives a loop of no nodes, one node picked twice a loop of one: nothing is made, and the cycle counts as filled.
TEST(Filling, LoopsOfTwoOneAndNoNodes) {
  struct Case {
    Picks picks;
    int nodes, elements;
  };
  for (const Case& c : {Case{{{5, 6, 5}, 0}, 1, 2}, Case{{{5, 5, 5}, 0}, 0, 0}, Case{{{5, 999, 5}, 0}, 0, 0}}) {
    BlockOf block(cone_fan(9));
    trCycleArray set(&block);
    set.num_boundaries();
    c.picks.set_on(set.cycles[0]);
    set.selection = {0};
    const int nodes = block.node_count(), elements = block.element_count();
    EXPECT_EQ(set.fill_holes(0), 1);
    EXPECT_EQ(block.node_count(), nodes + c.nodes);
    EXPECT_EQ(block.element_count(), elements + c.elements);
    EXPECT_EQ(set.cycles[0].start, -1);
    EXPECT_EQ(set.cycles[0].arc_start, -1) << "the arc is reset, the picks stay";
    EXPECT_EQ(set.cycles[0].picks[0], 5);
    EXPECT_TRUE(is_sound(block));
    if (c.nodes == 0) continue;
    EXPECT_EQ(block.point(nodes), gi_interpolate(block.point(5), block.point(6), 0.5));
  }
}

// The attributes of the centre are sums, its weight is 1, and the attributes of the other nodes stay.
TEST(Filling, TheCentreHasTheSumOfTheAttributes) {
  Random random(3);
  BlockOf block(cone_fan(7));
  give_attributes(block, random);
  JournalRecorder journal(block);
  const double kept = block.node_data(4).values[1];
  trCycleArray set(&block);
  select_all(set);
  const Numbers rim = nodes_of(set.cycles[0]);
  double sum = 0.0;
  for (int n : rim) sum += block.node_data(n).values[1];
  EXPECT_EQ(set.fill_holes(0), 1);
  const trNodeDataTuple& tuple = block.node_data(block.node_count() - 1);
  EXPECT_EQ(tuple.values[1], sum);
  EXPECT_EQ(tuple.weight, 1);
  EXPECT_EQ(block.node_data(4).values[1], kept);
  EXPECT_TRUE(journal.restores_the_start());
}

// A cycle that no surface can be fitted to stays open, but is removed from the set and counts as filled; later detection finds it again.
TEST(Filling, AHoleThatCannotBeFittedCountsAsFilled) {
  BlockOf block(pentagon());
  trCycleArray set(&block);
  select_all(set);
  EXPECT_EQ(set.fill_holes(1), 1);
  EXPECT_EQ(set.cycles[0].start, -1);
  EXPECT_EQ(block.node_count(), 6);
  EXPECT_EQ(block.element_count(), 4);
  EXPECT_EQ(set.num_boundaries(), 1);
  EXPECT_EQ(set.fill_holes(0), 0) << "the selection is empty";
  select_all(set);
  EXPECT_EQ(set.fill_holes(0), 1);
  EXPECT_EQ(set.num_edges(), 0);
}

// A surface is fitted, and freed without having moved the centre.
TEST(Filling, WithCurvatureTheCentreLiesAtThePlainMean) {
  for (int curvature : {0, 1}) {
    BlockOf block(sphere(8));
    open_star(block, 50);
    trCycleArray set(&block);
    select_all(set);
    giPointAverage3 mean;
    for (int n : nodes_of(set.cycles[0])) mean.add(block.point(n));
    EXPECT_EQ(set.fill_holes(curvature), 1);
    EXPECT_EQ(block.point(block.node_count() - 1), mean.average());
    EXPECT_EQ(block.surface, nullptr);
    EXPECT_EQ(block.curvature_adjust, 0);
    EXPECT_EQ(set.num_edges(), 0);
  }
}

// Adjustment that the host switched on is off after a fan, its surface freed, also where no curvature was asked for.
TEST(Filling, AFanEndsTheAdjustmentOfTheHost) {
  BlockOf block(cone_fan(6));
  block.surface = std::make_shared<FloorSurface>(5.0);
  block.enable_curvature_adjust(nullptr, 0);
  EXPECT_EQ(block.curvature_adjust, 1);
  trCycleArray set(&block);
  select_all(set);
  EXPECT_EQ(set.fill_holes(0), 1);
  EXPECT_EQ(block.point(block.node_count() - 1).z, 0.0);
  EXPECT_EQ(block.surface, nullptr);
  EXPECT_EQ(block.curvature_adjust, 0);
}

TEST(Filling, NumbersOfNoLiveCycleArePassedOver) {
  BlockOf block(loose_triangles(3));
  trCycleArray set(&block);
  EXPECT_EQ(set.fill_holes(0), 0) << "nothing selected";
  EXPECT_EQ(block.changed, 1);
  EXPECT_EQ(set.num_boundaries(), 3);
  set.selection = {-4, 1, 3, 2000000000};
  set.cycles[1].start = -1;
  EXPECT_EQ(set.fill_holes(0), 0);
  EXPECT_EQ(set.selection.count(), 0);
  EXPECT_EQ(set.cycles.count(), 3);
  EXPECT_EQ(block.valid_elements(), 3);
  trCycleArray unbound(nullptr);
  EXPECT_EQ(unbound.fill_holes(0), 0);
}

// Whenever it is stopped, what was filled stays and the mesh is sound; the progress range is the one that was set before.
TEST(Filling, CanBeStoppedAtEveryPoll) {
  int stops = 0;
  std::set<int> open_counts;
  for (int stop = 1;; ++stop) {
    BlockOf block(sphere(8));
    for (int centre : {20, 60}) open_star(block, centre);
    block.delete_element(entries(block.node(106).elements).front());
    JournalRecorder journal(block);
    trCycleArray set(&block);
    select_all(set);
    ASSERT_EQ(set.selection.count(), 3);
    int open = 0;
    {
      InterruptingHandler handler(stop);
      handler.set_percent_range(20.0, 70.0);
      const int filled = set.fill_holes(1);
      EXPECT_EQ(handler.percent_inf_range(), 20.0);
      EXPECT_EQ(handler.percent_sup_range(), 70.0);
      for (double p : handler.percents) EXPECT_TRUE(p >= 20.0 && p <= 70.0) << p;
      for (int i = 0; i < set.cycles.count(); ++i) open += set.cycles[i].start != -1;
      EXPECT_EQ(filled, open < 3);
      if (handler.polls < stop) break;
    }
    ++stops;
    open_counts.insert(open);
    ASSERT_TRUE(is_sound(block)) << "poll " << stop;
    ASSERT_TRUE(journal.restores_the_start()) << "poll " << stop;
  }
  EXPECT_GE(stops, 25);
  EXPECT_EQ(open_counts, (std::set<int>{1, 2, 3})) << "the last hole, of three edges, is closed without a poll";
}
