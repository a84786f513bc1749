// Selecting and filling boundaries through the controller.

#include <gtest/gtest.h>

#include "control/control.h"
#include "support/block_snapshot.h"
#include "support/captured_output.h"
#include "support/marking_hook.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

class Host : public trControl {
 public:
  void control_update(int what) override { updates.push_back(what); }
  std::vector<int> updates;
};

}  // namespace

TEST(FillAction, SaysWhenNothingWasFilled) {
  CapturedOutput output;
  MarkingHook hook;
  Host host;
  add_to(host.triblock(), punctured_sphere(6, 2));
  EXPECT_EQ(host.action_fill(0), 0);
  EXPECT_EQ(output.take(), "< Error while filling holes\n");
  EXPECT_TRUE(host.updates.empty());
}

TEST(FillAction, FillsTheSelectedAndCanBeTakenBackToTheBit) {
  CapturedOutput output;
  Host host;
  add_to(host.triblock(), punctured_sphere(8, 3));
  const int star = host.triblock().element(90)[0];
  for (int e = 1; e < host.triblock().element_count(); ++e) {
    const trElement& t = host.triblock().element(e);
    if (t[0] == star || t[1] == star || t[2] == star) host.triblock().delete_element(e);
  }
  const int holes = host.cycles().num_boundaries();
  ASSERT_GE(holes, 3);
  const BlockSnapshot open(host.triblock());
  intcoSet ids;
  for (int i = 0; i < holes; ++i) ids.add(i);
  double length = 0.0;
  EXPECT_EQ(host.select_cycles(ids, length, -1, intcoSet(), -1, -1), 0);
  EXPECT_GT(length, 0.0);
  EXPECT_EQ(host.unselect_cycles({1}, length), 1);
  EXPECT_EQ(host.cycles().cycles[1].selected, 0);
  host.start_undo("fill");
  EXPECT_EQ(host.action_fill(0), 1);
  host.finish_undo(1);
  EXPECT_EQ(host.updates, std::vector<int>{1});
  EXPECT_EQ(host.cycles().num_boundaries(), 1);
  const BlockSnapshot filled(host.triblock());
  host.action_undo(1);
  EXPECT_EQ(open.difference(BlockSnapshot(host.triblock())), "");
  EXPECT_EQ(host.cycles().num_boundaries(), holes);
  host.action_redo(1);
  EXPECT_EQ(filled.difference(BlockSnapshot(host.triblock())), "");
  EXPECT_TRUE(is_sound(host.triblock()));
  host.select_cycles({0}, length, -1, intcoSet(), -1, -1);
  EXPECT_EQ(host.action_fill(1), 1);
  EXPECT_EQ(host.cycles().num_edges(), 0);
  EXPECT_EQ(output.take(), "");
}

// The single pick is tried first, then the set, then the edge; two picks choose the shorter arc.
TEST(FillAction, PicksChooseThePartThatIsFilled) {
  Host host;
  add_to(host.triblock(), cone_fan(12));
  double length = 0.0;
  for (int pick : {-1, 5, 9}) EXPECT_EQ(host.select_cycles({0}, length, pick, intcoSet(), -1, -1), 0);
  EXPECT_EQ(host.action_fill(0), 1);
  EXPECT_EQ(host.triblock().valid_elements(), 12 + 5);
  EXPECT_EQ(host.cycles().num_edges(), 9);
}

// Moving the mesh keeps boundaries, selection and picks: what was picked before is filled after.
TEST(FillAction, SelectionAndPicksOutliveATransform) {
  Host host;
  add_to(host.triblock(), cone_fan(12));
  double length = 0.0;
  for (int pick : {-1, 5, 9}) host.select_cycles({0}, length, pick, intcoSet(), -1, -1);
  host.action_transform_triangles(giXform3::rotation(giVector3(0, 0, 1), giVector3(1, 2, 3)).then(giXform3::translation(giVector3(7, 8, 9))));
  EXPECT_EQ(host.cycles().detected(), 1);
  ASSERT_EQ(host.cycles().selection.count(), 1);
  ASSERT_EQ(host.cycles().cycles.count(), 1);
  const trCycle& cycle = host.cycles().cycles[0];
  EXPECT_EQ(cycle.selected, 1);
  EXPECT_EQ((std::vector<int>{cycle.picks[0], cycle.picks[1], cycle.picks[2]}), (std::vector<int>{5, 9, 5}));
  ASSERT_EQ(cycle.valid_nodes.count(), 2);
  EXPECT_EQ(host.action_fill(0), 1);
  EXPECT_EQ(host.triblock().valid_elements(), 12 + 5);
  EXPECT_EQ(host.cycles().num_edges(), 9);
  EXPECT_EQ(host.updates, (std::vector<int>{1, 1}));
}
