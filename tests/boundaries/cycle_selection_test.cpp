#include <gtest/gtest.h>

#include "boundaries/boundary_shapes.h"

namespace {

// 24 points on the unit circle round an apex: the rim is a cycle of the nodes 2 to 25.
struct Rim : testing::Test {
  BlockOf block{cone_fan(24)};
  trCycleArray set{&block};
  double length = -1.0;

  int select(const intcoSet& ids, int pick = -1, const intcoSet& picks = intcoSet(), int edge_start = -1,
             int edge_end = -1) {
    return set.select_cycles(ids, 1, length, pick, picks, edge_start, edge_end);
  }
  trCycle& cycle() { return set.cycles[0]; }
  std::vector<int> valid() {
    std::vector<int> nodes;
    for (int k = 0; k < cycle().valid_nodes.count(); ++k) nodes.push_back(cycle().valid_nodes[k]);
    return nodes;
  }
  std::vector<int> picks() { return std::vector<int>(cycle().picks, cycle().picks + 3); }
};

using CyclePicks = Rim;
using CycleSelection = Rim;
using Numbers = std::vector<int>;

}  // namespace

TEST(CycleSelectionSet, NumbersOutsideAreIgnoredAndTheLastCycleGivesTheLength) {
  Shape shape = loose_triangles(3);
  shape.points[7] = giPoint3(16, 0, 0);  // stretches the last triangle
  BlockOf block(shape);
  trCycleArray set(&block);
  double length = 5.0;
  EXPECT_EQ(set.select_cycles({-1, 3, 400}, 1, length, -1, intcoSet(), -1, -1), -1);
  EXPECT_EQ(length, 0.0);
  EXPECT_EQ(set.selection.count(), 0);
  EXPECT_EQ(set.cycles.count(), 3) << "asking must not grow the array";
  EXPECT_EQ(set.select_cycles({-1, 1, 2, 3}, 1, length, -1, intcoSet(), -1, -1), 1);
  EXPECT_EQ(length, set.cycles[2].average_length());
  EXPECT_GT(length, 2.0);
  EXPECT_EQ(set.cycles[1].selected, 1);
  EXPECT_EQ(set.cycles[0].selected, 0);
  EXPECT_TRUE(set.selection == (intcoSet{1, 2}));
  EXPECT_EQ(set.select_cycles({2}, 0, length, -1, intcoSet(), -1, -1), 2);
  EXPECT_EQ(set.cycles[2].selected, 0);
  EXPECT_TRUE(set.selection == intcoSet{1});

  // Detection forgets the marks, not the numbers.
  block.force_changed_status(1);
  EXPECT_EQ(set.num_boundaries(), 3);
  EXPECT_EQ(set.cycles[1].selected, 0);
  EXPECT_TRUE(set.selection == intcoSet{1});

  set.cycles[1].start = -1;  // filled meanwhile
  EXPECT_EQ(set.select_cycles({1}, 1, length, 1, {1}, 1, 2), 1);
  EXPECT_EQ(length, 0.0);
  set.clear_selection_list();
  EXPECT_EQ(set.selection.count(), 0);
}

TEST_F(CycleSelection, PicksAreRecordedOnlyWhenTheCycleIsSelectedAgain) {
  EXPECT_EQ(select({0}, 4), 0);
  EXPECT_EQ(valid(), Numbers{});
  EXPECT_EQ(select({0}, 4, {6}, 8, 9), 0);
  EXPECT_EQ(valid(), Numbers{4}) << "an accepted single pick is all";
  EXPECT_EQ(select({0}, 1, {6, 7}, 999, 9), 0);
  EXPECT_EQ(valid(), (Numbers{4, 6, 9})) << "a pick from the set is followed by the edge";
  EXPECT_EQ(set.select_cycles({0}, 0, length, -1, intcoSet(), -1, -1), 0);
  EXPECT_EQ(valid(), Numbers{});
  EXPECT_EQ(picks(), (Numbers{-1, -1, -1}));
}

TEST_F(CyclePicks, EachWayOfPickingTellsWhatItTook) {
  set.num_boundaries();
  EXPECT_EQ(cycle().add_holefilling_pick(0), -2);
  EXPECT_EQ(cycle().add_holefilling_pick(1), -1) << "the apex is not on the rim";
  EXPECT_EQ(cycle().add_holefilling_pick(5), 0);
  EXPECT_EQ(cycle().add_holefilling_picks(intcoSet()), -2);
  EXPECT_EQ(cycle().add_holefilling_picks({1, 99}), -1);
  EXPECT_EQ(cycle().add_holefilling_picks({2, 20}), 20) << "the first node of the cycle is tried last";
  EXPECT_EQ(cycle().add_holefilling_picks({2}), 2);
  EXPECT_EQ(cycle().add_holefilling_picked_edge(1, 7), 0);
  EXPECT_EQ(cycle().add_holefilling_picked_edge(1, -7), -1);
  set.cycles[0].start = -1;
  EXPECT_EQ(cycle().add_holefilling_pick(5), -1);
}

TEST_F(CyclePicks, UpToThreeAreKeptAndAnEndPickedAgainFlipsTheSide) {
  struct Step {
    int pick;
    Numbers valid, picks;
    int mode, forward;
  };
  const Step steps[] = {
      {5, {5}, {-1, -1, -1}, 2, 1},
      {5, {5}, {-1, -1, -1}, 2, 1},   // the same end twice is one
      {9, {5, 9}, {5, 9, 5}, 2, 1},   // no third pick yet: the first stands in
      {7, {5, 9, 7}, {5, 9, 7}, 2, 1},
      {8, {5, 9, 8}, {5, 9, 8}, 2, 1},  // a new third pick replaces the old
      {9, {5, 9, 9}, {5, 9, 9}, 1, 0},
      {5, {5, 9, 5}, {5, 9, 5}, 0, 1},
      {20, {5, 9, 20}, {5, 9, 20}, 2, 1},
  };
  set.num_boundaries();
  for (const Step& step : steps) {
    EXPECT_EQ(cycle().add_holefilling_pick(step.pick), 0);
    EXPECT_EQ(valid(), step.valid);
    EXPECT_EQ(picks(), step.picks);
    EXPECT_EQ(cycle().pick_mode, step.mode);
    EXPECT_EQ(cycle().arc_forward, step.forward);
  }
  struct Opened : trCycle {
    using trCycle::add_holefilling_valid_node;
  };
  Opened opened;
  EXPECT_EQ(opened.add_holefilling_valid_node(0, 1), -1);
  EXPECT_EQ(opened.add_holefilling_valid_node(3, 0), 0);
  EXPECT_EQ(opened.add_holefilling_valid_node(3, 0), -2);
}

TEST_F(CyclePicks, TheArcIsChosenByTheThirdPickElseByLength) {
  struct Case {
    Numbers picks;
    int mode;
    Numbers outputs;  // start, after start, before end, end
    int forward;
  };
  const Case cases[] = {
      {{5, 9, 7}, 2, {5, 6, 8, 9}, 1},
      {{9, 5, 7}, 2, {5, 6, 8, 9}, 1},  // named in cycle order
      {{5, 9, 20}, 2, {5, 6, 8, 9}, 0},
      {{5, 9, 5}, 2, {5, 6, 8, 9}, 1},     // the shorter arc
      {{3, 24, 3}, 2, {3, 4, 23, 24}, 0},
      {{2, 25, 7}, 2, {2, 3, 24, 25}, 1},
      {{5, 9, 20}, 0, {5, 6, 8, 9}, 1},
      {{5, 9, 7}, 1, {5, 6, 8, 9}, 0},
      {{5, 999, 5}, 0, {999, -1, 4, 5}, 1},  // a node that is not there comes before all
  };
  set.num_boundaries();
  for (const Case& c : cases) {
    cycle().enable_holefilling(0);
    for (int k = 0; k < 3; ++k) cycle().picks[k] = c.picks[static_cast<std::size_t>(k)];
    cycle().pick_mode = c.mode;
    Numbers out(4, 0);
    cycle().enable_holefilling(1, out[0], out[1], out[2], out[3]);
    EXPECT_EQ(out, c.outputs);
    EXPECT_EQ(cycle().arc_start, c.outputs[0]);
    EXPECT_EQ(cycle().arc_end, c.outputs[3]);
    EXPECT_EQ(cycle().arc_forward, c.forward);
  }
  cycle().clear_holefilling_data();
  Numbers out(4, 0);
  cycle().enable_holefilling(1, out[0], out[1], out[2], out[3]);
  EXPECT_EQ(out, Numbers(4, -1));
  EXPECT_EQ(cycle().arc_start, -1) << "without picks nothing changes";
}

// A picked node that the cycle passes twice stands where it is met last, as an end and as the third pick.
TEST(DoubleNodePicks, StandWhereTheyAreMetLast) {
  trTriBlock block;
  const double places[][2] = {{0, 0}, {3, 0}, {9, 4}, {9, -4}, {5, 0}};
  for (int k = 0; k < 5; ++k) block.set_node(k + 1, giPoint3(places[k][0], places[k][1], 0));
  block.generate(5, 3, 4);
  block.generate(1, 5, 2);
  trCycleArray set(&block);
  ASSERT_EQ(all_cycles(set), (std::vector<Numbers>{{1, 5, 3, 4, 5, 2}}));
  trCycle& cycle = set.cycles[0];
  const struct {
    Numbers picks;
    Numbers outputs;  // start, after start, before end, end
    int forward;
  } cases[] = {
      {{1, 5, 3}, {1, 5, 4, 5}, 1}, {{5, 2, 1}, {5, 2, 5, 2}, 0}, {{5, 4, 1}, {4, 5, 4, 5}, 0},
      {{3, 5, 4}, {3, 4, 4, 5}, 1}, {{1, 3, 5}, {1, 5, 5, 3}, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.picks));
    cycle.enable_holefilling(0);
    for (int k = 0; k < 3; ++k) cycle.picks[k] = c.picks[static_cast<std::size_t>(k)];
    Numbers out(4, 0);
    cycle.enable_holefilling(1, out[0], out[1], out[2], out[3]);
    EXPECT_EQ(out, c.outputs);
    EXPECT_EQ(cycle.arc_forward, c.forward);
  }
}

TEST_F(CyclePicks, LengthsAreTakenFromTheEndThatIsMetFirst) {
  set.num_boundaries();
  const double side = cycle().average_length();
  struct Case {
    int a, b;
    double inside;
    int reversed;
  };
  const Case cases[] = {{5, 9, 4, 0}, {9, 5, 4, 1}, {-1, 5, 3, 0}, {5, 999, 21, 0}, {998, 999, 0, 0}};
  for (const Case& c : cases) {
    double total = 0, inside = 0, outside = 0;
    int reversed = -1;
    cycle().eval_length(c.a, c.b, total, inside, outside, reversed);
    EXPECT_NEAR(total, 24 * side, 1e-9);
    EXPECT_NEAR(inside, c.inside * side, 1e-9);
    EXPECT_NEAR(outside, (24 - c.inside) * side, 1e-9);
    EXPECT_EQ(reversed, c.reversed);
  }
}

// The iteration runs from the far end of a forward arc back to its start, so it takes the line's nodes in reverse.
TEST_F(CyclePicks, TheNodesOfTheClosingLineAreTurnedForAForwardArc) {
  set.num_boundaries();
  const intcoPageArr line{31, 32, 33};
  cycle().set_subrange_nodes(line);
  EXPECT_EQ(cycle().subrange_nodes[0], 33);
  EXPECT_EQ(cycle().subrange_nodes[2], 31);
  cycle().arc_forward = 0;
  cycle().set_subrange_nodes(cycle().subrange_nodes);
  EXPECT_EQ(cycle().subrange_nodes[0], 33);
}
