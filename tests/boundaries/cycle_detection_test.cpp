#include <gtest/gtest.h>

#include "boundaries/boundary_shapes.h"
#include "oracles/boundaries_literal.h"
#include "support/interrupting_handler.h"
#include "support/validator.h"

namespace {

using Cycles = std::vector<std::vector<int>>;

std::vector<std::pair<int, int>> edges_of(const Cycles& cycles) {
  std::vector<std::pair<int, int>> edges;
  for (const auto& cycle : cycles) {
    for (std::size_t k = 0; k < cycle.size(); ++k) edges.emplace_back(cycle[k], cycle[(k + 1) % cycle.size()]);
  }
  std::sort(edges.begin(), edges.end());
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
    for (const auto& cycle : found) {
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
  EXPECT_EQ(set.cycles[0].start, 0);
  EXPECT_EQ(set.cycles[0].get_start_node(), 1);
  EXPECT_EQ(set.detected(), 1);
  EXPECT_EQ(block.changed, 0);
}

// Two triangles that touch in one node form two cycles when the scan comes to the shared node first, else one that
// passes it twice, unless the edge of the same triangle is the older one there.
TEST(CycleDetection, AtASharedNodeTheEdgeMadeFirstIsFollowed) {
  struct Case {
    int triangles[2][3];
    Cycles cycles;
  };
  const Case cases[] = {
      {{{1, 2, 3}, {1, 4, 5}}, {{1, 2, 3}, {1, 4, 5}}},
      {{{2, 3, 1}, {4, 5, 3}}, {{1, 2, 3}, {3, 4, 5}}},  // from 3 the older edge leads home
      {{{4, 5, 3}, {2, 3, 1}}, {{1, 2, 3, 4, 5, 3}}},
  };
  for (const Case& c : cases) {
    trTriBlock block;
    for (int i = 1; i <= 5; ++i) block.set_node(i, giPoint3(i, i * i, 0));
    for (const auto& t : c.triangles) block.generate(t[0], t[1], t[2]);
    trCycleArray set(&block);
    EXPECT_EQ(all_cycles(set), c.cycles);
  }
}

// A strip of four triangles of which the last two are turned over: neither half cancels the edge of the other.
TEST(CycleDetection, ASeamBetweenOppositeOrientationsIsFreeOnBothSides) {
  trTriBlock block;
  for (int i = 1; i <= 6; ++i) block.set_node(i, giPoint3((i - 1) / 2, (i - 1) % 2, 0));
  block.generate(1, 3, 2);
  block.generate(3, 4, 2);
  block.generate(3, 4, 5);
  block.generate(4, 6, 5);
  trCycleArray set(&block);
  EXPECT_EQ(all_cycles(set), (Cycles{{1, 3, 4, 2}, {3, 4, 6, 5}}));
}

TEST(CycleDetection, AnInterruptionAtAnyPollIsMadeGoodByTheNextQuery) {
  const Shape shape = punctured_sphere(4, 3);
  BlockOf whole(shape);
  trCycleArray reference(&whole);
  const Cycles expected = all_cycles(reference);
  int stop = 1;
  int partial = 0;
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
  BlockOf one(loose_triangles(1));
  BlockOf many(loose_triangles(5));
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
  EXPECT_EQ(set.detected(), 0);
  EXPECT_EQ(set.num_boundaries(), 1);
}

TEST(CycleDetection, BoxesFollowNodesThatMove) {
  BlockOf block(loose_triangles(1));
  trCycleArray set(&block);
  EXPECT_EQ(set.box().max().x, 1.0);
  block.set_node(2, giPoint3(7, 0, 0));
  EXPECT_EQ(set.detected(), 1);
  EXPECT_EQ(set.box().max().x, 7.0);
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
  set.cycles[1].start = -1;
  set.edge_count = -1;
  EXPECT_EQ(set.num_boundaries(), 2);
  EXPECT_EQ(set.num_edges(), 6);
  EXPECT_EQ(set.cycles[1].size(), 0);
  EXPECT_EQ(set.cycles[1].average_length(), 0.0);
  EXPECT_TRUE(set.cycles[1].box().is_empty());
  EXPECT_EQ(set.cycles[1].get_start_node(), -1);
  EXPECT_EQ(set.box().max().x, 7.0);
}
