#include <gtest/gtest.h>

#include "boundaries/boundary_shapes.h"

namespace {

using Edges = std::vector<std::pair<int, int>>;

// What the iteration yields, each edge as (s_node, e_node). Stops a walk that does not end.
Edges walk(const trCycle& cycle) {
  Edges edges;
  trCycleIT it(&cycle);
  while (++it && edges.size() < 50) edges.emplace_back(it.s_node(), it.e_node());
  EXPECT_EQ(it.cur, -1);
  EXPECT_EQ(it.arc_index, -1);
  return edges;
}

// The loop of nodes as its edges.
Edges loop(const std::vector<int>& nodes) {
  Edges edges;
  for (std::size_t k = 0; k < nodes.size(); ++k) edges.emplace_back(nodes[k], nodes[(k + 1) % nodes.size()]);
  return edges;
}

// The rim of a fan: a cycle of the nodes 2 to 7.
class CycleIteration : public testing::Test {
 protected:
  CycleIteration() : block(cone_fan(6)), set(&block) {
    set.num_boundaries();
    block.set_node(8, giPoint3(5, 0, 0));
    block.set_node(9, giPoint3(6, 0, 0));
  }

  trCycle& cycle() { return set.cycles[0]; }
  void set_arc(int from, int to, int forward, const std::vector<int>& between = {}) {
    cycle().arc_start = from;
    cycle().arc_end = to;
    cycle().arc_forward = forward;
    cycle().subrange_nodes.clear();
    for (int n : between) cycle().subrange_nodes.append(n);
  }

  BlockOf block;
  trCycleArray set;
};

}  // namespace

TEST_F(CycleIteration, WithoutAnArcItYieldsEveryEdgeAndStartsAgainAfterItsEnd) {
  EXPECT_EQ(walk(cycle()), loop({2, 3, 4, 5, 6, 7}));
  trCycleIT it(&cycle());
  EXPECT_EQ(it.first_node, 2);
  while (++it) continue;
  EXPECT_TRUE(++it);
  EXPECT_EQ(it.s_node(), 2);
}

TEST_F(CycleIteration, CancelledEdgesAreStillYielded) {
  trCycleIT it(&cycle());
  ++it;
  ++it;
  EXPECT_FALSE(it.edge_cancelled());
  EXPECT_FALSE(it.node_cancelled());
  it.cancel_edge();
  it.cancel_node();
  EXPECT_TRUE(it.edge_cancelled());
  EXPECT_TRUE(it.node_cancelled());
  EXPECT_EQ(block.node(3).side, 0);
  EXPECT_EQ(cycle().size(), 6);
  ++it;
  EXPECT_FALSE(it.edge_cancelled() || it.node_cancelled());
}

TEST_F(CycleIteration, AnArcIsYieldedAsAClosedLoop) {
  struct Case {
    int from, to, forward;
    std::vector<int> between;
    std::vector<int> expected;
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
  };
  for (const Case& c : cases) {
    set_arc(c.from, c.to, c.forward, c.between);
    Edges expected = loop(c.expected);
    if (c.from == -1 && !expected.empty()) expected.back().second = 2;
    EXPECT_EQ(walk(cycle()), expected) << c.from << " to " << c.to << ", forward " << c.forward;
    EXPECT_EQ(cycle().size(), static_cast<int>(c.expected.size()));
  }
}

// An end that does not follow: the walk goes to the end of the cycle, or ends after the first.
TEST_F(CycleIteration, AnArcWithItsEndsInTheWrongOrderEnds) {
  set_arc(5, 3, 1);
  EXPECT_EQ(nodes_of(cycle()), (std::vector<int>{5, 6, 7}));
  set_arc(5, 3, 0, {8});
  EXPECT_EQ(nodes_of(cycle()), (std::vector<int>{2, 3, 4, 5, 8}));
  set_arc(4, 4, 0);
  EXPECT_EQ(nodes_of(cycle()), (std::vector<int>{2, 3, 4}));
}

// In a cycle that passes a node twice an arc begins at the first pass and turns at the first that follows.
TEST(CycleIterationTwice, ANodePassedTwiceTurnsTheWalkOnce) {
  trTriBlock block;
  for (int i = 1; i <= 5; ++i) block.set_node(i, giPoint3(i, i * i, 0));
  block.generate(4, 5, 3);
  block.generate(2, 3, 1);
  trCycleArray set(&block);
  ASSERT_EQ(all_cycles(set)[0], (std::vector<int>{1, 2, 3, 4, 5, 3}));
  trCycle& cycle = set.cycles[0];
  cycle.arc_start = 3;
  cycle.arc_end = 4;
  EXPECT_EQ(walk(cycle), loop({3, 4}));
  cycle.arc_forward = 0;
  EXPECT_EQ(walk(cycle), (Edges{{1, 2}, {2, 3}, {3, 4}, {4, 5}, {5, 3}, {3, 1}}));
}

// Three sides of a unit square and the closing line; the box leaves out the nodes of the sub-range.
TEST_F(CycleIteration, LengthAndBoxDescribeTheArc) {
  EXPECT_NEAR(cycle().average_length(), 1.0, 1e-12) << "a regular hexagon on the unit circle";
  EXPECT_NEAR(cycle().box().min().x, -1.0, 1e-12);
  cycle().picks[0] = 2;
  cycle().picks[1] = 4;
  cycle().picks[2] = 3;
  cycle().enable_holefilling(1);
  cycle().subrange_nodes.append(8);
  EXPECT_NEAR(cycle().box().max().x, 1.0, 1e-12);
  EXPECT_NEAR(cycle().box().min().x, -0.5, 1e-12);
  const double closing = block.point(4).distance(block.point(8)) + 4.0;  // node 8 lies 4 beyond node 2
  EXPECT_NEAR(cycle().average_length(), (2.0 + closing) / 4.0, 1e-12);
  cycle().enable_holefilling(0);
  EXPECT_NEAR(cycle().box().min().x, -1.0, 1e-12);
}

// Every use of a cycle whose entries are gone, or were taken over by another mesh, is harmless.
TEST(CycleIterationStale, ACycleThatOutlivesItsEntriesIsHarmless) {
  BlockOf large(loose_triangles(40));
  BlockOf small(loose_triangles(1));
  trCycleArray first(&small);
  trCycleArray second(&large);
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
  EXPECT_EQ(kept.valid_nodes.count(), 1) << "its own fields stay";
  const trCycle copy = kept;
  EXPECT_EQ(copy.valid_nodes[0], 2);
  EXPECT_EQ(copy.holefilling_start_pick(), small.point(2));
}
