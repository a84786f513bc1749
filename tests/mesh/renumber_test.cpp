// Closing the gaps in the numbering.

#include <gtest/gtest.h>

#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

TEST(Renumber, ClosesGapsInOrder) {
  trTriBlock block;
  for (int i = 1; i <= 4; ++i) block.set_node(i, giPoint3(i, 0, 0));
  block.set_element(3, 1, 3, 4);
  block.delete_node(2);
  block.renumber();
  EXPECT_EQ(block.node_count(), 4);
  EXPECT_EQ(block.point(2).x, 3);
  EXPECT_EQ(block.point(3).x, 4);
  EXPECT_EQ(block.element_count(), 2);
  EXPECT_EQ(block.element(1)[1], 2);
  EXPECT_EQ(block.element(1)[2], 3);
  EXPECT_EQ(block.elements_referenced, 0);
  EXPECT_EQ(block.edges_built, 0);
  EXPECT_TRUE(is_sound(block));
}

TEST(Renumber, KeepsTheMergeToleranceThatEveryOtherEditForgets) {
  BlockOf block(exploded(sphere(3)));
  block.unduplicate_nodes(1e-6);
  block.renumber();
  EXPECT_EQ(block.undup_tol, 1e-6);
  EXPECT_EQ(block.unduplicate_nodes(1e-6), 0);
}

// What an element is, by value: the places of its corners, their attributes, its colour.
using ElementValue = std::vector<double>;

ElementValue value_of(trTriBlock& block, int e) {
  ElementValue value;
  for (int k = 0; k < 3; ++k) {
    const int i = block.element(e)[k];
    for (int axis = 0; axis < 3; ++axis) value.push_back(block.point(i)[axis]);
    const trNodeDataTuple& tuple = block.node_data(i);
    value.push_back(tuple.weight);
    value.insert(value.end(), tuple.values, tuple.values + trNodeDataTuple::max_values);
  }
  value.push_back(block.get_element_colour(e));
  return value;
}

std::vector<ElementValue> values_of(trTriBlock& block) {
  std::vector<ElementValue> values;
  for (int e = 1; e < block.element_count(); ++e) {
    if (block.element(e).valid()) values.push_back(value_of(block, e));
  }
  return values;
}

TEST(Renumber, KeepsGeometryAttributesAndColoursAndIsIdempotent) {
  Random random(21);
  for (int round = 0; round < 60; ++round) {
    BlockOf block(shuffled(punctured_sphere(5, 3), static_cast<std::uint64_t>(round)));
    block.set_node_data_size(2);
    for (int i = 1; i < block.node_count(); ++i) {
      block.node_data(i).weight = random.below(5);
      for (double& v : block.node_data(i).values) v = random.unit();
    }
    // Colours end before the elements do: those beyond read the default, before and after.
    for (int e = 3; e < 30; e += 2) block.set_element_colour(e, random.below(1000));
    for (int e = 1; e < block.element_count(); ++e) {
      if (random.one_in(round % 7 + 2)) block.delete_element(e);
    }
    std::set<int> used;
    for (int e = 1; e < block.element_count(); ++e) {
      for (int k = 0; k < 3; ++k) used.insert(block.element(e)[k]);
    }
    for (int i = 1; i < block.node_count(); ++i) {
      if (used.count(i) == 0) block.delete_node(i);
    }
    const auto before = values_of(block);
    const double volume = block.volume();
    for (int pass = 0; pass < 2; ++pass) {
      block.renumber();
      EXPECT_EQ(values_of(block), before) << "round " << round;
      EXPECT_EQ(block.volume(), volume);
      EXPECT_EQ(block.valid_nodes(), block.node_count() - 1);
      EXPECT_EQ(block.valid_elements(), block.element_count() - 1);
      ASSERT_TRUE(is_sound(block));
    }
    block.build_edges();
    block.reference_elements();
    ASSERT_TRUE(is_sound(block));
  }
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

}  // namespace
