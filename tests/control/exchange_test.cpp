// Meshes that a host hands over as a pool of arrays.

#include <gtest/gtest.h>

#include "analysis/sick_triangles.h"
#include "control/host.h"
#include "platform/digitiser/tri_mask.h"

namespace {

giColour red(int value) { return giColour(static_cast<unsigned char>(value), 0, 0, 0); }

// A host's pool: five triangles round an edge.
class HostPool : public giTriBlock {
 public:
  HostPool() {
    check_out(points_);
    check_out(triangles_);
    const giPoint3 places[] = {{1, 1, 1}, {2, 1, 1}, {1, 2, 1}, {1, 1, 2}, {1, 0, 1}, {1, 1, 0}, {3, 3, 3}};
    for (int k = 0; k < 7; ++k) set_point(k, places[k]);
    for (int k = 0; k < 5; ++k) set_triangle(k, 0, 1, k + 2);
  }

  void set_triangle(int k, int a, int b, int c) { triangles_.data()->triangles[k] = giTriangle(a, b, c); }
  void set_point(int k, const giPoint3& p) { points_.data()->points[k] = p; }
  void mask(int k) {
    check_out(mask_);
    mask_.data()->set(k);
  }
  // The first triangles get the colours step, 2 step, ...
  void colour(int count, int step) {
    check_out(colours_);
    for (int k = 0; k < count; ++k) (*colours_.data())[k] = red(step * (k + 1));
  }

 private:
  giNodeXYZ points_;
  giTriArrcoFeature triangles_;
  pmTriMaskArrcoFeature mask_;
  giTriCols colours_;
};

// What a mesh gives back.
struct HandedBack {
  explicit HandedBack(trTriBlock& block) {
    block.get_giTriBlock(pool);
    EXPECT_TRUE(pool.find(points_) && pool.find(triangles_));
  }
  const coPageArr<giPoint3>& points() { return points_.data()->points; }
  const coPageArr<giTriangle>& triangles() { return triangles_.data()->triangles; }
  template <class Feature>
  bool has(Feature& feature) {
    return pool.find(feature);
  }

  giTriBlock pool;
  giNodeXYZ points_;
  giTriArrcoFeature triangles_;
};

struct Exchange : testing::Test {
  const trTriBlock& mesh() { return control.triblock(); }

  CapturedOutput output;
  HostPool pool;
  Host control;
};

}  // namespace

// Masked triangles take no number, and colours go with the triangles that were taken.
TEST_F(Exchange, FillTakesWhatIsNotMasked) {
  pool.mask(2);
  pool.colour(5, 10);
  control.start_undo("before");
  control.triblock().set_node(99, giPoint3(9, 9, 9));
  control.finish_undo(1);
  control.action_fill_triblock(pool);
  EXPECT_EQ(elements_of(mesh()), (std::vector<std::array<int, 3>>{{1, 2, 3}, {1, 2, 4}, {1, 2, 6}, {1, 2, 7}}));
  EXPECT_EQ(mesh().node_count(), 8);
  const int reds[] = {10, 20, 40, 50};
  for (int e = 1; e <= 4; ++e) EXPECT_EQ(mesh().get_element_colour(e), tr_encode_colour(red(reds[e - 1])));
  EXPECT_EQ(mesh().default_colour(), NO_COLOUR);
  EXPECT_EQ(control.undo_hist().current(), -1);
  EXPECT_EQ(control.triblock_changed(), 0);
  // The reserved slot repeats the first point, so the host's box over the array is not pulled to the origin; node 0 is still no node.
  EXPECT_EQ(mesh().point(0).x, 1.0);
  EXPECT_EQ(mesh().node(0).invalid, 1);
  EXPECT_EQ(mesh().valid_nodes(), 7);
}

// Triangles that name points which are not there would be a trap for every later operation.
TEST_F(Exchange, FillPassesOverTrianglesWithoutPoints) {
  pool.set_triangle(1, 0, 1, 7);
  pool.set_triangle(3, -1, 1, 2);
  pool.set_triangle(4, 0, std::numeric_limits<int>::max(), 2);
  pool.colour(12, 1);  // more colours than triangles
  control.action_fill_triblock(pool);
  EXPECT_EQ(mesh().element_count(), 3);
  EXPECT_EQ(mesh().get_element_colour(2), tr_encode_colour(red(3)));
  EXPECT_TRUE(is_sound(mesh()));
  giTriBlock empty;
  control.action_fill_triblock(empty);
  EXPECT_EQ(mesh().element_count(), 1);
  EXPECT_TRUE(is_sound(mesh()));
}

// The search on a host's own pool gives numbers as that pool counts them, or as a block would.
TEST_F(Exchange, SickEdgesOfAHostPool) {
  for (const int mode : {0, 1}) {
    trEdgeConnectioncoPageArr edges;
    EXPECT_NE(trSickTriangles::find_sick_triangles(pool, edges, mode), 0);
    ASSERT_EQ(edges.count(), 1);
    EXPECT_TRUE(edges[0].check(1 - mode, 2 - mode));
    intcoPageArr elements;
    edges[0].triangles(elements);
    std::vector<int> numbers = numbers_in(elements);
    EXPECT_EQ(numbers.size(), 5u);
    EXPECT_EQ(*std::min_element(numbers.begin(), numbers.end()), 1 - mode);
  }
  trEdgeConnectioncoPageArr none;
  EXPECT_EQ(trSickTriangles::find_sick_triangles(giTriBlock(), none, 0), 0);
}

// The host's triangles follow those that are there, under their own nodes, coloured as they are taken; the history is forgotten. Each
// exchange tells the host of one change; appending to an empty mesh fills it, which tells it once more.
TEST_F(Exchange, AppendAddsBehindWhatIsThere) {
  pool.colour(5, 10);
  control.action_append_triblock(pool);
  EXPECT_EQ(control.updates, (std::vector<int>{1, 1}));
  EXPECT_EQ(mesh().point(0).x, 1.0);
  EXPECT_EQ(mesh().element_count(), 6);
  pool.mask(0);
  pool.set_triangle(1, 0, 1, 7);  // names a point that is not there
  control.start_undo("edit");
  control.triblock().delete_element(5);
  control.finish_undo(1);
  control.updates.clear();
  control.action_append_triblock(pool);
  EXPECT_EQ(control.updates, std::vector<int>{1});
  ASSERT_EQ(mesh().element_count(), 9);
  EXPECT_EQ(mesh().node_count(), 15);
  EXPECT_EQ(mesh().element(6)[0], 8);
  EXPECT_EQ(mesh().element(6)[2], 12);
  EXPECT_EQ(mesh().get_element_colour(6), tr_encode_colour(red(30)));
  EXPECT_EQ(mesh().get_element_colour(8), tr_encode_colour(red(50)));
  EXPECT_EQ(control.undo_hist().current(), -1);
  EXPECT_EQ(control.triblock_changed(), 0);
  control.action_fill_triblock(pool);
  EXPECT_EQ(control.updates, (std::vector<int>{1, 1}));
}

// What comes back is compact, whatever was deleted, with colours at their triangles; a mesh without colours gives no array of them.
TEST_F(Exchange, GivesBackWhatIsLeft) {
  giTriCols colours;
  giNormArrcoFeature normals;
  control.action_fill_triblock(pool);
  HandedBack plain(control.triblock());
  EXPECT_FALSE(plain.has(colours) || plain.has(normals));

  pool.colour(4, 1);  // the fifth has none
  control.action_fill_triblock(pool);
  control.triblock().delete_element(2);
  control.triblock().delete_node(4);
  control.triblock().compute_node_normals();
  HandedBack out(control.triblock());
  ASSERT_TRUE(out.has(colours));
  EXPECT_EQ(out.points().count(), 6);
  EXPECT_TRUE(out.points_.data()->box_stale);
  EXPECT_EQ(out.points()[3].y, 0.0);
  ASSERT_EQ(out.triangles().count(), 4);
  EXPECT_EQ(out.triangles()[3][2], 5) << "host point 6 moved down with its node";
  EXPECT_EQ(colours.data()->count(), 4);
  EXPECT_EQ((*colours.data())[1], red(3));
}

// Without gaps nothing is renumbered, so that node normals that are current come along, and a second call gives a second copy whose
// triangles name the nodes of the first.
TEST_F(Exchange, GivesBackNormalsAndDoesNotCountWhatTheHostHolds) {
  control.action_fill_triblock(pool);
  control.triblock().compute_node_normals();
  HandedBack out(control.triblock());
  giNormArrcoFeature normals;
  ASSERT_TRUE(out.has(normals));
  EXPECT_EQ(normals.data()->normals.count(), 7);
  EXPECT_EQ(normals.data()->normals[3].x(), control.triblock().node_normal(4).x());
  control.triblock().get_giTriBlock(out.pool);
  ASSERT_TRUE(out.has(out.triangles_));
  ASSERT_EQ(out.triangles().count(), 10);
  EXPECT_EQ(out.triangles()[7][2], out.triangles()[2][2]);
}

// What is derived from the mesh when the host's comes, edges, element lists or an open record, makes no difference to the result.
TEST_F(Exchange, ComesToMeshesInAnyState) {
  Host plain;
  plain.action_fill_triblock(pool);
  plain.action_append_triblock(pool);
  for (const bool is_recorded : {false, true}) {
    control.action_fill_triblock(pool);
    EXPECT_EQ(control.boundaries(), plain.boundaries() / 2);
    control.triblock().reference_elements();
    if (is_recorded) control.start_undo("open");
    control.action_append_triblock(pool);
    EXPECT_TRUE(is_sound(mesh()));
    EXPECT_EQ(elements_of(mesh()), elements_of(plain.triblock()));
    EXPECT_EQ(control.boundaries(), plain.boundaries());
    EXPECT_EQ(control.undo_hist().current(), -1);
  }
}

// Of a block of this library what is valid is taken; a controller's own block is no mesh from outside.
TEST_F(Exchange, TakesBlocksOfThisLibrary) {
  BlockOf source(closed_box());
  source.delete_element(3);
  source.set_element_colour(5, 42);
  for (const int times : {1, 2}) {
    times == 1 ? control.action_fill_triblock(source) : control.action_append_triblock(source);
    EXPECT_EQ(mesh().valid_nodes(), 8 * times);
    EXPECT_EQ(mesh().valid_elements(), 11 * times);
    EXPECT_EQ(mesh().element_count(), 11 * times + 1);
    EXPECT_EQ(mesh().get_element_colour(11 * (times - 1) + 4), 42);
  }
  control.action_append_triblock(control.triblock());
  control.action_fill_triblock(control.triblock());
  EXPECT_EQ(mesh().valid_elements(), 22);
}

// White and opaque is packed as the number that stands for no colour.
TEST_F(Exchange, OpaqueWhiteIsNoColour) {
  EXPECT_EQ(tr_encode_colour(giColour(255, 255, 255, 255)), NO_COLOUR);
  EXPECT_EQ(tr_decode_colour(NO_COLOUR), giColour(255, 255, 255, 255));
}

// A point that is not a number is a point like any other: it keeps its number and its triangles, there and back.
TEST_F(Exchange, PointsThatAreNotNumbersKeepTheirPlace) {
  const double odd = std::nan("");
  pool.set_point(0, giPoint3(odd, 1, 1));
  pool.set_point(3, giPoint3(1, odd, odd));
  control.action_fill_triblock(pool);
  control.action_append_triblock(pool);
  EXPECT_EQ(mesh().valid_elements(), 10);
  EXPECT_EQ(mesh().element(7)[2], 11);
  EXPECT_TRUE(std::isnan(mesh().point(11).y) && mesh().point(11).x == 1.0);
  HandedBack out(control.triblock());
  ASSERT_EQ(out.points().count(), 14);
  ASSERT_EQ(out.triangles().count(), 10);
  for (int k = 0; k < 14; ++k) {
    EXPECT_EQ(std::isnan(out.points()[k].x), k % 7 == 0) << k;
    EXPECT_EQ(std::isnan(out.points()[k].z), k % 7 == 3) << k;
  }
}
