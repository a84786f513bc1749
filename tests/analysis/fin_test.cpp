// Loose flaps on crowded edges, the links between neighbours, and deleting triangles from blocks of any kind.

#include <gtest/gtest.h>

#include "analysis/remove_simple_fin.h"
#include "oracles/sick_literal.h"
#include "platform/digitiser/delete_triangles.h"
#include "platform/digitiser/tri_utils.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

using Links = std::vector<std::vector<int>>;

Links in_vectors(const giLinkcoPageArr& links) {
  Links result;
  for (int t = 0; t < links.count(); ++t) result.push_back({links[t][0], links[t][1], links[t][2]});
  return result;
}

Links held_links(const giTriBlock& block) {
  giLinkArrcoFeature feature;
  return block.find(feature) ? in_vectors(feature.data()->links) : Links();
}

std::vector<int> deleted_elements(const trTriBlock& block) {
  std::vector<int> deleted;
  for (int e = 1; e < block.element_count(); ++e) {
    if (!block.element(e).valid()) deleted.push_back(e);
  }
  return deleted;
}

// A triangle on the edge between two nodes, with a tip of its own.
int add_flap(trTriBlock& block, int a, int b) {
  const int tip = block.node_count();
  block.set_node(tip, giPoint3(5, 5, tip));
  return block.generate(a, b, tip);
}

TEST(Fins, FlapGoesAndTheTwoThatAreLeftBecomeNeighbours) {
  BlockOf block(closed_box());
  const int a = block.element(1)[0];
  const int b = block.element(1)[1];
  const Links before = links_literal(block);
  const int flap = add_flap(block, a, b);
  block.build_edges();
  block.changed = 0;
  EXPECT_EQ(block.cure_sick_fins(), 1);
  EXPECT_EQ(deleted_elements(block), std::vector<int>{flap});
  EXPECT_EQ(block.changed, 1);
  EXPECT_EQ(block.edges_built, 0);
  Links after = held_links(block);
  EXPECT_EQ(after.back(), (std::vector<int>{-1, -1, -1}));
  after.pop_back();
  EXPECT_EQ(after, before);
  EXPECT_EQ(block.cure_sick_fins(), 0);
}

TEST(Fins, OnlyLooseTrianglesAreFins) {
  struct Case {
    const char* what;
    std::function<void(trTriBlock&)> build;
    std::vector<int> fins;
  };
  const Case cases[] = {
      {"two flaps on one edge", [](trTriBlock& b) { add_flap(b, 1, 2), add_flap(b, 2, 1); }, {13, 14}},
      {"flaps on two edges of one triangle",
       [](trTriBlock& b) {
         add_flap(b, b.element(1)[0], b.element(1)[1]), add_flap(b, b.element(1)[1], b.element(1)[2]);
       },
       {13, 14}},
      // The flap that bears another has a neighbour away from the crowded edge, and the outer one lies on no crowded
      // edge.
      {"a flap on a flap", [](trTriBlock& b) { add_flap(b, 1, 2), add_flap(b, 2, b.element(13)[2]); }, {}},
      // Three on the outer edge: those two that hang on nothing else go.
      {"two flaps on a flap",
       [](trTriBlock& b) { add_flap(b, 1, 2), add_flap(b, 2, b.element(13)[2]), add_flap(b, 2, b.element(13)[2]); },
       {14, 15}},
      {"a flap turned over", [](trTriBlock& b) { b.reverse_element(add_flap(b, 1, 2)); }, {13}},
  };
  for (const Case& c : cases) {
    BlockOf block(closed_box());
    c.build(block);
    EXPECT_EQ(block.cure_sick_fins(), static_cast<int>(c.fins.size())) << c.what;
    EXPECT_EQ(deleted_elements(block), c.fins) << c.what;
  }
}

// Three loose triangles on one edge: none of them has a neighbour that is not on the edge.
TEST(Fins, IsolatedBookGoesWhole) {
  trTriBlock block;
  for (int i = 1; i <= 5; ++i) block.set_node(i, giPoint3(i, i * i, i * i * i));
  for (int tip = 3; tip <= 5; ++tip) block.generate(1, 2, tip);
  EXPECT_EQ(block.cure_sick_fins(), 3);
  EXPECT_EQ(block.valid_elements(), 0);
}

TEST(Fins, AgreeWithTheRulesOnRandomMeshes) {
  Random random(21);
  int with_fins = 0;
  for (int round = 0; round < 3000; ++round) {
    trTriBlock block;
    const int nodes = random.between(4, 9);
    for (int i = 1; i <= nodes; ++i) block.set_node(i, giPoint3(i, i * i, random.below(5)));
    for (int k = random.between(3, 12); k > 0; --k) {
      block.generate(1 + random.below(nodes), 1 + random.below(nodes), 1 + random.below(nodes));
    }
    if (block.element_count() > 1) block.delete_element(1 + random.below(block.element_count() - 1));
    ASSERT_EQ(in_vectors(digTriUtils::get_tri_links(block)), links_literal(block)) << "round " << round;
    std::vector<int> gone = deleted_elements(block);
    const std::vector<int> fins = fins_literal(block);
    gone.insert(gone.end(), fins.begin(), fins.end());
    std::sort(gone.begin(), gone.end());
    ASSERT_EQ(block.cure_sick_fins(), static_cast<int>(fins.size())) << "round " << round;
    ASSERT_EQ(deleted_elements(block), gone) << "round " << round;
    ASSERT_TRUE(is_sound(block));
    with_fins += !fins.empty();
  }
  EXPECT_GT(with_fins, 300);
}

TEST(Fins, SideIsNamedWhateverTheDirection) {
  giTriBlock pool;
  const trRemoveSimpleFin remover(trEdgeConnectioncoPageArr(), &pool);
  const giTriangle triangle(4, 7, 9);
  const int edges[][3] = {{4, 7, 0}, {7, 4, 0}, {7, 9, 1}, {9, 7, 1}, {9, 4, 2}, {4, 9, 2}, {4, 5, -1}, {5, 6, -1}};
  for (const auto& edge : edges) EXPECT_EQ(remover.find_bad_edge_side(triangle, edge), edge[2]);
}

// A host's own block counts from 0 and deletes nothing in place: what lies behind a fin closes up, with its colour.
TEST(Fins, ClosesTheGapsOfAHostsBlock) {
  const Shape box = closed_box();
  giTriBlock pool;
  giTriArrcoFeature triangles;
  giTriCols colours;
  pool.check_out(triangles);
  pool.check_out(colours);
  auto& array = triangles.data()->triangles;
  const int a = box.triangles[0][0];
  const int b = box.triangles[0][1];
  array[0] = giTriangle(a, b, 8);
  for (int t = 0; t < 12; ++t) array[t + 1] = giTriangle(box.triangles[t][0], box.triangles[t][1], box.triangles[t][2]);
  for (int t = 0; t < 13; ++t) (*colours.data())[t] = giColour(t, 0, 0, 255);
  const Links whole = in_vectors(digTriUtils::get_tri_links(pool));

  trEdgeConnection edge(b, a);
  edge.add_triangle(0);
  edge.add_triangle(1);
  edge.add_triangle(whole[1][0]);
  trEdgeConnectioncoPageArr edges{edge};
  intintcoTable node_map;
  intintcoTable elem_map;
  EXPECT_EQ(trRemoveSimpleFin(edges, &pool).remove_fins(&node_map, &elem_map), 1);
  ASSERT_EQ(array.count(), 12);
  EXPECT_EQ(node_map.count(), 0);
  EXPECT_EQ(elem_map.count(), 12);
  for (int t = 0; t < 12; ++t) {
    EXPECT_EQ(elem_map.value(t + 1, -1), t);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(array[t][k], box.triangles[t][k]);
    EXPECT_EQ((*colours.data())[t].red(), t + 1);
  }
  EXPECT_EQ(colours.data()->count(), 12);
  const Links kept = held_links(pool);
  EXPECT_EQ(kept, in_vectors(digTriUtils::get_tri_links(pool)));
}

TEST(DeleteTriangles, TakesUnusedNodesAlongWhereAsked) {
  giTriBlock pool;
  EXPECT_EQ(digDeleteTriangles(pool, {1}).delete_triangles(1, 1, nullptr, nullptr), 1);
  giTriArrcoFeature triangles;
  giNodeXYZ points;
  pool.check_out(triangles);
  pool.check_out(points);
  for (int i = 0; i < 6; ++i) points.data()->points[i] = giPoint3(i, 0, 0);
  triangles.data()->triangles[0] = giTriangle(0, 1, 2);
  triangles.data()->triangles[1] = giTriangle(2, 4, 99);  // a node that the pool does not have
  intintcoTable node_map;
  const intcoSet first{0, 77, -5};
  EXPECT_EQ(digDeleteTriangles(pool, first).delete_triangles(1, 0, &node_map, nullptr), 0);
  ASSERT_EQ(triangles.data()->triangles.count(), 1);
  const giTriangle& left = triangles.data()->triangles[0];
  EXPECT_EQ(left[0], 0);
  EXPECT_EQ(left[1], 1);
  EXPECT_EQ(left[2], 99);
  ASSERT_EQ(points.data()->points.count(), 2);
  EXPECT_EQ(points.data()->points[1].x, 4);
  EXPECT_EQ(node_map.count(), 2);
  EXPECT_EQ(node_map.value(4, -1), 1);
}

}  // namespace
