// The block itself: numbering, growth, what is fresh, what an edit makes stale, workplane and box.

#include <gtest/gtest.h>

#include <cfloat>

#include "oracles/literal_mesh.h"
#include "support/journal_recorder.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

const giVector3 no_direction = tr_no_direction();

giWorkplane3 plane_at(const giPoint3& origin) {
  return giWorkplane3(origin, giUnitVec3(giVector3(0, 1, 0)), giUnitVec3(giVector3(0, 0, 1)));
}

void expect_fresh(const trTriBlock& block) {
  EXPECT_EQ(block.node_count(), 1);
  EXPECT_EQ(block.element_count(), 1);
  EXPECT_EQ(block.valid_nodes(), 0);
  EXPECT_EQ(block.valid_elements(), 0);
  EXPECT_EQ(block.elements_referenced, 1);
  EXPECT_EQ(block.edges_built, 0);
  EXPECT_EQ(block.changed, 1);
  EXPECT_EQ(block.normals_built, 0);
  EXPECT_EQ(block.undup_tol, 0.0);
  EXPECT_EQ(block.node_data_size(), 0);
  EXPECT_EQ(block.get_element_colour(3), NO_COLOUR);
  EXPECT_TRUE(block.box().is_empty());
  EXPECT_TRUE(is_sound(block));
}

TEST(FreshBlock, HasReservedSlotsThatNeverCount) {
  trTriBlock block;
  expect_fresh(block);
  EXPECT_EQ(block.use_workplane, 0);
  EXPECT_EQ(block.curvature_adjust, 0);
}

TEST(ClearedBlock, IsLikeAFreshOne) {
  BlockOf block(sphere(4));
  block.set_node_data_size(4);
  block.set_element_colour(3, 77);
  block.build_edges();
  block.compute_node_normals();
  block.unduplicate_nodes(1e-9);
  block.force_changed_status(0);
  block.clear();
  expect_fresh(block);
}

TEST(Growth, MakesTheNumbersInBetweenAsDeletedOnes) {
  trTriBlock block;
  block.set_node(40, giPoint3(1, 2, 3));
  EXPECT_EQ(block.node_count(), 41);
  EXPECT_EQ(block.valid_nodes(), 1);
  block.set_node(1, giPoint3(1, 0, 0));
  block.set_node(2, giPoint3(0, 1, 0));
  for (int e = 1; e < 5; ++e) block.generate(1, 2, 40);
  // Page memory behind the count was never written: it must not show.
  block.set_element(10, 2, 1, 40);
  EXPECT_EQ(block.element_count(), 11);
  for (int e = 5; e < 10; ++e) {
    for (int k = 0; k < 3; ++k) EXPECT_EQ(block.element(e)[k], 0) << e;
  }
  block.access_element(5000);
  EXPECT_EQ(block.element_count(), 5001);
  EXPECT_EQ(block.valid_elements(), 5);
  EXPECT_TRUE(is_sound(block));
}

// Cutting an array leaves what lies behind the cut; growing again must not bring it back.
TEST(Growth, DoesNotRevealWhatRenumberLeftBehind) {
  BlockOf block(sphere(3));
  const int elements = block.element_count();
  for (int e = 1; e < 10; ++e) block.delete_element(e);
  block.renumber();
  const int live = block.valid_elements();
  block.access_element(elements - 1);
  EXPECT_EQ(block.valid_elements(), live);
  EXPECT_TRUE(is_sound(block));
}

TEST(Growth, OfCoordinatesAloneLeavesTheNodesBetweenUsable) {
  trTriBlock block;
  block.init_node(5);
  block.set_node(3, giPoint3(1, 2, 3));
  EXPECT_EQ(*block.node(3).coords, giPoint3(1, 2, 3));
  EXPECT_EQ(block.valid_nodes(), 1);
}

TEST(Growth, KeepsAddresses) {
  trTriBlock block;
  block.set_node(1, giPoint3(1, 2, 3));
  const trNode* node = &block.node(1);
  const giPoint3* place = block.node(1).coords;
  block.set_node(100000, giPoint3());
  EXPECT_EQ(node, &block.node(1));
  EXPECT_EQ(place, block.node(1).coords);
}

// Three set_node and a set_element by another name, with edges built or not, journalled or not.
TEST(AppendFacet, EqualsItsParts) {
  for (const int edges : {0, 1}) {
    for (const bool journal : {false, true}) {
      trTriBlock block;
      LiteralMesh literal;
      block.set_node(2, giPoint3(9, 9, 9));
      literal.set_node(2, giPoint3(9, 9, 9));
      if (edges) block.build_edges();
      literal.edges_built = edges;
      literal.reports.clear();
      JournalRecorder recorder(block);
      if (!journal) block.undo = nullptr;
      const Shape soup = exploded(sphere(3));
      for (std::size_t k = 0; k < soup.points.size(); k += 3) {
        const int n = block.node_count();
        block.append_facet(&soup.points[k]);
        for (int corner = 0; corner < 3; ++corner)
          literal.set_node(n + corner, soup.points[k + static_cast<std::size_t>(corner)]);
        literal.set_element(literal.element_count, n, n + 1, n + 2);
      }
      EXPECT_EQ(difference(block, literal), "");
      if (!journal) literal.reports.clear();
      EXPECT_TRUE(recorder.reports() == JournalRecorder::sorted(literal.reports));
      EXPECT_TRUE(is_sound(block));
    }
  }
}

// Lists of a deleted node that elements still name can fill again; a node that takes its number after a renumbering
// starts empty.
TEST(AppendFacet, StartsWithEmptyLists) {
  BlockOf block(flat_sheet(1, 1));
  block.delete_node(4);
  block.renumber();
  block.reference_elements();
  block.delete_node(3);
  block.elements_referenced = 0;
  block.reference_elements();
  ASSERT_FALSE(block.node(3).elements.empty());
  block.renumber();
  block.reference_elements();
  const int n = block.node_count();
  const giPoint3 corners[3] = {giPoint3(0, 0, 0), giPoint3(1, 0, 0), giPoint3(0, 1, 0)};
  block.append_facet(corners);
  for (int k = 0; k < 3; ++k)
    EXPECT_EQ(entries(block.node(n + k).elements), std::vector<int>{block.element_count() - 1});
}

// The largest doubles mark unset and invalid points, in boxes and in the journal: a coordinate never is one.
TEST(Sentinels, AreMovedByOneUnitInTheLastPlace) {
  trTriBlock block;
  const double nearly = std::nextafter(DBL_MAX, 0.0);
  block.set_node(1, giPoint3(-DBL_MAX, DBL_MAX, 0));
  EXPECT_EQ(block.point(1), giPoint3(-nearly, nearly, 0));
  const int made = block.generate_node(giPoint3(0, 0, DBL_MAX), no_direction, 0);
  EXPECT_EQ(block.point(made), giPoint3(0, 0, nearly));
  const giPoint3 corners[3] = {giPoint3(DBL_MAX, 0, 0), giPoint3(-DBL_MAX, 1, 0), giPoint3(0, -DBL_MAX, 0)};
  block.append_facet(corners);
  for (int i = 1; i < block.node_count(); ++i) EXPECT_FALSE(block.point(i).invalid()) << i;
  const double infinity = HUGE_VAL;
  block.set_node(1, giPoint3(infinity, -infinity, std::nan("")));
  EXPECT_EQ(block.point(1).x, infinity);
  EXPECT_EQ(block.point(1).y, -infinity);
  EXPECT_TRUE(std::isnan(block.point(1).z));
}

// Only these edits announce a change to the host; the rest of the primitives leave the flag as it is, and so does
// cancelling.
TEST(Changed, IsSetByThoseEditsThatSaySo) {
  intcoPageArr one;
  one[0] = 1;
  const intcoPageArr none;
  const struct {
    const char* name;
    int expected;
    std::function<void(trTriBlock&)> edit;
  } cases[] = {
      {"alter", 1, [](trTriBlock& b) { b.alter(0); }},
      {"reverse_element", 1, [](trTriBlock& b) { b.reverse_element(1); }},
      {"split_element", 1, [](trTriBlock& b) { b.split_element(1); }},
      {"delete_elements", 1, [&](trTriBlock& b) { b.delete_elements(one); }},
      {"delete_elements of nothing", 0, [&](trTriBlock& b) { b.delete_elements(none); }},
      {"split_elements", 1, [&](trTriBlock& b) { b.split_elements(one); }},
      {"split_elements of nothing", 0, [&](trTriBlock& b) { b.split_elements(none); }},
      {"repeating", 1, [](trTriBlock& b) { b.repeating(); }},
      {"merge", 1, [](trTriBlock& b) { b.unduplicate_nodes(2.0); }},
      {"merge of nothing", 0, [](trTriBlock& b) { b.unduplicate_nodes(1e-9); }},
      {"renumber", 1, [](trTriBlock& b) { b.renumber(); }},
      {"cancelling(0)", 0, [](trTriBlock& b) { b.cancelling(0); }},
      {"cancelling(1)", 0, [](trTriBlock& b) { b.cancelling(1); }},
      {"generate", 0, [](trTriBlock& b) { b.generate(1, 2, 4); }},
      {"set_element", 0, [](trTriBlock& b) { b.set_element(1, 1, 2, 4); }},
      {"delete_element", 0, [](trTriBlock& b) { b.delete_element(1); }},
      {"delete_node", 0, [](trTriBlock& b) { b.delete_node(4); }},
      {"set_node", 0, [](trTriBlock& b) { b.set_node(1, giPoint3(5, 5, 5)); }},
  };
  for (const auto& c : cases) {
    BlockOf block(flat_sheet(1, 1));
    block.generate(1, 2, 4);
    block.generate(1, 2, 4);
    block.generate(2, 1, 4);
    block.force_changed_status(0);
    c.edit(block);
    EXPECT_EQ(block.changed, c.expected) << c.name;
  }
}

TEST(Transform, CountsAsNoChangeAndKeepsLists) {
  BlockOf block(punctured_sphere(4, 2));
  block.build_edges();
  block.compute_node_normals();
  block.unduplicate_nodes(1e-9);
  block.build_edges();
  const auto edges = listed_free_edges(block);
  block.force_changed_status(1);
  block.transform(giXform3::translation(giVector3(10, 0, 0)));
  EXPECT_EQ(block.changed, 0);
  EXPECT_EQ(block.normals_built, 0);
  EXPECT_EQ(block.undup_tol, 0.0);
  EXPECT_EQ(block.edges_built, 1);
  EXPECT_EQ(listed_free_edges(block), edges);
  EXPECT_NEAR(block.box().min().x, 9, 1e-12);
  EXPECT_TRUE(is_sound(block));
}

TEST(SetNode, OnAValidNodeKeepsTheListsThatAreCurrent) {
  BlockOf block(flat_sheet(1, 1));
  block.build_edges();
  block.set_node(1, giPoint3(-1, -1, 0));
  EXPECT_EQ(entries(block.node(1).elements), (std::vector<int>{2, 1}));
  EXPECT_EQ(listed_free_edges(block), expected_free_edges(block));
  EXPECT_TRUE(is_sound(block));
  // A list whose flag is not set is emptied.
  block.alter(0);
  block.set_node(1, giPoint3(0, 0, 0));
  EXPECT_TRUE(block.node(1).a_edges.empty());
}

TEST(SetNode, ForgetsTheMergeToleranceButNotTheEdges) {
  BlockOf block(flat_sheet(1, 1));
  block.unduplicate_nodes(0.01);
  block.build_edges();
  block.set_node(1, giPoint3(0, 0, 1));
  EXPECT_EQ(block.undup_tol, 0.0);
  EXPECT_EQ(block.edges_built, 1);
}

TEST(Alter, MakesEdgesAndMergeToleranceStaleAndTheBoxOnRequest) {
  BlockOf block(flat_sheet(1, 1));
  block.build_edges();
  block.undup_tol = 0.5;
  block.force_changed_status(0);
  const giBox3 before = block.box();
  *block.node(1).coords = giPoint3(-7, 0, 0);
  block.alter(0);
  EXPECT_EQ(block.edges_built, 0);
  EXPECT_EQ(block.changed, 1);
  EXPECT_EQ(block.undup_tol, 0.0);
  EXPECT_EQ(block.elements_referenced, 1);
  EXPECT_EQ(block.box().min(), before.min());
  block.alter(1);
  EXPECT_EQ(block.box().min(), giPoint3(-7, 0, 0));
}

TEST(Box, FollowsMovesButNotDeletions) {
  BlockOf block(flat_sheet(1, 1));
  EXPECT_EQ(block.box().max(), giPoint3(1, 1, 0));
  block.set_node(4, giPoint3(3, 1, 0));
  EXPECT_EQ(block.box().max(), giPoint3(3, 1, 0));
  block.delete_node(4);
  EXPECT_EQ(block.box().max(), giPoint3(3, 1, 0));
  block.alter(1);
  EXPECT_EQ(block.box().max(), giPoint3(1, 1, 0));
}

TEST(Workplane, MapsOnlyWhileEnabledAndItsOriginIsValid) {
  trTriBlock block;
  const giPoint3 p(3, 4, 5);
  block.set_workplane(ccWorkplane(plane_at(giPoint3(1, 1, 1))));
  EXPECT_EQ(block.use_workplane, 0);
  EXPECT_EQ(block.check_use_workplane(p), p);
  block.enable_workplane(1);
  // x runs along world y, so y runs against world x.
  EXPECT_EQ(block.check_use_workplane(p), giPoint3(3, -2, 4));
  EXPECT_EQ(block.check_use_workplane(giVector3(3, 4, 5)), giVector3(4, -3, 5));
  EXPECT_EQ(block.check_unapply_workplane(giPoint3(3, -2, 4)), p);
  giPoint3 nowhere;
  nowhere.set_invalid();
  block.set_workplane(ccWorkplane(plane_at(nowhere)));
  EXPECT_EQ(block.use_workplane, 1);
  EXPECT_EQ(block.check_use_workplane(p), p);
  EXPECT_EQ(block.check_unapply_workplane(p), p);
}

TEST(Workplane, ChangesTheFrameOfTheBox) {
  BlockOf block(closed_box(giPoint3(0, 0, 0), 1, 2, 3));
  EXPECT_EQ(block.box().max(), giPoint3(1, 2, 3));
  block.set_workplane(ccWorkplane(plane_at(giPoint3(0, 0, 1))));
  EXPECT_EQ(block.box().max(), giPoint3(1, 2, 3));
  block.enable_workplane(1);
  EXPECT_EQ(block.box().min(), giPoint3(0, -1, -1));
  EXPECT_EQ(block.box().max(), giPoint3(2, 0, 2));
  block.enable_workplane(0);
  EXPECT_EQ(block.box().max(), giPoint3(1, 2, 3));
}

}  // namespace
