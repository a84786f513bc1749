// Filling and slicing through the controller.

#include <gtest/gtest.h>

#include "control/host.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"

namespace {

// The frame's z axis is the world's x.
ccWorkplane along_x(double origin) {
  return ccWorkplane(giWorkplane3(giPoint3(origin, 0, 0), giUnitVec3(gi_y_axis), giUnitVec3(gi_x_axis)));
}

bool uses_no_workplane(const trTriBlock& block) { return block.use_workplane == 0 && block.workplane.workplane().origin().invalid(); }

}  // namespace

TEST(FillAction, FillsTheSelectedAndCanBeTakenBackToTheBit) {
  CapturedOutput output;
  Host host(punctured_sphere(8, 3));
  const int star = host.triblock().element(90)[0];
  for (int e : entries(host.triblock().node(star).elements)) host.triblock().delete_element(e);
  const int holes = host.boundaries();
  ASSERT_GE(holes, 3);
  const BlockSnapshot open(host.triblock());
  host.select_all();
  double length = 0.0;
  EXPECT_EQ(host.select_cycles({0}, length, -1, intcoSet(), -1, -1), 0);
  EXPECT_GT(length, 0.0);
  EXPECT_EQ(host.unselect_cycles({1}, length), 1);
  EXPECT_EQ(host.cycles().cycles[1].selected, 0);
  host.start_undo("fill");
  EXPECT_EQ(host.action_fill(0), 1);
  host.finish_undo(1);
  EXPECT_EQ(host.updates, std::vector<int>{1});
  EXPECT_EQ(host.boundaries(), 1);
  const BlockSnapshot filled(host.triblock());
  host.action_undo(1);
  EXPECT_EQ(host.difference(open), "");
  EXPECT_EQ(host.boundaries(), holes);
  host.action_redo(1);
  EXPECT_EQ(host.difference(filled), "");
  EXPECT_TRUE(is_sound(host.triblock()));
  host.select({0});
  EXPECT_EQ(host.action_fill(1), 1);
  EXPECT_EQ(host.cycles().num_edges(), 0);
  EXPECT_EQ(output.take(), "");
  const MarkingHook hook;
  host.updates.clear();
  EXPECT_EQ(host.action_fill(0), 0);
  EXPECT_EQ(output.take(), "< Error while filling holes\n");
  EXPECT_TRUE(host.updates.empty());
}

// Two picks choose the shorter arc. Moving the mesh keeps boundaries, selection and picks: what was picked before is filled after.
TEST(FillAction, SelectionAndPicksOutliveATransform) {
  for (const bool is_moved : {false, true}) {
    Host host(cone_fan(12));
    for (int pick : {-1, 5, 9}) EXPECT_EQ(host.select({0}, pick), 0);
    const giXform3 move = giXform3::rotation(giVector3(0, 0, 1), giVector3(1, 2, 3)).then(giXform3::translation(giVector3(7, 8, 9)));
    if (is_moved) host.action_transform_triangles(move);
    EXPECT_EQ(host.cycles().detected(), 1);
    EXPECT_EQ(host.cycles().cycles[0].selected, 1);
    EXPECT_EQ(host.action_fill(0), 1);
    EXPECT_EQ(host.valid_elements(), 12 + 5);
    EXPECT_EQ(host.cycles().num_edges(), 9);
    EXPECT_EQ(host.updates.size(), is_moved ? 2u : 1u);
  }
}

TEST(SliceAction, TellsTheHostOnlyWhenSomethingWasCut) {
  CapturedOutput output;
  Host host(sphere(8));
  host.action_slice(gi_z_axis, -2, 0);
  EXPECT_TRUE(host.updates.empty());
  host.action_slice(gi_z_axis, 0.1, 0);
  EXPECT_EQ(host.updates, std::vector<int>{1});
  EXPECT_EQ(host.boundaries(), 1) << "boundaries are detected anew";
  EXPECT_GT(host.triblock().box().min().z, 0.099);
  EXPECT_EQ(output.take(), "");
}

// The host's workplane holds for the slice alone, whatever the mesh had before and however the slice ends.
TEST(SliceAction, IsInTheHostsWorkplaneAndLeavesTheMeshInNone) {
  Host host(closed_box(giPoint3(), 4, 2, 1));
  host.plane = along_x(1);
  host.triblock().set_workplane(along_x(77));
  host.triblock().enable_workplane(1);
  host.action_slice(gi_z_axis, 0.5, 1);
  EXPECT_TRUE(uses_no_workplane(host.triblock()));
  EXPECT_EQ(host.triblock().box().max(), giPoint3(1.5, 2, 1));
  host.action_slice(gi_z_axis, 99, 1);  // nothing to cut
  EXPECT_TRUE(uses_no_workplane(host.triblock()));
  InterruptingHandler handler(20);
  host.updates.clear();
  host.action_slice(gi_z_axis, 0, 1);
  EXPECT_TRUE(uses_no_workplane(host.triblock()));
  EXPECT_TRUE(host.updates.empty());
}

// At whatever poll the host asks for a stop, taking the open record back restores the mesh.
TEST(SliceAction, CanBeTakenBackToTheBitWhetherDoneOrInterrupted) {
  CapturedOutput output;
  int polls = 0;
  for (int stop_at = 0; stop_at == 0 || stop_at <= polls; stop_at += stop_at < 20 ? 1 : 7) {
    Host host(bumpy_sphere(60));
    host.triblock().set_node_data_size(2);
    for (int e = 1; e < host.triblock().element_count(); e += 3) host.triblock().set_element_colour(e, e);
    const BlockSnapshot before(host.triblock());
    host.start_undo("slice");
    {
      InterruptingHandler handler(stop_at);
      host.action_slice(gi_y_axis, 0.2, 0);
      if (stop_at == 0) polls = handler.polls;
    }
    host.finish_undo(stop_at == 0);
    const BlockSnapshot after(host.triblock());
    if (stop_at == 0) host.action_undo(1);
    ASSERT_EQ(host.difference(before), "") << "stopped at poll " << stop_at;
    if (stop_at == 0) host.action_redo(1);
    ASSERT_EQ(host.difference(after), "");
    ASSERT_TRUE(is_sound(host.triblock()));
  }
  EXPECT_GE(polls, 150);
}

// Of each side the cut is filled; together they have the volume of the whole.
TEST(SliceAction, BothSidesFilledAddUpToTheWhole) {
  const struct {
    Shape shape;
    gi_Axis axis;
    double value;
    int boundaries;
  } cases[] = {{bumpy_sphere(3000), gi_x_axis, 0.123, 1}, {torus(60, 30), gi_z_axis, 0.2, 2}, {torus(60, 30), gi_x_axis, -0.3, 2},
               {closed_box(), gi_y_axis, 0.5, 1},         {sphere(16), gi_z_axis, 0.0, 1}};
  for (const auto& c : cases) {
    double volume = -BlockOf(c.shape).volume();
    for (const int side : {0, 1}) {
      Host host(c.shape);
      host.action_slice(c.axis, c.value, side);
      ASSERT_EQ(host.boundaries(), c.boundaries);
      host.select_all();
      ASSERT_EQ(host.action_fill(0), 1);
      ASSERT_EQ(host.boundaries(), 0);
      volume += host.triblock().volume();
    }
    EXPECT_NEAR(volume, 0.0, 1e-12);
  }
}
