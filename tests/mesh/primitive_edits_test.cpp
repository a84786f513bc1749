// Primitive edits one by one, and elements that repeat or cancel each other.

#include <gtest/gtest.h>

#include "oracles/literal_mesh.h"
#include "support/marking_hook.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

using Edges = std::vector<std::pair<int, int>>;

TEST(FreeEdges, LinkingAnswersWhetherThePairClosed) {
  BlockOf block(flat_sheet(1, 1));
  block.alter(0);
  EXPECT_EQ(block.link_simple(1, 2), 1);
  EXPECT_EQ(block.link(1, 2), 1);
  EXPECT_EQ(block.link(2, 1), -1);
  EXPECT_EQ(block.link(2, 1), -1);
  EXPECT_EQ(block.link(2, 1), 1);
  EXPECT_EQ(listed_free_edges(block), (Edges{{2, 1}}));
}

TEST(FreeEdges, MoveToTheSecondListInReverseOrder) {
  BlockOf block(cone_fan(3));
  block.build_edges();
  block.node(1).a_edges.insert_front(4);
  block.node(1).a_edges.insert_front(2);
  block.node(1).d_edges.insert_front(9);
  block.a_to_d();
  EXPECT_TRUE(block.node(1).a_edges.empty());
  EXPECT_EQ(entries(block.node(1).d_edges), (std::vector<int>{4, 2, 9}));
}

// An element that names a deleted node, met while edges are built, ends the process: there is no way to go on.
TEST(FreeEdgesDeathTest, OfAnUndefinedNodeAreFatal) {
  const MarkingHook hook;
  BlockOf block(flat_sheet(1, 1));
  block.delete_node(3);
  EXPECT_EXIT(block.build_edges(), testing::ExitedWithCode(8), "^<ERROR! Edge reference to undefined node #3\n$");
  EXPECT_EXIT(block.link(3, 1), testing::ExitedWithCode(8), "node #3\n$");
  EXPECT_EXIT(block.link(1, 0), testing::ExitedWithCode(8), "node #0\n$");
  EXPECT_EXIT(block.link(1, 77), testing::ExitedWithCode(8), "node #77\n$");
}

TEST(DeleteNode, LeavesItsElementsAlone) {
  BlockOf block(flat_sheet(1, 1));
  block.delete_node(4);
  EXPECT_EQ(block.element(1)[2], 4);
  EXPECT_TRUE(is_sound(block, {false, true}));
}

TEST(DeleteElements, GoesThroughARepeatedListOnce) {
  BlockOf block(sphere(3));
  block.build_edges();
  block.force_changed_status(0);
  intcoPageArr list;
  block.delete_elements(list);
  block.split_elements(list);
  EXPECT_EQ(block.changed, 0) << "there was nothing to do";
  for (int e : {3, 5, 3, 8}) list[list.count()] = e;
  block.delete_elements(list);
  EXPECT_EQ(block.valid_elements(), 24 - 3);
  EXPECT_TRUE(is_sound(block));
}

// Public generate_node drops the attributes of every node; what edits make inside the library keeps them.
TEST(GenerateNode, DropsAllAttributes) {
  BlockOf block(flat_sheet(1, 1));
  block.set_node_data_size(2);
  block.split_element(1);
  EXPECT_EQ(block.node_data_size(), 2);
  EXPECT_EQ(block.generate_node(giPoint3(5, 6, 7), tr_no_direction(), 0), 6);
  EXPECT_EQ(block.node_data_size(), 0);
  EXPECT_EQ(block.point(6), giPoint3(5, 6, 7));
}

// A plane z = 7, reached along z or, without a direction, straight down from wherever the point is.
class Plateau : public zrkSurf {
 public:
  int closest_point(const giPoint3& p, giPoint3& q) const override {
    q = giPoint3(p.x, p.y, 7);
    return 0;
  }
  int project(const giPoint3& p, const giVector3& direction, giPoint3& q) const override {
    q = p + direction * ((7 - p.z) / direction.z());
    return 0;
  }
};

TEST(GenerateNode, IsAdjustedToTheSurfaceOnlyOnRequest) {
  trTriBlock block;
  const giPoint3 p(1, 2, 3);
  block.surface = std::make_shared<Plateau>();
  EXPECT_EQ(block.point(block.generate_node(p, giVector3(1, 0, 1), 1)), p);
  block.curvature_adjust = 1;
  EXPECT_EQ(block.point(block.generate_node(p, giVector3(1, 0, 1), 0)), p);
  EXPECT_EQ(block.point(block.generate_node(p, giVector3(1, 0, 1), 1)), giPoint3(5, 2, 7));
  EXPECT_EQ(block.point(block.generate_node(p, tr_no_direction(), 1)), giPoint3(1, 2, 7));
  EXPECT_EQ(block.point(block.interpolate_node(1, 2, 0.5)), giPoint3(1, 2, 7));
  block.free_surface();
  EXPECT_EQ(block.point(block.generate_node(p, tr_no_direction(), 1)), p);
}

// Random nodes of little depth, so that ties and degenerate shapes are frequent.
TEST(Diagonals, MatchTheRuleWordByWord) {
  Random random(5);
  int flipped = 0;
  int quads = 0;
  for (int round = 0; round < 4000; ++round) {
    trTriBlock block;
    LiteralMesh literal;
    for (int i = 1; i <= 5; ++i) {
      const giPoint3 p(random.below(4), random.below(4), random.one_in(3) ? random.below(3) : 0);
      block.set_node(i, p);
      literal.set_node(i, p);
    }
    for (int k = 0; k < 4; ++k) {
      const int a = random.between(1, 5), b = random.between(1, 5), c = random.between(1, 5), d = random.between(1, 5);
      if (random.one_in(2)) {
        const int before = block.valid_elements();
        ASSERT_EQ(block.generate4(a, b, c, d), literal.generate4(a, b, c, d));
        quads += block.valid_elements() == before + 2;
      } else if (a != b && b != c && c != a) {
        const int before = block.element_count();
        ASSERT_EQ(block.generate3(a, b, c), literal.generate3(a, b, c));
        flipped += block.element_count() == before + 2;
      }
      ASSERT_EQ(difference(block, literal), "") << "round " << round;
    }
  }
  EXPECT_GT(quads, 500);
  EXPECT_GT(flipped, 100);
}

// At a node with more elements than are walked one by one, the answers must stay those of the walk, for every
// multiplicity, also where far more pairs come together than share a place of the index.
TEST(Repeats, AtAHubMatchTheWalk) {
  Random random(12);
  for (int round = 0; round < 30; ++round) {
    trTriBlock block;
    LiteralMesh literal;
    const int nodes = random.one_in(2) ? 12 : 45;
    for (int i = 1; i <= nodes; ++i) {
      block.set_node(i, giPoint3(i, i * i, 0));
      literal.set_node(i, giPoint3(i, i * i, 0));
    }
    for (int k = 0; k < 400; ++k) {
      const int t[3] = {1, random.between(1, nodes), random.between(1, nodes)};
      const int turn = random.below(3);
      block.set_element(k + 1, t[turn], t[(turn + 1) % 3], t[(turn + 2) % 3]);
      literal.set_element(k + 1, t[turn], t[(turn + 1) % 3], t[(turn + 2) % 3]);
    }
    if (round % 2) {
      block.build_edges();
      literal.build_edges();
    }
    const int same = round % 3 == 0;
    const int both = round % 3 == 1;
    EXPECT_EQ(block.remove_repeats(same, both), literal.remove_repeats(same, both));
    ASSERT_EQ(difference(block, literal), "") << "round " << round;
    ASSERT_TRUE(is_sound(block));
  }
}

}  // namespace
