// Nodes with very many elements: every operation must answer as the walk along their lists would, without its cost.
// At 10^5 elements a walk for each of them takes minutes; these tests take a fraction of a second.

#include <gtest/gtest.h>

#include <chrono>

#include "oracles/literal_mesh.h"
#include "oracles/measures_literal.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

constexpr int many = 100000;

// Fails when the rest of a test takes longer than its work can need; a quadratic cost exceeds it by far.
class Deadline {
 public:
  ~Deadline() {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    EXPECT_LT(elapsed.count(), 20.0);
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

TEST(Hub, BuildsEdgesAndDeletesHalfItsTriangles) {
  BlockOf block(shuffled(cone_fan(many), 3));
  const Deadline deadline;
  block.build_edges();
  EXPECT_EQ(listed_free_edges(block).size(), std::size_t{many});
  // Every second triangle in random order: all its edges become free, so that the apex ends with half-edges to every
  // rim node.
  Random random(4);
  std::vector<int> order;
  for (int e = 1; e <= many; ++e) order.push_back(e);
  for (std::size_t k = order.size(); k > 1; --k)
    std::swap(order[k - 1], order[static_cast<std::size_t>(random.below(static_cast<int>(k)))]);
  order.resize(many / 2);
  for (int e : order) block.delete_element(e);
  EXPECT_EQ(listed_free_edges(block), expected_free_edges(block));
  EXPECT_GT(block.node(1).a_edges.count(), many / 5);
  for (int k = 0; k < many / 2; ++k) block.reverse_element(order[static_cast<std::size_t>(k)] % many + 1);
  EXPECT_TRUE(is_sound(block));
}

// Deleting nodes between the elements empties lists elsewhere, which must not make the hub's order be looked up anew
// each time.
TEST(Hub, DeletesItsTrianglesAndTheirNodesInTurn) {
  Shape loose_fan;
  loose_fan.points.emplace_back(0, 0, 1);
  for (int k = 0; k < many / 4; ++k) {
    loose_fan.points.emplace_back(k, 1, 0);
    loose_fan.points.emplace_back(k, 2, 0);
    loose_fan.triangles.push_back({0, 2 * k + 1, 2 * k + 2});
  }
  BlockOf block(loose_fan);
  const Deadline deadline;
  block.build_edges();
  for (int e = 1; e <= many / 8; ++e) {
    block.delete_element(e);
    block.delete_node(2 * e);
    block.delete_node(2 * e + 1);
  }
  EXPECT_TRUE(is_sound(block));
}

TEST(Hub, FindsNeighboursAndRepeats) {
  BlockOf block(shuffled(cone_fan(many), 5));
  const Deadline deadline;
  int count = 0;
  EXPECT_GT(block.min_dotp(2.0, count), 0.9);
  EXPECT_EQ(count, 2 * many);
  EXPECT_EQ(block.repeating(), 0);
  EXPECT_EQ(block.cancelling(1), 0);
  for (int e = 1; e <= many; ++e) {
    const trElement t = block.element(e);
    block.generate(t[1], t[2], t[0]);
  }
  EXPECT_EQ(block.repeating(), 1);
  EXPECT_EQ(block.valid_elements(), many);
  EXPECT_FALSE(block.element(many).valid());
  EXPECT_EQ(block.cancelling(1), 0);
}

TEST(Hub, RepeatsOneTriangleVeryOften) {
  trTriBlock block;
  for (int i = 1; i <= 3; ++i) block.set_node(i, giPoint3(i, i * i, 0));
  for (int k = 0; k < many; ++k) block.generate(1 + k % 3, 1 + (k + 1) % 3, 1 + (k + 2) % 3);
  for (int k = 0; k < 10; ++k) block.generate(1, 3, 2);
  const Deadline deadline;
  block.build_edges();
  EXPECT_EQ(block.cancelling(1), 1);
  EXPECT_EQ(block.valid_elements(), many - 10);
  EXPECT_EQ(block.repeating(), 1);
  EXPECT_EQ(block.valid_elements(), 1);
  EXPECT_TRUE(is_sound(block));
}

TEST(Hub, MergesIntoOneNode) {
  BlockOf block(exploded(shuffled(cone_fan(many), 6)));
  const Deadline deadline;
  EXPECT_EQ(block.unduplicate_nodes(1e-9), 1);
  EXPECT_EQ(block.valid_nodes(), many + 1);
  block.build_edges();
  EXPECT_EQ(listed_free_edges(block).size(), std::size_t{many});
  EXPECT_TRUE(is_sound(block));
}

// The index of a long list must not outlive what a host does to the list itself.
TEST(Hub, SeesWhatAHostDoesToItsList) {
  BlockOf block(cone_fan(200));
  block.alter(0);
  std::vector<int> expected;
  for (int k = 2; k <= 150; ++k) {
    EXPECT_EQ(block.link_simple(1, k), 1);
    expected.insert(expected.begin(), k);
  }
  const auto drop = [&](int v) { expected.erase(std::find(expected.begin(), expected.end(), v)); };
  EXPECT_EQ(block.link_simple(77, 1), -1);
  drop(77);
  EXPECT_EQ(block.node(1).a_edges.remove(50), 1);
  drop(50);
  EXPECT_EQ(block.link_simple(50, 1), 1);
  EXPECT_EQ(block.link_simple(51, 1), -1);
  drop(51);
  EXPECT_EQ(block.node(1).a_edges.member(20), 1);
  drop(20);
  expected.insert(expected.begin(), 20);
  EXPECT_EQ(block.link_simple(21, 1), -1);
  drop(21);
  EXPECT_EQ(entries(block.node(1).a_edges), expected);
}

// Around the length at which lists are no longer walked: the order of free edges and of elements, and every answer,
// stay the same.
TEST(Hub, KeepsTheOrderOfItsLists) {
  Random random(81);
  for (int round = 0; round < 12; ++round) {
    trTriBlock block;
    LiteralMesh literal;
    const auto both = [&](auto edit) {
      edit(block);
      edit(literal);
    };
    for (int i = 1; i <= 160; ++i) {
      const giPoint3 p(random.between(-1.0, 1.0), random.between(-1.0, 1.0), i < 3 ? 1 : 0);
      both([&](auto& mesh) { mesh.set_node(i, p); });
    }
    both([](auto& mesh) { mesh.build_edges(); });
    for (int k = 0; k < 900; ++k) {
      const int hub = random.between(1, 2), a = random.between(3, 160),
                b = random.one_in(30) ? 3 - hub : random.between(3, 160);
      const int e = random.between(1, block.element_count());
      const bool live = e < block.element_count() && block.element(e).valid();
      const int what = live ? random.below(6) : 0;
      both([&](auto& mesh) {
        if (what < 3) mesh.generate(hub, a, b);
        if (what == 3) mesh.delete_element(e);
        if (what == 4) mesh.reverse_element(e);
        if (what == 5) mesh.set_element(e, hub, a, b);
      });
      ASSERT_EQ(k % 50 == 0 ? difference(block, literal) : "", "") << "edit " << k << " of round " << round;
    }
    ASSERT_EQ(difference(block, literal), "") << "round " << round;
    EXPECT_GT(block.node(1).a_edges.count(), 64);
    EXPECT_EQ(listed_free_edges(block), expected_free_edges(block));
    int count = 0;
    int expected_count = 0;
    EXPECT_EQ(block.min_dotp(0.5, count), min_dotp_literal(block, 0.5, expected_count));
    EXPECT_EQ(count, expected_count);
    block.alter(0);
    literal.edges_built = 0;
    literal.changed = 1;
    both([](auto& mesh) { mesh.build_edges(); });
    ASSERT_EQ(difference(block, literal), "") << "round " << round;
  }
}

}  // namespace
