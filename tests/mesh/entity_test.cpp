// Nodes, elements, edges, attributes, colours and lists by themselves.

#include <gtest/gtest.h>

#include <climits>

#include "mesh/containers.h"
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

// Attributes and colours behind the end stay where they were: a new element there finds the old colour.
TEST(Renumber, LeavesOldColoursBehindTheEnd) {
  BlockOf block(flat_sheet(2, 1));
  for (int e = 1; e <= 4; ++e) block.set_element_colour(e, 10 * e);
  block.delete_element(2);
  block.renumber();
  EXPECT_EQ(block.element_count(), 4);
  EXPECT_EQ(block.get_element_colour(2), 30);
  EXPECT_EQ(block.get_element_colour(3), 40);
  EXPECT_EQ(block.get_element_colour(4), 40);
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

trEdgeConnection edge(int a, int b, std::initializer_list<int> triangles = {}) {
  trEdgeConnection made(a, b);
  for (int t : triangles) made.add_triangle(t);
  return made;
}

// Ends alone decide equality, but only edges whose triangles agree in number and in the exclusive or of their numbers
// can meet: {1, 2} and {4, 7} do, {1, 2} and {1, 3} do not.
TEST(EdgeSet, EdgesMeetOnlyWhenTheirTrianglesHashAlike) {
  trEdgeConnectioncoSet set;
  EXPECT_EQ(set.add(edge(3, 9, {1, 2})), trEdgeConnectioncoSet::nil());
  EXPECT_EQ(set.add(edge(9, 3, {4, 7})).start_node(), 3);
  EXPECT_EQ(set.add(edge(3, 9, {1, 3})), trEdgeConnectioncoSet::nil());
  EXPECT_EQ(set.count(), 2);
  EXPECT_EQ(set.find(edge(9, 3, {5, 6})).number_triangles(), 2);
  EXPECT_EQ(set.find(edge(9, 3, {8})), trEdgeConnectioncoSet::nil());
  EXPECT_EQ(set.running_hash(), (3 ^ 9 ^ 2 ^ 3) ^ (3 ^ 9 ^ 2 ^ 2));

  trEdgeConnectioncoSet copy(utCopy{}, set);
  set.remove(edge(3, 9, {1, 3}));
  EXPECT_EQ(set.remove(edge(3, 9, {1, 2})).number_triangles(), 2);
  EXPECT_EQ(set.running_hash(), 0);
  EXPECT_EQ(copy.count(), 2);
  copy *= set;
  EXPECT_EQ(copy.count(), 0);
  EXPECT_EQ(copy.running_hash(), 0);
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
