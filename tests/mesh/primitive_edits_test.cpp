// The primitive edits one by one: what each leaves behind, in numbers worked out by hand.

#include <gtest/gtest.h>

#include "oracles/literal_mesh.h"
#include "support/marking_hook.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

using Edges = std::vector<std::pair<int, int>>;
using Corners = std::array<int, 3>;

Corners corners(const trTriBlock& block, int e) {
  const trElement& t = block.element(e);
  return {t[0], t[1], t[2]};
}

void add_nodes(trTriBlock& block, std::initializer_list<giPoint3> points) {
  for (const giPoint3& p : points) block.set_node(block.node_count(), p);
}

TEST(FreeEdges, OfTwoTrianglesAreTheirOutline) {
  trTriBlock block;
  add_nodes(block, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}});
  block.generate(1, 2, 3);
  block.generate(3, 2, 4);
  block.build_edges();
  EXPECT_EQ(block.edges_built, 1);
  EXPECT_EQ(listed_free_edges(block), (Edges{{1, 2}, {2, 4}, {3, 1}, {4, 3}}));
  block.delete_element(2);
  EXPECT_EQ(listed_free_edges(block), (Edges{{1, 2}, {2, 3}, {3, 1}}));
  block.reverse_element(1);
  EXPECT_EQ(listed_free_edges(block), (Edges{{1, 3}, {2, 1}, {3, 2}}));
  EXPECT_EQ(corners(block, 1), (Corners{1, 3, 2}));
}

TEST(FreeEdges, OfClosedSurfacesAreNone) {
  for (const Shape& shape : {closed_box(), sphere(6), torus(7, 5), bumpy_sphere(200), shuffled(sphere(6), 3)}) {
    BlockOf block(shape);
    block.build_edges();
    EXPECT_TRUE(listed_free_edges(block).empty());
    EXPECT_TRUE(is_sound(block));
  }
  BlockOf open(shuffled(punctured_sphere(8, 5), 4));
  open.build_edges();
  EXPECT_EQ(listed_free_edges(open).size(), 15u);
  BlockOf loose(exploded(sphere(4)));
  loose.build_edges();
  EXPECT_EQ(listed_free_edges(loose).size(), 3u * 48u);
}

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

TEST(Generate, RefusesRepeatedNodes) {
  BlockOf block(flat_sheet(1, 1));
  const int before = block.element_count();
  EXPECT_EQ(block.generate(1, 1, 2), -1);
  EXPECT_EQ(block.generate(1, 2, 2), -1);
  EXPECT_EQ(block.generate(2, 1, 2), -1);
  EXPECT_EQ(block.element_count(), before);
  EXPECT_EQ(block.generate(1, 2, 3), before);
}

TEST(DeleteElement, StaysInTheListsOfItsNodes) {
  BlockOf block(flat_sheet(1, 1));
  block.delete_element(2);
  EXPECT_EQ(entries(block.node(1).elements), (std::vector<int>{2, 1}));
  // A number that is used again stands in the list twice.
  block.set_element(2, 1, 3, 4);
  EXPECT_EQ(entries(block.node(1).elements), (std::vector<int>{2, 2, 1}));
  block.delete_element(2);
  block.build_edges();
  block.delete_element(2);
  EXPECT_EQ(listed_free_edges(block), expected_free_edges(block));
}

TEST(DeleteNode, LeavesItsElementsAlone) {
  BlockOf block(flat_sheet(1, 1));
  block.delete_node(4);
  EXPECT_EQ(corners(block, 1), (Corners{1, 2, 4}));
  EXPECT_TRUE(is_sound(block, {false, true}));
}

TEST(DeleteElements, GoesThroughARepeatedListOnce) {
  BlockOf block(sphere(3));
  block.build_edges();
  intcoPageArr list;
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

TEST(InterpolateNode, MixesAttributesByParameterAndWeighsOne) {
  trTriBlock block;
  add_nodes(block, {{0, 0, 0}, {8, 4, 0}});
  block.set_node_data_size(2);
  block.node_data(1).weight = 5;
  block.node_data(1).values[0] = 4;
  block.node_data(2).values[0] = 8;
  block.node_data(2).values[2] = 100;
  const int made = block.interpolate_node(1, 2, 0.25);
  EXPECT_EQ(block.point(made), giPoint3(2, 1, 0));
  EXPECT_EQ(block.node_data(made).values[0], 5);
  EXPECT_EQ(block.node_data(made).values[2], 0);
  EXPECT_EQ(block.node_data(made).weight, 1);
}

struct SplitCase {
  const char* name;
  giPoint3 points[3];
  Corners first;   // the element rewritten in place; the new node is 4
  Corners second;  // the element made
  giPoint3 middle;
};

const SplitCase split_cases[] = {
    // All edges equal: edge 0, from corner 0 to corner 1, is split, with corner 2 as the apex.
    {"equal", {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {3, 1, 4}, {3, 4, 2}, {0, 1, 0}},
    // Longest is edge 0, 5 long; AB = 3 from corner 2 to corner 0 is shorter than CA = 4: 3 along from corner 1.
    {"edge 0", {{0, 0, 0}, {5, 0, 0}, {1.8, 2.4, 0}}, {3, 1, 4}, {3, 4, 2}, {2, 0, 0}},
    // Longest is edge 1; AB = 4, CA = 3: 3 along from corner 1.
    {"edge 1", {{3.2, 2.4, 0}, {0, 0, 0}, {5, 0, 0}}, {1, 2, 4}, {1, 4, 3}, {3, 0, 0}},
    // Longest is edge 2; AB = BC in the element's order are equal: from the end B.
    {"edge 2", {{6, 0, 0}, {3, 4, 0}, {0, 0, 0}}, {2, 3, 4}, {2, 4, 1}, {5, 0, 0}},
};

TEST(SplitElement, CutsTheLongestEdgeAtTheLengthOfTheShorterSide) {
  for (const SplitCase& c : split_cases) {
    trTriBlock block;
    for (const giPoint3& p : c.points) block.set_node(block.node_count(), p);
    block.generate(1, 2, 3);
    block.split_element(1);
    EXPECT_EQ(corners(block, 1), c.first) << c.name;
    EXPECT_EQ(corners(block, 2), c.second) << c.name;
    EXPECT_LT(block.point(4).distance(c.middle), 1e-12)
        << c.name << ": " << block.point(4).x << ' ' << block.point(4).y;
    EXPECT_TRUE(is_sound(block)) << c.name;
  }
}

// While edges are built the second element (A, M, C) is linked twice, which leaves the free cycle A-M-C-A that nothing
// bounds: its shared side A-M opposes the first element's M-A once, and is then left over with M-C and C-A.
TEST(SplitElement, LeavesAPhantomCycleWhileEdgesAreBuilt) {
  trTriBlock block;
  add_nodes(block, {{0, 0, 0}, {5, 0, 0}, {1.8, 2.4, 0}});
  block.generate(1, 2, 3);
  block.build_edges();
  block.split_element(1);
  EXPECT_EQ(listed_free_edges(block), (Edges{{1, 4}, {2, 3}, {2, 3}, {3, 1}, {3, 4}, {4, 2}, {4, 2}}));
  EXPECT_EQ(expected_free_edges(block), (Edges{{1, 4}, {2, 3}, {3, 1}, {4, 2}}));
  EXPECT_TRUE(is_sound(block, {true, false}));
  block.alter(0);
  block.build_edges();
  EXPECT_TRUE(is_sound(block));
}

TEST(SplitElement, MeasuresInTheWorkplaneAndMapsBack) {
  BlockOf plain(closed_box());
  BlockOf turned(closed_box());
  turned.set_workplane(
      ccWorkplane(giWorkplane3(giPoint3(3, 2, 1), giUnitVec3(giVector3(0, 0, 1)), giUnitVec3(giVector3(0, 1, 0)))));
  turned.enable_workplane(1);
  for (int e = 1; e <= 12; ++e) {
    plain.split_element(e);
    turned.split_element(e);
    EXPECT_LT(plain.point(plain.node_count() - 1).distance(turned.point(turned.node_count() - 1)), 1e-12) << e;
  }
}

TEST(Generate4, TakesTheBetterDiagonalAndKeepsTheSecondOnATie) {
  trTriBlock block;
  add_nodes(block, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {3, 3, 0}, {-2, -2, 0}});
  // A square: tie, so the diagonal from the second to the fourth corner.
  EXPECT_EQ(block.generate4(1, 2, 3, 4), 2);
  EXPECT_EQ(corners(block, 1), (Corners{3, 4, 2}));
  EXPECT_EQ(corners(block, 2), (Corners{1, 2, 4}));
  // A kite that is long from the second corner to the fourth: the short diagonal from first to third is better.
  EXPECT_EQ(block.generate4(2, 5, 4, 6), 4);
  EXPECT_EQ(corners(block, 3), (Corners{2, 5, 4}));
  EXPECT_EQ(corners(block, 4), (Corners{4, 6, 2}));
}

TEST(Generate3, FlipsItsLongestEdgeWhenThatIsBetter) {
  trTriBlock block;
  // A flat kite: 1 and 2 far apart, 3 and 4 close to the middle on either side.
  add_nodes(block, {{-3, 0, 0}, {3, 0, 0}, {0, 1, 0}, {0, -1, 0}});
  ASSERT_EQ(block.generate(2, 1, 4), 1);
  EXPECT_EQ(block.generate3(3, 1, 2), 3);
  EXPECT_FALSE(block.element(1).valid());
  EXPECT_EQ(corners(block, 2), (Corners{4, 2, 3}));
  EXPECT_EQ(corners(block, 3), (Corners{3, 1, 4}));
  // Without a neighbour across the longest edge only the triangle is made, rotated so that this edge comes first.
  EXPECT_EQ(block.generate3(3, 1, 2), 4);
  EXPECT_EQ(corners(block, 4), (Corners{1, 2, 3}));
}

TEST(ReferenceNewNodes, RepointsCornersAndLeavesEdgesAlone) {
  BlockOf block(exploded(flat_sheet(1, 1)));
  block.build_edges();
  const auto edges = entries(block.node(6).a_edges);
  ASSERT_EQ(edges.size(), 1u);
  intcoPageArr map;
  map[4] = 1;
  block.delete_node(4);
  block.delete_node(5);
  // Node 5 has no entry in the map, node 6 is not deleted.
  block.reference_new_nodes(map);
  EXPECT_EQ(corners(block, 2), (Corners{1, 5, 6}));
  EXPECT_EQ(entries(block.node(1).elements), (std::vector<int>{2, 1}));
  EXPECT_EQ(block.edges_built, 1);
  EXPECT_EQ(entries(block.node(6).a_edges), edges);
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

}  // namespace
