// Triangles on edges that more than two triangles share, loose flaps among them, and deleting triangles from blocks of any kind.

#include <gtest/gtest.h>

#include <chrono>

#include "analysis/remove_simple_fin.h"
#include "mesh/containers.h"
#include "oracles/sick_literal.h"
#include "platform/digitiser/delete_triangles.h"
#include "platform/digitiser/tri_utils.h"
#include "support/interrupting_handler.h"
#include "support/numbers.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

std::vector<int> sick(const trTriBlock& block, int mode) {
  intcoPageArr list{7, 7};  // what it held before is no part of the result
  block.find_sick(list, mode);
  return numbers_in(list);
}

std::vector<LiteralEdge> sick_edges(const trTriBlock& block, int mode) {
  trEdgeConnectioncoPageArr list;
  block.find_sick(list, mode);
  std::vector<LiteralEdge> edges;
  for (int k = 0; k < list.count(); ++k) {
    intcoPageArr elements;
    list[k].triangles(elements);
    edges.push_back({list[k].start_node(), list[k].end_node(), numbers_in(elements)});
  }
  return edges;
}

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

// Nodes 1 and 2 are the ends of an edge of length 2; every further triangle stands on it, and its area is its height.
trTriBlock& open_book(trTriBlock& block, const std::vector<double>& areas) {
  block.set_node(1, giPoint3(0, 0, 0));
  block.set_node(2, giPoint3(2, 0, 0));
  for (double area : areas) {
    const int tip = block.node_count();
    block.set_node(tip, giPoint3(0, area, 0));
    block.generate(1, 2, tip);
  }
  return block;
}

// The lists are newest first: what "entered later" means in the rule for equal areas is the lower number.
TEST(FindSick, KeepsTheTwoLargestOfAnEdge) {
  struct Case {
    std::vector<double> areas;
    std::vector<int> all;
    std::vector<int> smaller;
  };
  const Case cases[] = {
      {{1, 2}, {}, {}},
      {{1, 2, 3}, {1, 2, 3}, {1}},
      {{3, 1, 2}, {1, 2, 3}, {2}},
      {{1, 2, 3, 4}, {1, 2, 3, 4}, {1, 2}},
      {{4, 3, 2, 1}, {1, 2, 3, 4}, {3, 4}},
      {{5, 5, 5}, {1, 2, 3}, {1}},
      {{5, 5, 5, 5}, {1, 2, 3, 4}, {1, 2}},
      {{6, 5, 5, 1}, {1, 2, 3, 4}, {2, 4}},
      {{std::nan(""), 1, 2}, {1, 2, 3}, {1}},
  };
  for (const Case& c : cases) {
    trTriBlock block;
    open_book(block, c.areas);
    EXPECT_EQ(sick(block, 0), c.all) << testing::PrintToString(c.areas);
    EXPECT_EQ(sick(block, 1), c.smaller) << testing::PrintToString(c.areas);
    EXPECT_EQ(sick(block, -3), c.smaller) << testing::PrintToString(c.areas);
  }
}

// A rewritten element stands twice in the lists of the nodes that it keeps, and the first of the two ends the walk of
// that node.
TEST(FindSick, StopsANodesWalkAtANumberThatComesAgain) {
  trTriBlock block;
  open_book(block, {1, 2, 3, 4});
  block.set_element(3, 1, 2, 5);
  EXPECT_EQ(sick(block, 0), std::vector<int>());
  block.delete_element(3);  // a deleted element is passed over before the test
  EXPECT_EQ(sick(block, 0), (std::vector<int>{1, 2, 4}));
}

// With `mode`, every number of an edge is one less; all crowded edges are found all the same. Edges are appended.
TEST(FindSick, NumbersEdgesAsTheCallerCounts) {
  trTriBlock block;
  open_book(block, {1, 2, 3});
  EXPECT_EQ(sick_edges(block, 0), (std::vector<LiteralEdge>{{1, 2, {1, 2, 3}}}));
  EXPECT_EQ(sick_edges(block, 1), (std::vector<LiteralEdge>{{0, 1, {0, 1, 2}}}));
  trEdgeConnectioncoPageArr list{trEdgeConnection(8, 9)};
  block.find_sick(list, 0);
  EXPECT_EQ(list.count(), 2);
}

// A mesh as a session leaves it: few nodes on a coarse grid (equal areas are frequent), elements deleted, rewritten,
// turned over, some with two equal nodes, and nodes that are gone.
void make_worn_mesh(trTriBlock& block, Random& random, int nodes, int elements) {
  for (int i = 1; i <= nodes; ++i) {
    block.set_node(i, giPoint3(random.below(3), random.below(3), random.below(2)));
  }
  const auto any_node = [&] { return 1 + std::min(random.below(nodes), random.below(nodes)); };
  for (int k = 0; k < elements; ++k) block.generate(any_node(), any_node(), any_node());
  for (int k = 0; k < elements / 3; ++k) {
    const int e = 1 + random.below(std::max(1, block.element_count() - 1));
    if (e >= block.element_count()) continue;
    switch (random.below(4)) {
      case 0:
        block.delete_element(e);
        break;
      case 1:
        block.reverse_element(e);
        break;
      case 2:
        block.set_element(e, any_node(), any_node(), any_node());
        break;
      default:
        block.elements_referenced = !random.one_in(4);
    }
  }
  block.reference_elements();
}

TEST(FindSick, AgreesWithTheRulesOnWornMeshes) {
  Random random(11);
  int crowded = 0;
  for (int round = 0; round < 4000; ++round) {
    trTriBlock block;
    const bool has_hub = round % 20 == 0;  // lists and edges beyond what is searched entry by entry
    make_worn_mesh(block, random, has_hub ? random.between(4, 200) : random.between(3, 9),
                   has_hub ? 400 : random.between(1, 24));
    for (int mode : {0, 1}) {
      ASSERT_EQ(sick(block, mode), sick_literal(block, mode)) << "round " << round;
      const std::vector<LiteralEdge> edges = sick_edges(block, mode);
      std::vector<LiteralEdge> expected = sick_edges_literal(block, mode);
      for (LiteralEdge& edge : expected) {  // sets are walked in their own order
        intcoSet set(4, 50);
        for (int e : edge.elements) set.add(e);
        edge.elements.clear();
        for (intcoSet::coIterator it(set); ++it;) edge.elements.push_back(it());
      }
      ASSERT_EQ(edges, expected) << "round " << round;
      crowded += !edges.empty();
    }
  }
  EXPECT_GT(crowded, 3000);
}

TEST(FindSick, KeepsWhatItHasWhenInterrupted) {
  Random random(13);
  trTriBlock block;
  make_worn_mesh(block, random, 12, 60);
  for (int i = 1; i < block.node_count(); ++i) {
    InterruptingHandler handler(1 + i);  // polls once after the lists are there, then once at every node
    ASSERT_EQ(sick(block, 1), reported_sick_literal(block, 1, i));
  }
}

TEST(CureSick, StopsAtOnceWhenInterrupted) {
  int partly = 0;
  for (int stop_at = 1;; ++stop_at) {
    BlockOf block(closed_box());
    for (int e = 1; e <= 12; ++e) block.generate(block.element(e)[0], block.element(e)[2], block.element(e)[1]);
    block.changed = 0;
    InterruptingHandler handler(stop_at);
    const int cured = block.cure_sick(0);
    if (handler.polls < stop_at) {
      EXPECT_EQ(cured, 1);
      EXPECT_EQ(block.valid_elements(), 0);
      break;
    }
    EXPECT_EQ(cured, 0);
    EXPECT_EQ(block.changed, 0);
    int first_left = 1;
    while (first_left < block.element_count() && !block.element(first_left).valid()) ++first_left;
    for (int e = first_left; e < block.element_count(); ++e) EXPECT_TRUE(block.element(e).valid());
    partly += first_left > 1;
  }
  EXPECT_EQ(partly, 23);
}

// A list of 10^5 elements examined entry by entry would take minutes.
TEST(FindSick, BearsAHub) {
  constexpr int many = 100000;
  BlockOf block(shuffled(cone_fan(many), 14));
  for (int e = 1; e <= many; ++e) block.generate(block.element(e)[0], block.element(e)[2], block.element(e)[1]);
  block.set_element(many, block.element(many)[0], block.element(many)[1], block.element(many)[2]);
  const auto start = std::chrono::steady_clock::now();
  // The rewritten element ends the walks round its nodes; all but it and its twin are found from the nodes of the rim.
  EXPECT_EQ(sick(block, 0).size(), static_cast<std::size_t>(2 * many - 2));
  block.elements_referenced = 0;
  block.delete_element(many + 1);
  EXPECT_EQ(sick(block, 0).size(), static_cast<std::size_t>(2 * many - 1));
  EXPECT_EQ(sick_edges(block, 0).size(), static_cast<std::size_t>(many));
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 20.0);
}

TEST(Fins, FlapGoesAndTheTwoThatAreLeftBecomeNeighbours) {
  BlockOf block(closed_box());
  const int a = block.element(1)[0];
  const int b = block.element(1)[1];
  const Links before = links_literal(block);
  block.set_node(9, giPoint3(5, 5, 9));
  const int flap = block.generate(a, b, 9);
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

TEST(Fins, AgreeWithTheRulesOnRandomMeshes) {
  Random random(21);
  int with_fins = 0;
  for (int round = 0; round < 2000; ++round) {
    trTriBlock block;
    const int nodes = random.between(4, 9);
    const auto any_node = [&] { return random.between(1, nodes); };
    for (int i = 1; i <= nodes; ++i) block.set_node(i, giPoint3(i, i * i, random.below(5)));
    for (int k = random.between(3, 12); k > 0; --k) block.generate(any_node(), any_node(), any_node());
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
  EXPECT_GT(with_fins, 200);
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
