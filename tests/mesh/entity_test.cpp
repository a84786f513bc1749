// Nodes, elements, edges, attributes, colours and lists by themselves.

#include <gtest/gtest.h>

#include <climits>

#include "mesh/edge_connection.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

trIntList& fill(trIntList& list, std::initializer_list<int> front_to_back) {
  list.clear();
  for (auto it = std::rbegin(front_to_back); it != std::rend(front_to_back); ++it) list.insert_front(*it);
  return list;
}

TEST(NodeList, AssignmentReversesAndEmptiesItsSource) {
  trIntList from, to;
  fill(from, {1, 2, 3});
  fill(to, {9, 8});
  to = from;
  EXPECT_EQ(entries(to), (std::vector<int>{3, 2, 1}));
  EXPECT_TRUE(from.empty());
}

TEST(NodeList, MemberMovesWhatItFindsToTheFront) {
  trIntList list;
  fill(list, {4, 5, 6, 5, 7});
  EXPECT_EQ(list.member(7), 1);
  EXPECT_EQ(entries(list), (std::vector<int>{7, 4, 5, 6, 5}));
  EXPECT_EQ(list.member(5), 1);
  EXPECT_EQ(entries(list), (std::vector<int>{5, 7, 4, 6, 5}));
  EXPECT_EQ(list.member(99), 0);
  EXPECT_EQ(entries(list), (std::vector<int>{5, 7, 4, 6, 5}));
}

TEST(NodeList, RemoveTakesTheFirstOfEqualEntriesAndKeepsTheOrder) {
  trIntList list;
  fill(list, {4, 5, 6, 5, 7});
  EXPECT_EQ(list.remove(5), 1);
  EXPECT_EQ(entries(list), (std::vector<int>{4, 6, 5, 7}));
  EXPECT_EQ(list.remove(8), 0);
}

TEST(Node, AssignmentMovesAndDeletesItsSource) {
  BlockOf block(flat_sheet(1, 1));
  block.node(2).a_edges.insert_front(3);
  const giPoint3 moved = block.point(2);
  block.node(1) = block.node(2);
  EXPECT_EQ(block.point(1), moved);
  EXPECT_EQ(block.node(2).invalid, 1);
  EXPECT_EQ(block.point(2), giPoint3());
  EXPECT_TRUE(block.node(2).a_edges.empty());
  EXPECT_TRUE(block.node(2).elements.empty());
}

TEST(Node, SwapExchangesPlaceAndValidityButNoLists) {
  BlockOf block(flat_sheet(1, 1));
  const giPoint3 place = block.point(1);
  const auto listed = entries(block.node(1).elements);
  block.set_node(7, giPoint3(5, 5, 5));
  block.node(1).swap(block.node(6));
  EXPECT_EQ(block.node(1).invalid, 1);
  EXPECT_EQ(block.node(6).invalid, 0);
  EXPECT_EQ(block.point(6), place);
  EXPECT_EQ(entries(block.node(1).elements), listed);
}

TEST(Node, ResetEdgesLeavesDeletedNodesAlone) {
  trNode node;
  node.a_edges.insert_front(1);
  node.reset_edges();
  EXPECT_FALSE(node.a_edges.empty());
  node.invalid = 0;
  node.d_edges.insert_front(2);
  node.reset_edges();
  EXPECT_TRUE(node.a_edges.empty());
  EXPECT_TRUE(node.d_edges.empty());
}

TEST(Element, IsInvalidWhileUnsetOrDeleted) {
  EXPECT_FALSE(trElement().valid());
  trElement unset;
  unset[0] = UNSET_ELEMENT;
  EXPECT_FALSE(unset.valid());
  trElement a(1, 2, 3), b(4, 5, 6);
  a.swap(b);
  EXPECT_EQ(a[0], 4);
  EXPECT_EQ(b[2], 3);
}

// Assignment hands on the values, never how many tuples they were averaged from.
TEST(NodeDataTuple, AssignmentSetsTheWeightToOne) {
  for (const int weight : {0, 1, 7}) {
    trNodeDataTuple source;
    source.weight = weight;
    source.values[4] = 2.5;
    trNodeDataTuple target;
    target = source;
    EXPECT_EQ(target.weight, 1);
    EXPECT_EQ(target.values[4], 2.5);
    EXPECT_EQ(trNodeDataTuple(source).weight, 1);
  }
}

TEST(NodeDataBlock, AveragesByWeight) {
  trNodeDataBlock data;
  data.set_size(1);
  const auto set = [&](int i, int weight, double value) {
    data.data(i).weight = weight;
    for (double& v : data.data(i).values) v = value;
  };
  set(1, 0, 5.0);
  set(2, 0, 9.0);
  data.average(1, 2);
  EXPECT_EQ(data.data(1).values[0], 5.0);
  EXPECT_EQ(data.data(1).weight, 0);
  set(1, 1, 8.0);
  set(2, 3, 4.0);
  data.average(1, 2);
  // (4 * 3 + 8 * 1) / 4, for all five values, in use or not.
  for (double v : data.data(1).values) EXPECT_EQ(v, 5.0);
  EXPECT_EQ(data.data(1).weight, 4);
  data.move(3, 2);
  EXPECT_EQ(data.data(3).weight, 3);
  EXPECT_EQ(data.data(3).values[2], 4.0);
}

TEST(NodeDataBlock, TestIsStrictAndLooksOnlyAtValuesInUse) {
  trNodeDataBlock data;
  data.set_size(2);
  data.data(1).values[0] = 3.0;
  data.data(1).values[1] = 4.0;
  data.data(1).values[2] = 100.0;
  data.data(2);
  EXPECT_EQ(data.test(1, 2, 5.0), 0);
  EXPECT_EQ(data.test(1, 2, 5.0001), 1);
}

TEST(Attributes, AppearAndDisappearWithTheirSize) {
  BlockOf block(flat_sheet(1, 1));
  EXPECT_EQ(block.node_data_size(), 0);
  block.set_node_data_size(3);
  block.node_data(2).values[1] = 6;
  block.set_node_data_size(5);
  EXPECT_EQ(block.node_data_size(), 5);
  EXPECT_EQ(block.node_data(2).values[1], 6);
  block.set_node_data_size(0);
  EXPECT_EQ(block.node_data_size(), 0);
  block.set_node_data_size(3);
  EXPECT_EQ(block.node_data(2).values[1], 0);
}

// The first colour ever set becomes the default: numbers above the coloured ones have it, gaps below do not.
TEST(Colours, FirstOneBecomesTheDefault) {
  BlockOf block(flat_sheet(4, 1));
  EXPECT_EQ(block.default_colour(), NO_COLOUR);
  EXPECT_EQ(block.get_element_colour(5), NO_COLOUR);
  block.set_element_colour(5, 42);
  block.set_element_colour(2, 7);
  const int expected[] = {42, -1, 7, -1, -1, 42, 42, 42, 42};
  for (int e = 0; e < 9; ++e) EXPECT_EQ(block.get_element_colour(e), expected[e]) << e;
  block.clear_colours();
  for (int e = 0; e < 9; ++e) EXPECT_EQ(block.get_element_colour(e), -1) << e;
  EXPECT_EQ(block.default_colour(), -1);
  EXPECT_EQ(block.get_element_colour(100), -1);
}

TEST(Colours, PackRedInTheTopByte) {
  const struct {
    giColour colour;
    std::uint32_t bits;
  } cases[] = {{giColour(1, 2, 3, 4), 0x01020304u},
               {giColour(255, 0, 0, 0), 0xff000000u},
               {giColour(255, 255, 255, 255), 0xffffffffu}};
  for (const auto& c : cases) {
    EXPECT_EQ(static_cast<std::uint32_t>(tr_encode_colour(c.colour)), c.bits);
    EXPECT_TRUE(tr_decode_colour(static_cast<int>(c.bits)) == c.colour);
  }
  EXPECT_EQ(tr_encode_colour(giColour(255, 255, 255, 255)), NO_COLOUR);
}

// Equality sees the ends only; the hash sees the elements too.
TEST(EdgeConnection, EqualEdgesWithDifferentElementsHashApart) {
  trEdgeConnection a(3, 8), b(8, 3);
  EXPECT_TRUE(a == b);
  EXPECT_EQ(a.co_hash(), b.co_hash());
  a.add_triangle(17);
  EXPECT_TRUE(a == b);
  EXPECT_EQ(a.co_hash(), 3 ^ 8 ^ 1 ^ 17);
  EXPECT_NE(a.co_hash(), b.co_hash());
  EXPECT_TRUE(a != trEdgeConnection(3, 9));
}

TEST(EdgeConnection, CopiesItsElementsAndAppendsThemToAnArray) {
  trEdgeConnection a(1, 2);
  a.add_triangle(5);
  a.add_triangle(9);
  a.add_triangle(5);
  EXPECT_EQ(a.number_triangles(), 2);
  const trEdgeConnection copy(a);
  intcoPageArr list;
  list[0] = -1;
  EXPECT_EQ(copy.triangles(list), 3);
  EXPECT_EQ(list[0], -1);
  EXPECT_EQ((std::set<int>{list[1], list[2]}), (std::set<int>{5, 9}));
  EXPECT_EQ(copy.check(2, 1), 1);
  EXPECT_EQ(copy.check(1, 3), 0);
  trEdgeConnection other;
  other = copy;
  EXPECT_EQ(other.start_node(), 1);
  EXPECT_EQ(other.number_triangles(), 2);
}

// Walking a node follows its list, newest element first; deleted elements stay in it and have no neighbours.
TEST(LoopIT, WalksInListOrder) {
  BlockOf block(cone_fan(4));
  block.delete_element(3);
  trLoopIT around(&block, 1);
  std::vector<std::array<int, 3>> seen;
  while (++around) seen.push_back({around(), around.next_node(), around.prev_node()});
  const std::vector<std::array<int, 3>> expected = {{4, 5, 2}, {3, 0, 0}, {2, 3, 4}, {1, 2, 3}};
  EXPECT_EQ(seen, expected);
  trLoopIT rim(&block, 3);
  ++rim;
  EXPECT_EQ(rim.index_node(block.element(2)), 1);
  EXPECT_EQ(rim.index_node(block.element(4)), 3);
}

}  // namespace
