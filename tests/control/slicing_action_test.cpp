// Slicing through the controller.

#include <gtest/gtest.h>

#include "control/control.h"
#include "support/block_snapshot.h"
#include "support/captured_output.h"
#include "support/interrupting_handler.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

class Host : public trControl {
 public:
  void control_update(int what) override { updates.push_back(what); }
  const ccWorkplane& active_workplane() const override { return plane; }

  std::vector<int> updates;
  ccWorkplane plane;
};

// The frame's z axis is the world's x.
ccWorkplane along_x(double origin) {
  return ccWorkplane(giWorkplane3(giPoint3(origin, 0, 0), giUnitVec3(gi_y_axis), giUnitVec3(gi_x_axis)));
}

bool uses_no_workplane(const trTriBlock& block) { return block.use_workplane == 0 && block.workplane.workplane().origin().invalid(); }

}  // namespace

TEST(SliceAction, TellsTheHostOnlyWhenSomethingWasCut) {
  CapturedOutput output;
  Host host;
  add_to(host.triblock(), sphere(8));
  host.small_elems().stale();
  host.action_slice(gi_z_axis, -2, 0);
  EXPECT_TRUE(host.updates.empty());
  host.action_slice(gi_z_axis, 0.1, 0);
  EXPECT_EQ(host.updates, std::vector<int>{1});
  EXPECT_EQ(host.cycles().num_boundaries(), 1) << "boundaries are detected anew";
  EXPECT_GT(host.triblock().box().min().z, 0.099);
  EXPECT_EQ(output.take(), "");
}

// The host's workplane holds for the slice alone, whatever the mesh had before and however the slice ends.
TEST(SliceAction, IsInTheHostsWorkplaneAndLeavesTheMeshInNone) {
  Host host;
  add_to(host.triblock(), closed_box(giPoint3(), 4, 2, 1));
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
    Host host;
    add_to(host.triblock(), bumpy_sphere(60));
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
    if (stop_at == 0) {
      const BlockSnapshot after(host.triblock());
      host.action_undo(1);
      ASSERT_EQ(before.difference(BlockSnapshot(host.triblock())), "");
      host.action_redo(1);
      ASSERT_EQ(after.difference(BlockSnapshot(host.triblock())), "");
    } else {
      ASSERT_EQ(before.difference(BlockSnapshot(host.triblock())), "") << "stopped at poll " << stop_at;
    }
    ASSERT_TRUE(is_sound(host.triblock()));
  }
  EXPECT_GE(polls, 150);
}

// Of each side the cut is filled; together they have the volume of the whole.
TEST(SliceAction, BothSidesFilledAddUpToTheWhole) {
  CapturedOutput output;
  const struct {
    Shape shape;
    gi_Axis axis;
    double value;
    int boundaries;
  } cases[] = {{bumpy_sphere(3000), gi_x_axis, 0.123, 1}, {torus(60, 30), gi_z_axis, 0.2, 2}, {torus(60, 30), gi_x_axis, -0.3, 2},
               {closed_box(), gi_y_axis, 0.5, 1},         {sphere(16), gi_z_axis, 0.0, 1}};
  for (const auto& c : cases) {
    double volume = 0.0;
    for (const int side : {0, 1}) {
      Host host;
      add_to(host.triblock(), c.shape);
      volume -= side == 0 ? host.triblock().volume() : 0.0;
      host.action_slice(c.axis, c.value, side);
      ASSERT_EQ(host.cycles().num_boundaries(), c.boundaries);
      intcoSet ids;
      for (int i = 0; i < c.boundaries; ++i) ids.add(i);
      double length = 0.0;
      host.select_cycles(ids, length, -1, intcoSet(), -1, -1);
      ASSERT_EQ(host.action_fill(0), 1);
      ASSERT_EQ(host.cycles().num_boundaries(), 0);
      volume += host.triblock().volume();
    }
    EXPECT_NEAR(volume, 0.0, 1e-12);
  }
}
