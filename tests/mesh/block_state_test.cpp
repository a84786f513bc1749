// The block itself: numbering, growth, what is fresh, what an edit makes stale, workplane and box.

#include <gtest/gtest.h>

#include <cfloat>

#include "mesh/measures.h"
#include "oracles/literal_mesh.h"
#include "support/journal_recorder.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

giWorkplane3 plane_at(const giPoint3& origin) {
  return giWorkplane3(origin, giUnitVec3(giVector3(0, 1, 0)), giUnitVec3(giVector3(0, 0, 1)));
}

// What a new block is, an emptied one is too; slot 0 never counts.
TEST(ClearedBlock, IsLikeAFreshOne) {
  BlockOf block(sphere(4));
  block.set_node_data_size(4);
  block.set_element_colour(3, 77);
  block.build_edges();
  block.compute_node_normals();
  block.unduplicate_nodes(1e-9);
  block.force_changed_status(0);
  block.clear();
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
      block.compute_node_normals();
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
      block.compute_node_normals();
      giVector3 normal;
      const giPoint3* last = &soup.points.back();
      tr_compute_normal(last[-2], last[-1], last[0], 0.0, normal);
      EXPECT_LT((block.node_normal(block.node_count() - 1) - normal).length(), 1e-12) << "made anew";
      if (!journal) literal.reports.clear();
      EXPECT_TRUE(recorder.reports() == JournalRecorder::sorted(literal.reports));
      EXPECT_TRUE(is_sound(block));
    }
  }
}

// set_node and set_element of the next numbers by another name, whether or not edges and lists are current; nodes come before the
// elements that share them.
TEST(AppendNodeAndElement, EqualSettingTheNextNumbers) {
  for (const int edges : {0, 1}) {
    for (const int lists : {0, 1}) {
      for (const bool journal : {false, true}) {
        BlockOf block(flat_sheet(2, 2));
        BlockOf other(flat_sheet(2, 2));
        JournalRecorder recorder(block), of_other(other);
        for (trTriBlock* const each : {static_cast<trTriBlock*>(&block), static_cast<trTriBlock*>(&other)}) {
          if (edges) each->build_edges();
          each->elements_referenced = lists;
          each->undup_tol = 1.0;
          if (!journal) each->undo = nullptr;
        }
        const Shape sheet = flat_sheet(3, 3);
        const int before = block.node_count();
        for (const giPoint3& point : sheet.points) {
          block.append_node(point);
          other.set_node(other.node_count(), point);
        }
        for (const auto& t : sheet.triangles) {
          block.append_element(before + t[0], before + t[1], before + t[2]);
          other.set_element(other.element_count(), before + t[0], before + t[1], before + t[2]);
        }
        EXPECT_EQ(BlockSnapshot(block).difference(BlockSnapshot(other)), "");
        EXPECT_EQ(block.undup_tol, 0.0);
        EXPECT_EQ(block.elements_referenced, lists);
        EXPECT_EQ(block.box().max(), other.box().max());
        EXPECT_TRUE(recorder.reports() == of_other.reports());
        for (int i = 1; i < block.node_count(); ++i) {
          EXPECT_EQ(entries(block.node(i).elements), entries(other.node(i).elements)) << i;
          EXPECT_EQ(entries(block.node(i).a_edges), entries(other.node(i).a_edges)) << i;
        }
        block.reference_elements();
        EXPECT_TRUE(is_sound(block));
      }
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
  const int made = block.generate_node(giPoint3(0, 0, DBL_MAX), tr_no_direction(), 0);
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
