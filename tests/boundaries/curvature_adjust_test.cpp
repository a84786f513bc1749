// The ring of nodes round a boundary, the surface fitted to it, and nodes that are moved onto it.

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "boundaries/boundary_shapes.h"
#include "boundaries/filling_support.h"
#include "support/interrupting_handler.h"
#include "support/journal_recorder.h"
#include "support/marking_hook.h"
#include "support/validator.h"

namespace {

std::vector<int> numbers(const intcoPageArr& array) {
  std::vector<int> all;
  for (int k = 0; k < array.count(); ++k) all.push_back(array[k]);
  return all;
}

void append_unless_listed(int n, std::vector<int>& out, const std::vector<int>& exclude) {
  if (std::find(out.begin(), out.end(), n) != out.end()) return;
  if (std::find(exclude.begin(), exclude.end(), n) == exclude.end()) out.push_back(n);
}

// Word by word, with a search through both lists for every corner.
void surrounding_literal(const trTriBlock& block, int node, std::vector<int>& out, const std::vector<int>& exclude) {
  for (int e : entries(block.node(node).elements)) {
    if (!block.element(e).valid()) continue;
    for (int k = 0; k < 3; ++k) append_unless_listed(block.element(e)[k], out, exclude);
  }
}

// A sphere with a round hole of 16 edges about its north pole, and the nodes of the rim.
struct OpenSphere : testing::Test {
  OpenSphere() : block(sphere(16)) {
    for (int e = 1; e < block.element_count(); ++e) {
      const trElement& t = block.element(e);
      const double z = std::min({block.point(t[0]).z, block.point(t[1]).z, block.point(t[2]).z});
      if (z > 0.75) block.delete_element(e);
    }
    trCycleArray set(&block);
    set.num_boundaries();
    for (int n : nodes_of(set.cycles[0])) rim[rim.count()] = n;
  }

  BlockOf block;
  intcoPageArr rim;
};

using CurvatureAdjust = OpenSphere;

}  // namespace

TEST(SurroundingNodes, ComeInTheOrderOfTheElementListsEachOnce) {
  Random random(17);
  std::size_t collected = 0;
  for (int round = 0; round < 400; ++round) {
    BlockOf block(random_tangle(random, 30, 40, 9));
    for (int k = 0; k < 5; ++k) block.delete_element(random.between(1, 40));
    intcoPageArr nodes, out;
    for (int k = random.between(1, 6); k > 0; --k) nodes[nodes.count()] = random.between(1, 30);
    out[0] = random.between(1, 30);  // what is listed already is not listed again
    std::vector<int> expected = numbers(out);
    for (int k = 0; k < nodes.count(); ++k) surrounding_literal(block, nodes[k], expected, numbers(nodes));
    block.elements_referenced = round % 2;
    EXPECT_EQ(block.get_surrounding_nodes(nodes, out), 0);
    std::vector<int> found = numbers(out);
    if (round % 2 == 0) {  // built anew, the lists are in their own order
      std::sort(found.begin(), found.end());
      std::sort(expected.begin(), expected.end());
    }
    ASSERT_EQ(found, expected);
    collected += found.size();

    intcoPageArr single;
    std::vector<int> round_one;
    surrounding_literal(block, nodes[0], round_one, {});
    EXPECT_EQ(block.get_surrounding_nodes(nodes[0], single, nullptr), 0);
    ASSERT_EQ(numbers(single), round_one) << "without exclusion the node itself is among them";
  }
  EXPECT_GE(collected, 2000u);
}

// Elements may name nodes that are not there, and a node's list elements that no longer name it.
TEST(SurroundingNodes, PassOverWhatIsNotThere) {
  BlockOf block(cone_fan(5));
  block.generate(2, 3, 500);
  block.set_element(1, 3, 4, 5);
  intcoPageArr nodes{-3, 2, 77}, out;
  EXPECT_EQ(block.get_surrounding_nodes(nodes, out), 0);
  EXPECT_EQ(numbers(out), (std::vector<int>{3, 1, 6}));
}

TEST_F(CurvatureAdjust, NewNodesComeToLieOnTheFittedSurface) {
  EXPECT_EQ(block.enable_curvature_adjust(&rim, 0), 0);
  EXPECT_EQ(block.curvature_adjust, 1);
  const giVector3 up(0, 0, 1);
  giPoint3 q;
  EXPECT_EQ(block.apply_curvature_adjust_on_coords(giPoint3(0.1, 0.2, 0.7), up, q), 0);
  EXPECT_NEAR(q.distance(giPoint3()), 1.0, 0.01);
  EXPECT_NEAR(q.x, 0.1, 1e-9) << "along the direction";
  EXPECT_EQ(block.apply_curvature_adjust_on_coords(giPoint3(0.3, 0.0, 0.9), tr_no_direction(), q), 0);
  EXPECT_NEAR(q.distance(giPoint3()), 1.0, 0.01);
  EXPECT_GT(q.x, 0.3) << "to the closest point, outward";

  const int made = block.interpolate_node(rim[0], rim[rim.count() / 2], 0.5, up);
  EXPECT_NEAR(block.point(made).z, 1.0, 0.01) << "half-way across the hole, on the pole";
  block.disable_curvature_adjust(0);
  EXPECT_NE(block.surface, nullptr);
  EXPECT_EQ(block.apply_curvature_adjust_on_coords(giPoint3(1, 2, 3), up, q), -1);
  EXPECT_EQ(q, giPoint3(1, 2, 3));
  EXPECT_EQ(block.enable_curvature_adjust(nullptr, 0), 0) << "switches on with the surface there is";
  EXPECT_EQ(block.apply_curvature_adjust_on_coords(giPoint3(), up, q), 0);
  block.disable_curvature_adjust(1);
  EXPECT_EQ(block.surface, nullptr);
  EXPECT_EQ(block.curvature_adjust, 0);
}

TEST_F(CurvatureAdjust, ASurfaceThatCannotBeFittedLeavesAdjustmentOff) {
  const intcoPageArr few{rim[0], rim[1]};
  block.clear();
  EXPECT_EQ(block.enable_curvature_adjust(&few, 0), -2);
  EXPECT_EQ(block.curvature_adjust, 0);
  EXPECT_EQ(block.surface, nullptr);
}

TEST(CurvatureAdjustNode, MovesANodeAndReportsIt) {
  BlockOf block(cone_fan(6));
  block.delete_node(4);
  const giVector3 up(0, 0, 1);
  EXPECT_EQ(block.apply_curvature_adjust_on_node(1, up), 0) << "off";
  block.surface = std::make_shared<FloorSurface>(3.0);
  block.enable_curvature_adjust(nullptr, 0);
  JournalRecorder journal(block);
  EXPECT_EQ(block.apply_curvature_adjust_on_node(2, up), 0);
  EXPECT_EQ(block.point(2), giPoint3(1, 0, 3));
  EXPECT_EQ(block.apply_curvature_adjust_on_node(block.node_count(), up), -1);
  EXPECT_EQ(block.apply_curvature_adjust_on_node(-1, up), -1);
  EXPECT_EQ(block.apply_curvature_adjust_on_node(3, giVector3(1, 0, 0)), -2);
  EXPECT_EQ(block.apply_curvature_adjust_on_node(4, up), -3);
  EXPECT_EQ(block.node(4).invalid, 1);
  EXPECT_EQ(journal.reports().nodes, std::vector<int>{2});
  EXPECT_TRUE(is_sound(block, {false, true}));
  EXPECT_TRUE(journal.restores_the_start());
}

// 30 % of the range for the ring, the rest for the surface; the range is brought back, wherever it is stopped.
TEST_F(CurvatureAdjust, ReportsItsProgressAndCanBeStoppedAtEveryPoll) {
  std::set<int> results;
  for (int stop = 1;; ++stop) {
    MarkingHook hook;
    InterruptingHandler handler(stop);
    handler.set_percent_range(50.0, 70.0);
    const int result = block.enable_curvature_adjust(&rim, 0);
    results.insert(result);
    EXPECT_EQ(handler.percent_inf_range(), 50.0);
    EXPECT_EQ(handler.percent_sup_range(), 70.0);
    EXPECT_EQ(block.curvature_adjust, result == 0);
    ASSERT_FALSE(handler.messages.empty());
    EXPECT_EQ(handler.percents.front(), 50.0);
    for (std::size_t k = 0; k < handler.messages.size(); ++k) {
      const bool is_ring = handler.messages[k] == "<Filling Holes - Preparing data...";
      ASSERT_TRUE(is_ring || handler.messages[k] == "<Filling Holes - Calculating Curvature...");
      EXPECT_GE(handler.percents[k], is_ring ? 50.0 : 56.0);
      EXPECT_LE(handler.percents[k], is_ring ? 56.0 : 70.0);
    }
    if (handler.polls < stop) break;
    ASSERT_LT(stop, 10000);
  }
  EXPECT_EQ(results, (std::set<int>{-2, -1, 0}));
}
