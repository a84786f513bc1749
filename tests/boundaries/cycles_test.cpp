// Cycles: how they are found, walked, and what is picked on them.

#include <gtest/gtest.h>

#include "boundaries/boundary_shapes.h"
#include "oracles/boundaries_literal.h"
#include "support/interrupting_handler.h"
#include "support/validator.h"

namespace {

using Numbers = std::vector<int>;
using Cycles = std::vector<Numbers>;
using Edges = std::vector<std::pair<int, int>>;

// The loop of nodes as its edges.
Edges loop(const Numbers& nodes) {
  Edges edges;
  for (std::size_t k = 0; k < nodes.size(); ++k) edges.emplace_back(nodes[k], nodes[(k + 1) % nodes.size()]);
  return edges;
}

Edges edges_of(const Cycles& cycles) {
  Edges edges;
  for (const Numbers& cycle : cycles) {
    const Edges more = loop(cycle);
    edges.insert(edges.end(), more.begin(), more.end());
  }
  std::sort(edges.begin(), edges.end());
  return edges;
}

// What the iteration yields, each edge as (s_node, e_node). Stops a walk that does not end.
Edges walk(const trCycle& cycle) {
  Edges edges;
  trCycleIT it(&cycle);
  while (++it && edges.size() < 50) edges.emplace_back(it.s_node(), it.e_node());
  EXPECT_EQ(it.cur, -1);
  EXPECT_EQ(it.arc_index, -1);
  return edges;
}

// A host's global object, which may come to life before any of ours.
struct GlobalHost {
  trTriBlock block;
  trCycleArray set{&block};
  int boundaries = -1;
  GlobalHost() {
    add_to(block, loose_triangles(2));
    boundaries = set.num_boundaries();
  }
} global_host;

// The rim of a fan is a cycle of the nodes 2 to n + 1 on the unit circle.
struct Rim {
  explicit Rim(int n) : block(cone_fan(n)), set(&block) { set.num_boundaries(); }

  trCycle& cycle() { return set.cycles[0]; }
  int select(const intcoSet& ids, int pick = -1, const intcoSet& picks = intcoSet(), int edge_start = -1, int edge_end = -1) {
    return set.select_cycles(ids, 1, length, pick, picks, edge_start, edge_end);
  }
  Numbers picks() { return Numbers(cycle().picks, cycle().picks + 3); }
  Numbers valid() {
    Numbers nodes;
    for (int k = 0; k < cycle().valid_nodes.count(); ++k) nodes.push_back(cycle().valid_nodes[k]);
    return nodes;
  }

  BlockOf block;
  trCycleArray set;
  double length = -1.0;
};

// Chooses the arc between picks: its start, the node after that, the node before its end, and its end.
Numbers arc_ends(trCycle& cycle, const Numbers& picks, int mode = 2) {
  cycle.enable_holefilling(0);
  std::copy(picks.begin(), picks.end(), cycle.picks);
  cycle.pick_mode = mode;
  Numbers ends(4, 0);
  cycle.enable_holefilling(1, ends[0], ends[1], ends[2], ends[3]);
  return ends;
}

}  // namespace

TEST(CycleDetection, CyclesHoldEveryFreeEdgeOnceInItsDirectionAndFollowTheOldest) {
  Random random(11);
  int shared_nodes = 0;
  for (int round = 0; round < 600; ++round) {
    BlockOf block(random_tangle(random, random.between(4, 12), random.between(1, 24), 5));
    if (round % 2) block.build_edges();  // edges made as elements come and go are followed in the same order
    for (int k = random.below(3); k > 0; --k) block.delete_element(random.between(1, block.element_count() - 1));
    block.force_changed_status(1);
    if (round % 2 && block.element_count() > 2) block.alter(0);
    trCycleArray set(&block);
    const Cycles found = all_cycles(set);
    ASSERT_EQ(found, cycles_literal(block)) << "round " << round;
    ASSERT_EQ(edges_of(found), expected_free_edges(block));
    ASSERT_EQ(set.num_edges(), static_cast<int>(expected_free_edges(block).size()));
    ASSERT_TRUE(is_sound(block));
    for (const Numbers& cycle : found) {
      for (int n : cycle) ASSERT_EQ(block.node(n).side, 1);
      shared_nodes += std::set<int>(cycle.begin(), cycle.end()).size() < cycle.size();
    }
    block.force_changed_status(1);
    ASSERT_EQ(set.detected(), 0);
    ASSERT_EQ(all_cycles(set), found) << "the lists are restored in their order";
  }
  EXPECT_GE(shared_nodes, 100);
}

TEST(CycleDetection, OneTriangleTakesFourEntriesOfWhichTheLastRepeatsTheFirst) {
  BlockOf block(loose_triangles(1));
  trCycleArray set(&block);
  EXPECT_EQ(set.num_boundaries(), 1);
  ASSERT_EQ(trCycle::rep.count(), 4);
  const int expected[] = {1, 2, 3, 1};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(trCycle::rep[i].node, expected[i]);
  EXPECT_EQ(block.changed, 0);
}

TEST(CycleDetection, AnInterruptionAtAnyPollIsMadeGoodByTheNextQuery) {
  const Shape shape = punctured_sphere(4, 3);
  BlockOf whole(shape);
  trCycleArray reference(&whole);
  const Cycles expected = all_cycles(reference);
  int stop = 1, partial = 0;
  for (bool stopped = true; stopped; ++stop) {
    BlockOf block(shape);
    trCycleArray set(&block);
    {
      InterruptingHandler handler(stop);
      const int boundaries = set.num_boundaries();
      stopped = handler.interrupted_flag;
      partial += stopped && boundaries > 0;
      EXPECT_EQ(set.detected(), !stopped);
      EXPECT_EQ(block.changed, stopped);
    }
    EXPECT_TRUE(is_sound(block)) << "edges that were not walked must not pass for built, poll " << stop;
    block.delete_element(1);
    block.generate(shape.triangles[0][0] + 1, shape.triangles[0][1] + 1, shape.triangles[0][2] + 1);
    ASSERT_EQ(edges_of(all_cycles(set)), edges_of(expected)) << "poll " << stop;
  }
  EXPECT_GE(stop, 50);
  EXPECT_GE(partial, 5);
}

// All sets share one array of nodes.
TEST(CycleDetection, ASetWhoseEntriesAnotherDiscardedDetectsAgain) {
  BlockOf one(loose_triangles(1)), many(loose_triangles(5));
  trCycleArray first(&one);
  {
    trCycleArray second(&many);
    EXPECT_EQ(first.num_boundaries(), 1);
    EXPECT_EQ(second.num_boundaries(), 5);
    EXPECT_EQ(second.detected(), 1);
    EXPECT_EQ(first.detected(), 0);
    EXPECT_EQ(first.closest_node(giPoint3(), giUnitVec3(), 0.1), 1);
    EXPECT_EQ(second.detected(), 0);
    EXPECT_EQ(all_cycles(second).size(), 5u);
  }
  const trCycleArray third(&one);  // may stand where the second stood
  EXPECT_EQ(third.detected(), 0);
  EXPECT_EQ(all_cycles(first), (Cycles{{1, 2, 3}}));
  EXPECT_EQ(global_host.boundaries, 2);
  EXPECT_EQ(global_host.set.num_edges(), 6);
}

// Moving the whole mesh counts as no change and clears the mark of an earlier one, which must be noticed all the same.
TEST(CycleDetection, AChangeBehindALaterTransformIsNoticed) {
  BlockOf block(loose_triangles(2));
  trCycleArray set(&block);
  EXPECT_EQ(set.num_boundaries(), 2);
  block.transform(giXform3());
  EXPECT_EQ(set.detected(), 1) << "a mere move";
  block.delete_element(2);
  block.force_changed_status(1);
  block.transform(giXform3());
  EXPECT_EQ(block.changed, 0);
  EXPECT_EQ(set.num_boundaries(), 1);
  EXPECT_EQ(set.box().max().x, 1.0);
  block.set_node(2, giPoint3(7, 0, 0));
  EXPECT_EQ(set.detected(), 1);
  EXPECT_EQ(set.box().max().x, 7.0) << "boxes follow nodes";
}

// A host deleted a node of the boundary: its free edges are gone, so a walk comes to a node that it cannot leave.
TEST(CycleDetection, AWalkThatCannotGoOnIsClosedWhereItStands) {
  BlockOf block(loose_triangles(1));
  block.build_edges();
  block.delete_node(3);
  trCycleArray set(&block);
  EXPECT_EQ(all_cycles(set), (Cycles{{1, 2, 3}}));
}

TEST(CycleDetection, RemovedCyclesCountNothing) {
  BlockOf block(loose_triangles(3));
  trCycleArray set(&block);
  set.num_boundaries();
  const trCycle& removed = set.cycles[1];
  set.cycles[1].start = -1;
  set.edge_count = -1;
  EXPECT_EQ(set.num_boundaries(), 2);
  EXPECT_EQ(set.num_edges(), 6);
  EXPECT_EQ(removed.size(), 0);
  EXPECT_EQ(removed.average_length(), 0.0);
  EXPECT_TRUE(removed.box().is_empty());
  EXPECT_EQ(removed.get_start_node(), -1);
  EXPECT_EQ(set.box().max().x, 7.0);
}

TEST(CycleIteration, WithoutAnArcItYieldsEveryEdgeCancelledOnesTooAndStartsAgainAfterItsEnd) {
  Rim rim(6);
  trCycleIT it(&rim.cycle());
  EXPECT_EQ(it.first_node, 2);
  ++it;
  ++it;
  it.cancel_edge();
  it.cancel_node();
  EXPECT_TRUE(it.edge_cancelled() && it.node_cancelled());
  EXPECT_EQ(rim.block.node(3).side, 0);
  ++it;
  EXPECT_FALSE(it.edge_cancelled() || it.node_cancelled());
  while (++it) continue;
  EXPECT_TRUE(++it);
  EXPECT_EQ(it.s_node(), 2);
  EXPECT_EQ(walk(rim.cycle()), loop({2, 3, 4, 5, 6, 7}));
}

TEST(CycleIteration, AnArcIsYieldedAsAClosedLoop) {
  struct Case {
    int from, to, forward;
    Numbers between, expected;
  };
  const Case cases[] = {
      {3, 6, 1, {}, {3, 4, 5, 6}},
      {3, 6, 1, {8, 9}, {3, 4, 5, 6, 8, 9}},
      {2, 4, 1, {8}, {2, 3, 4, 8}},
      {4, 4, 1, {8}, {4, 8}},
      {5, 2, 1, {8}, {5, 6, 7, 2, 8}},  // the end stands where the cycle closes
      {3, 6, 0, {}, {2, 3, 6, 7}},
      {3, 6, 0, {9, 8}, {2, 3, 9, 8, 6, 7}},
      {2, 7, 0, {8}, {2, 8, 7}},
      {2, 4, 0, {}, {2, 4, 5, 6, 7}},
      {-1, 5, 0, {8}, {5, 6, 7}},  // without a first end it begins at the second; the loop stays open
      {4, -1, 0, {8}, {2, 3, 4, 8}},
      {4, -1, 0, {}, {2, 3, 4}},
      {99, 6, 1, {}, {}},
      {-1, 6, 1, {}, {}},
      {99, 6, 0, {}, {2, 3, 4, 5, 6, 7}},
      // an end that does not follow: the walk goes to the end of the cycle, or ends after the first
      {5, 3, 1, {}, {5, 6, 7}},
      {5, 3, 0, {8}, {2, 3, 4, 5, 8}},
      {4, 4, 0, {}, {2, 3, 4}},
  };
  Rim rim(6);
  rim.block.set_node(8, giPoint3(5, 0, 0));
  rim.block.set_node(9, giPoint3(6, 0, 0));
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.from << " to " << c.to << ", forward " << c.forward);
    rim.cycle().arc_start = c.from;
    rim.cycle().arc_end = c.to;
    rim.cycle().arc_forward = c.forward;
    rim.cycle().subrange_nodes.clear();
    for (int n : c.between) rim.cycle().subrange_nodes.append(n);
    EXPECT_EQ(nodes_of(rim.cycle()), c.expected);
    EXPECT_EQ(rim.cycle().size(), static_cast<int>(c.expected.size()));
    Edges expected = loop(c.expected);
    if (c.from == -1 && !expected.empty()) expected.back().second = 2;
    if (c.from < c.to || c.to <= 2) { EXPECT_EQ(walk(rim.cycle()), expected); }
  }
}

// In a cycle that passes a node twice an arc begins at the first pass and turns at the first that follows.
TEST(CycleIteration, ANodePassedTwiceTurnsTheWalkOnce) {
  trTriBlock block;
  for (int i = 1; i <= 5; ++i) block.set_node(i, giPoint3(i, i * i, 0));
  block.generate(4, 5, 3);
  block.generate(2, 3, 1);
  trCycleArray set(&block);
  ASSERT_EQ(all_cycles(set)[0], (Numbers{1, 2, 3, 4, 5, 3}));
  trCycle& cycle = set.cycles[0];
  cycle.arc_start = 3;
  cycle.arc_end = 4;
  EXPECT_EQ(walk(cycle), loop({3, 4}));
  cycle.arc_forward = 0;
  EXPECT_EQ(walk(cycle), (Edges{{1, 2}, {2, 3}, {3, 4}, {4, 5}, {5, 3}, {3, 1}}));
}

// Three sides of a regular hexagon and the closing line; the box leaves out the nodes of the sub-range.
TEST(CycleIteration, LengthAndBoxDescribeTheArc) {
  Rim rim(6);
  rim.block.set_node(8, giPoint3(5, 0, 0));
  EXPECT_NEAR(rim.cycle().average_length(), 1.0, 1e-12);
  EXPECT_NEAR(rim.cycle().box().min().x, -1.0, 1e-12);
  arc_ends(rim.cycle(), {2, 4, 3});
  rim.cycle().subrange_nodes.append(8);
  EXPECT_NEAR(rim.cycle().box().max().x, 1.0, 1e-12);
  EXPECT_NEAR(rim.cycle().box().min().x, -0.5, 1e-12);
  const double closing = rim.block.point(4).distance(rim.block.point(8)) + 4.0;  // node 8 lies 4 beyond node 2
  EXPECT_NEAR(rim.cycle().average_length(), (2.0 + closing) / 4.0, 1e-12);
  rim.cycle().enable_holefilling(0);
  EXPECT_NEAR(rim.cycle().box().min().x, -1.0, 1e-12);
}

// Every use of a cycle whose entries are gone, or were taken over by another mesh, is harmless.
TEST(CycleIteration, ACycleThatOutlivesItsEntriesIsHarmless) {
  BlockOf large(loose_triangles(40)), small(loose_triangles(1));
  trCycleArray first(&small), second(&large);
  first.num_boundaries();
  trCycle kept = first.cycles[0];
  kept.add_holefilling_pick(2);
  second.num_boundaries();
  kept.start = 148;  // now the entries of nodes that the small block does not have
  EXPECT_EQ(kept.size(), 3);
  EXPECT_GE(kept.average_length(), 0.0);
  kept.box();
  first.num_boundaries();
  EXPECT_EQ(kept.size(), 0);
  const trCycle copy = kept;
  EXPECT_EQ(copy.valid_nodes[0], 2) << "its own fields stay";
  EXPECT_EQ(copy.holefilling_start_pick(), small.point(2));
}

TEST(CycleSelection, NumbersOutsideAreIgnoredAndTheLastCycleGivesTheLength) {
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
}

TEST(CycleSelection, PicksAreRecordedOnlyWhenTheCycleIsSelectedAgain) {
  Rim rim(24);
  EXPECT_EQ(rim.select({0}, 4), 0);
  EXPECT_EQ(rim.valid(), Numbers{});
  EXPECT_EQ(rim.select({0}, 4, {6}, 8, 9), 0);
  EXPECT_EQ(rim.valid(), Numbers{4}) << "an accepted single pick is all";
  EXPECT_EQ(rim.select({0}, 1, {6, 7}, 999, 9), 0);
  EXPECT_EQ(rim.valid(), (Numbers{4, 6, 9})) << "a pick from the set is followed by the edge";
  EXPECT_EQ(rim.set.select_cycles({0}, 0, rim.length, -1, intcoSet(), -1, -1), 0);
  EXPECT_EQ(rim.valid(), Numbers{});
  EXPECT_EQ(rim.picks(), (Numbers{-1, -1, -1}));
}

TEST(CyclePicks, EachWayOfPickingTellsWhatItTook) {
  Rim rim(24);
  trCycle& cycle = rim.cycle();
  EXPECT_EQ(cycle.add_holefilling_pick(0), -2);
  EXPECT_EQ(cycle.add_holefilling_pick(1), -1) << "the apex is not on the rim";
  EXPECT_EQ(cycle.add_holefilling_pick(5), 0);
  EXPECT_EQ(cycle.add_holefilling_picks(intcoSet()), -2);
  EXPECT_EQ(cycle.add_holefilling_picks({1, 99}), -1);
  EXPECT_EQ(cycle.add_holefilling_picks({2, 20}), 20) << "the first node of the cycle is tried last";
  EXPECT_EQ(cycle.add_holefilling_picks({2}), 2);
  EXPECT_EQ(cycle.add_holefilling_picked_edge(1, 7), 0);
  EXPECT_EQ(cycle.add_holefilling_picked_edge(1, -7), -1);
  cycle.start = -1;
  EXPECT_EQ(cycle.add_holefilling_pick(5), -1);
  struct Opened : trCycle {
    using trCycle::add_holefilling_valid_node;
  } opened;
  EXPECT_EQ(opened.add_holefilling_valid_node(0, 1), -1);
  EXPECT_EQ(opened.add_holefilling_valid_node(3, 0), 0);
  EXPECT_EQ(opened.add_holefilling_valid_node(3, 0), -2);
}

TEST(CyclePicks, UpToThreeAreKeptAndAnEndPickedAgainFlipsTheSide) {
  struct Step {
    int pick;
    Numbers valid, picks;
    int mode, forward;
  };
  const Step steps[] = {
      {5, {5}, {-1, -1, -1}, 2, 1},
      {5, {5}, {-1, -1, -1}, 2, 1},  // the same end twice is one
      {9, {5, 9}, {5, 9, 5}, 2, 1},  // no third pick yet: the first stands in
      {7, {5, 9, 7}, {5, 9, 7}, 2, 1},
      {8, {5, 9, 8}, {5, 9, 8}, 2, 1},  // a new third pick replaces the old
      {9, {5, 9, 9}, {5, 9, 9}, 1, 0},
      {5, {5, 9, 5}, {5, 9, 5}, 0, 1},
      {20, {5, 9, 20}, {5, 9, 20}, 2, 1},
  };
  Rim rim(24);
  for (const Step& step : steps) {
    EXPECT_EQ(rim.cycle().add_holefilling_pick(step.pick), 0);
    EXPECT_EQ(rim.valid(), step.valid);
    EXPECT_EQ(rim.picks(), step.picks);
    EXPECT_EQ(rim.cycle().pick_mode, step.mode);
    EXPECT_EQ(rim.cycle().arc_forward, step.forward);
  }
}

// By the third pick, else by length; the first rim has the nodes 2 to 25, the second cycle passes node 5 twice: a pick there stands where it
// is met last, as an end and as the third pick.
TEST(CyclePicks, TheArcIsChosenByTheThirdPickElseByLength) {
  Rim rim(24);
  trTriBlock block;
  const double places[][2] = {{0, 0}, {3, 0}, {9, 4}, {9, -4}, {5, 0}};
  for (int k = 0; k < 5; ++k) block.set_node(k + 1, giPoint3(places[k][0], places[k][1], 0));
  block.generate(5, 3, 4);
  block.generate(1, 5, 2);
  trCycleArray set(&block);
  struct Case {
    bool is_rim;
    Numbers picks;
    int mode;
    Numbers ends;
    int forward;
  };
  const Case cases[] = {
      {true, {5, 9, 7}, 2, {5, 6, 8, 9}, 1},
      {true, {9, 5, 7}, 2, {5, 6, 8, 9}, 1},  // named in cycle order
      {true, {5, 9, 20}, 2, {5, 6, 8, 9}, 0},
      {true, {5, 9, 5}, 2, {5, 6, 8, 9}, 1},  // the shorter arc
      {true, {3, 24, 3}, 2, {3, 4, 23, 24}, 0},
      {true, {2, 25, 7}, 2, {2, 3, 24, 25}, 1},
      {true, {5, 9, 20}, 0, {5, 6, 8, 9}, 1},
      {true, {5, 9, 7}, 1, {5, 6, 8, 9}, 0},
      {true, {5, 999, 5}, 0, {999, -1, 4, 5}, 1},  // a node that is not there comes before all
      {false, {1, 5, 3}, 2, {1, 5, 4, 5}, 1},
      {false, {5, 2, 1}, 2, {5, 2, 5, 2}, 0},
      {false, {5, 4, 1}, 2, {4, 5, 4, 5}, 0},
      {false, {3, 5, 4}, 2, {3, 4, 4, 5}, 1},
      {false, {1, 3, 5}, 2, {1, 5, 5, 3}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.picks));
    trCycleArray& of = c.is_rim ? rim.set : set;
    of.num_boundaries();
    EXPECT_EQ(arc_ends(of.cycles[0], c.picks, c.mode), c.ends);
    EXPECT_EQ(of.cycles[0].arc_start, c.ends[0]);
    EXPECT_EQ(of.cycles[0].arc_end, c.ends[3]);
    EXPECT_EQ(of.cycles[0].arc_forward, c.forward);
  }
  rim.set.num_boundaries();
  rim.cycle().clear_holefilling_data();
  EXPECT_EQ(arc_ends(rim.cycle(), {}), Numbers(4, -1));
  EXPECT_EQ(rim.cycle().arc_start, -1) << "without picks nothing changes";
}

TEST(CyclePicks, LengthsAreTakenFromTheEndThatIsMetFirst) {
  Rim rim(24);
  const double side = rim.cycle().average_length();
  struct Case {
    int a, b;
    double inside;
    int reversed;
  };
  for (const Case& c : {Case{5, 9, 4, 0}, {9, 5, 4, 1}, {-1, 5, 3, 0}, {5, 999, 21, 0}, {998, 999, 0, 0}}) {
    double total = 0, inside = 0, outside = 0;
    int reversed = -1;
    rim.cycle().eval_length(c.a, c.b, total, inside, outside, reversed);
    EXPECT_NEAR(total, 24 * side, 1e-9);
    EXPECT_NEAR(inside, c.inside * side, 1e-9);
    EXPECT_NEAR(outside, (24 - c.inside) * side, 1e-9);
    EXPECT_EQ(reversed, c.reversed);
  }
}
