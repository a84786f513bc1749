#include <gtest/gtest.h>

#include "mesh/containers.h"

namespace {

trEdgeConnection edge(int a, int b, std::initializer_list<int> triangles = {}) {
  trEdgeConnection made(a, b);
  for (int t : triangles) made.add_triangle(t);
  return made;
}

TEST(EdgeSet, GrowsFrom16To32SlotsAtEightEntries) {
  trEdgeConnectioncoSet set;
  for (int k = 1; k <= 8; ++k) {
    EXPECT_EQ(set.table_size(), 16);
    set.add(edge(k, k + 100));
  }
  EXPECT_EQ(set.count(), 8);
  EXPECT_EQ(set.table_size(), 32);
}

// Ends alone decide equality, but only edges whose triangles agree in number and in the exclusive or of their numbers can meet:
// {1, 2} and {4, 7} do, {1, 2} and {1, 3} do not.
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

// The edges (2k, 2k + 1) without elements all have the hash 1; their ends still keep them apart, or this would take minutes.
TEST(EdgeSet, EdgesOfOneHashSpreadByTheirEnds) {
  trEdgeConnectioncoSet set;
  constexpr int edges = 20000;
  for (int k = 1; k <= edges; ++k) set.add(edge(2 * k, 2 * k + 1));
  EXPECT_EQ(set.count(), edges);
  EXPECT_EQ(set.find(edge(2 * edges + 1, 2 * edges)).start_node(), 2 * edges);
  EXPECT_EQ(edge(7, 2).co_spread(), edge(2, 7).co_spread());
}

}  // namespace
