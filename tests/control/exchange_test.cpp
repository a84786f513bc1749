// Meshes that a host hands over as a pool of arrays.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "analysis/sick_triangles.h"
#include "control/control.h"
#include "platform/digitiser/tri_mask.h"
#include "support/captured_output.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

// A host's pool: five triangles round an edge, with colours.
class HostPool : public giTriBlock {
 public:
  HostPool() {
    check_out(points_);
    check_out(triangles_);
    const double places[][3] = {{1, 1, 1}, {2, 1, 1}, {1, 2, 1}, {1, 1, 2}, {1, 0, 1}, {1, 1, 0}, {3, 3, 3}};
    for (int k = 0; k < 7; ++k) points_.data()->points[k] = giPoint3(places[k][0], places[k][1], places[k][2]);
    for (int k = 0; k < 5; ++k) set_triangle(k, 0, 1, k + 2);
  }

  void set_triangle(int k, int a, int b, int c) {
    giTriangle& t = triangles_.data()->triangles[k];
    t[0] = a;
    t[1] = b;
    t[2] = c;
  }
  void set_point(int k, const giPoint3& p) { points_.data()->points[k] = p; }
  void mask(int k) {
    check_out(mask_);
    mask_.data()->set(k);
  }
  void colour(int k, int red) {
    check_out(colours_);
    (*colours_.data())[k] = giColour(static_cast<unsigned char>(red), 0, 0, 0);
  }

 private:
  giNodeXYZ points_;
  giTriArrcoFeature triangles_;
  pmTriMaskArrcoFeature mask_;
  giTriCols colours_;
};

}  // namespace

// Masked triangles take no number, and colours go with the triangles that were taken.
TEST(Exchange, FillTakesWhatIsNotMasked) {
  CapturedOutput output;
  HostPool pool;
  pool.mask(2);
  for (int k = 0; k < 5; ++k) pool.colour(k, 10 * (k + 1));
  trControl control;
  control.start_undo("before");
  control.triblock().set_node(99, giPoint3(9, 9, 9));
  control.finish_undo(1);
  control.action_fill_triblock(pool);
  const trTriBlock& block = control.triblock();
  ASSERT_EQ(block.element_count(), 5);
  EXPECT_EQ(block.node_count(), 8);
  const int thirds[] = {3, 4, 6, 7};
  const int reds[] = {10, 20, 40, 50};
  for (int e = 1; e <= 4; ++e) {
    EXPECT_EQ(block.element(e)[0], 1);
    EXPECT_EQ(block.element(e)[2], thirds[e - 1]);
    EXPECT_EQ(block.get_element_colour(e), tr_encode_colour(giColour(static_cast<unsigned char>(reds[e - 1]), 0, 0, 0)));
  }
  EXPECT_EQ(block.default_colour(), NO_COLOUR);
  EXPECT_EQ(control.undo_hist().current(), -1);
  EXPECT_EQ(control.triblock_changed(), 0);
  // The reserved slot repeats the first point, so the host's box over the array is not pulled to the origin; node 0 is still no node.
  EXPECT_EQ(block.point(0).x, 1.0);
  EXPECT_EQ(block.node(0).invalid, 1);
  EXPECT_EQ(block.valid_nodes(), 7);
}

// Triangles that name points which are not there would be a trap for every later operation.
TEST(Exchange, FillPassesOverTrianglesWithoutPoints) {
  CapturedOutput output;
  HostPool pool;
  pool.set_triangle(1, 0, 1, 7);
  pool.set_triangle(3, -1, 1, 2);
  pool.set_triangle(4, 0, std::numeric_limits<int>::max(), 2);
  for (int k = 0; k < 12; ++k) pool.colour(k, k + 1);  // more colours than triangles
  trControl control;
  control.action_fill_triblock(pool);
  EXPECT_EQ(control.triblock().valid_elements(), 2);
  EXPECT_EQ(control.triblock().element_count(), 3);
  EXPECT_EQ(control.triblock().get_element_colour(2), tr_encode_colour(giColour(3, 0, 0, 0)));
  giTriBlock empty;
  control.action_fill_triblock(empty);
  EXPECT_EQ(control.triblock().element_count(), 1);
  EXPECT_TRUE(is_sound(control.triblock()));
}

// The search on a host's own pool gives numbers as that pool counts them, or as a block would.
TEST(Exchange, SickEdgesOfAHostPool) {
  CapturedOutput output;
  HostPool pool;
  for (const int mode : {0, 1}) {
    trEdgeConnectioncoPageArr edges;
    EXPECT_NE(trSickTriangles::find_sick_triangles(pool, edges, mode), 0);
    ASSERT_EQ(edges.count(), 1);
    EXPECT_TRUE(edges[0].check(1 - mode, 2 - mode));
    EXPECT_EQ(edges[0].number_triangles(), 5);
    intcoPageArr elements;
    edges[0].triangles(elements);
    int least = elements[0];
    for (int k = 1; k < elements.count(); ++k) least = std::min(least, elements[k]);
    EXPECT_EQ(least, 1 - mode);
  }
  trEdgeConnectioncoPageArr none;
  EXPECT_EQ(trSickTriangles::find_sick_triangles(giTriBlock(), none, 0), 0);
}

// The host's triangles follow those that are there, under their own nodes, coloured as they are taken; the history is forgotten.
TEST(Exchange, AppendAddsBehindWhatIsThere) {
  CapturedOutput output;
  HostPool pool;
  for (int k = 0; k < 5; ++k) pool.colour(k, 10 * (k + 1));
  trControl control;
  control.action_append_triblock(pool);  // an empty mesh is filled
  EXPECT_EQ(control.triblock().point(0).x, 1.0);
  EXPECT_EQ(control.triblock().element_count(), 6);
  pool.mask(0);
  pool.set_triangle(1, 0, 1, 7);  // names a point that is not there
  control.start_undo("edit");
  control.triblock().delete_element(5);
  control.finish_undo(1);
  control.action_append_triblock(pool);
  const trTriBlock& block = control.triblock();
  ASSERT_EQ(block.element_count(), 9);
  EXPECT_EQ(block.node_count(), 15);
  EXPECT_EQ(block.element(6)[0], 8);
  EXPECT_EQ(block.element(6)[2], 12);
  EXPECT_EQ(block.get_element_colour(6), tr_encode_colour(giColour(30, 0, 0, 0)));
  EXPECT_EQ(block.get_element_colour(8), tr_encode_colour(giColour(50, 0, 0, 0)));
  EXPECT_EQ(control.undo_hist().current(), -1);
  EXPECT_EQ(control.triblock_changed(), 0);
}

// What comes back is compact, whatever was deleted, with colours at their triangles; a mesh without colours gives no array of them.
TEST(Exchange, GivesBackWhatIsLeft) {
  CapturedOutput output;
  HostPool pool;
  trControl control;
  control.action_fill_triblock(pool);
  giTriBlock plain;
  control.triblock().get_giTriBlock(plain);
  giTriCols colours;
  EXPECT_FALSE(plain.find(colours));
  giNormArrcoFeature normals;
  EXPECT_FALSE(plain.find(normals));

  for (int k = 0; k < 4; ++k) pool.colour(k, k + 1);  // the fifth has none
  control.action_fill_triblock(pool);
  control.triblock().delete_element(2);
  control.triblock().delete_node(4);
  control.triblock().compute_node_normals();
  giTriBlock out;
  control.triblock().get_giTriBlock(out);
  giNodeXYZ points;
  giTriArrcoFeature triangles;
  ASSERT_TRUE(out.find(points) && out.find(triangles) && out.find(colours));
  EXPECT_EQ(points.data()->points.count(), 6);
  EXPECT_TRUE(points.data()->box_stale);
  ASSERT_EQ(triangles.data()->triangles.count(), 4);
  EXPECT_EQ(colours.data()->count(), 4);
  const giTriangle& last = triangles.data()->triangles[3];
  EXPECT_EQ(last[2], 5);  // host point 6 moved down with its node
  EXPECT_EQ((*colours.data())[1], giColour(3, 0, 0, 0));
  EXPECT_EQ(points.data()->points[3].y, 0.0);
}

// Without gaps nothing is renumbered, so that node normals that are current come along, and a second call gives a second copy whose
// triangles name the nodes of the first.
TEST(Exchange, GivesBackNormalsAndDoesNotCountWhatTheHostHolds) {
  CapturedOutput output;
  HostPool pool;
  trControl control;
  control.action_fill_triblock(pool);
  control.triblock().compute_node_normals();
  giTriBlock out;
  control.triblock().get_giTriBlock(out);
  giNormArrcoFeature normals;
  ASSERT_TRUE(out.find(normals));
  EXPECT_EQ(normals.data()->normals.count(), 7);
  EXPECT_EQ(normals.data()->normals[3].x(), control.triblock().node_normal(4).x());
  control.triblock().get_giTriBlock(out);
  giTriArrcoFeature triangles;
  ASSERT_TRUE(out.find(triangles));
  ASSERT_EQ(triangles.data()->triangles.count(), 10);
  EXPECT_EQ(triangles.data()->triangles[7][2], triangles.data()->triangles[2][2]);
}

// What is derived from the mesh when the host's comes, edges, element lists or an open record, makes no difference to the result.
TEST(Exchange, ComesToMeshesInAnyState) {
  CapturedOutput output;
  HostPool pool;
  trControl plain;
  plain.action_fill_triblock(pool);
  plain.action_append_triblock(pool);
  for (const bool is_recorded : {false, true}) {
    trControl control;
    control.action_fill_triblock(pool);
    EXPECT_EQ(control.cycles().num_boundaries(), plain.cycles().num_boundaries() / 2);
    control.triblock().reference_elements();
    if (is_recorded) control.start_undo("open");
    control.action_append_triblock(pool);
    EXPECT_TRUE(is_sound(control.triblock()));
    ASSERT_EQ(control.triblock().element_count(), 11);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(control.triblock().element(10)[k], plain.triblock().element(10)[k]);
    EXPECT_EQ(control.cycles().num_boundaries(), plain.cycles().num_boundaries());
    EXPECT_EQ(control.undo_hist().current(), -1);
  }
}

// Of a block of this library what is valid is taken; a controller's own block is no mesh from outside.
TEST(Exchange, TakesBlocksOfThisLibrary) {
  CapturedOutput output;
  trControl source, control;
  add_to(source.triblock(), closed_box());
  source.triblock().delete_element(3);
  source.triblock().set_element_colour(5, 42);
  for (const int times : {1, 2}) {
    times == 1 ? control.action_fill_triblock(source.triblock()) : control.action_append_triblock(source.triblock());
    EXPECT_EQ(control.triblock().valid_nodes(), 8 * times);
    EXPECT_EQ(control.triblock().valid_elements(), 11 * times);
    EXPECT_EQ(control.triblock().element_count(), 11 * times + 1);
    EXPECT_EQ(control.triblock().get_element_colour(11 * (times - 1) + 4), 42);
  }
  control.action_append_triblock(control.triblock());
  control.action_fill_triblock(control.triblock());
  EXPECT_EQ(control.triblock().valid_elements(), 22);
}

// White and opaque is packed as the number that stands for no colour.
TEST(Exchange, OpaqueWhiteIsNoColour) {
  EXPECT_EQ(tr_encode_colour(giColour(255, 255, 255, 255)), NO_COLOUR);
  EXPECT_EQ(tr_decode_colour(NO_COLOUR), giColour(255, 255, 255, 255));
}

// Each exchange tells the host of one change; appending to an empty mesh fills it, which tells it once more.
TEST(Exchange, TellsTheHost) {
  struct Host : trControl {
    void control_update(int what) override { updates.push_back(what); }
    std::vector<int> take() { return std::exchange(updates, {}); }
    std::vector<int> updates;
  } host;
  CapturedOutput output;
  HostPool pool;
  host.action_append_triblock(pool);
  EXPECT_EQ(host.take(), (std::vector<int>{1, 1}));
  host.action_append_triblock(pool);
  EXPECT_EQ(host.take(), std::vector<int>{1});
  host.action_fill_triblock(pool);
  EXPECT_EQ(host.take(), std::vector<int>{1});
  giTriBlock out;
  host.triblock().get_giTriBlock(out);
  EXPECT_TRUE(host.updates.empty());
}

// A point that is not a number is a point like any other: it keeps its number and its triangles, there and back.
TEST(Exchange, PointsThatAreNotNumbersKeepTheirPlace) {
  CapturedOutput output;
  HostPool pool;
  const double odd = std::numeric_limits<double>::quiet_NaN();
  pool.set_point(0, giPoint3(odd, 1, 1));
  pool.set_point(3, giPoint3(1, odd, odd));
  trControl control;
  control.action_fill_triblock(pool);
  control.action_append_triblock(pool);
  const trTriBlock& block = control.triblock();
  EXPECT_EQ(block.valid_nodes(), 14);
  EXPECT_EQ(block.valid_elements(), 10);
  EXPECT_EQ(block.element(7)[2], 11);
  EXPECT_TRUE(std::isnan(block.point(11).y) && block.point(11).x == 1.0);
  giTriBlock out;
  control.triblock().get_giTriBlock(out);
  giNodeXYZ points;
  giTriArrcoFeature triangles;
  ASSERT_TRUE(out.find(points) && out.find(triangles));
  ASSERT_EQ(points.data()->points.count(), 14);
  ASSERT_EQ(triangles.data()->triangles.count(), 10);
  for (int k = 0; k < 14; ++k) {
    EXPECT_EQ(std::isnan(points.data()->points[k].x), k % 7 == 0) << k;
    EXPECT_EQ(std::isnan(points.data()->points[k].z), k % 7 == 3) << k;
  }
}
