// Brackets round edits: what is kept, what is taken back, what is said.

#include <gtest/gtest.h>

#include "control/control.h"
#include "support/captured_output.h"
#include "support/command_file.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

class Host : public trControl {
 public:
  void control_update(int what) override { updates.push_back(what); }
  using trControl::triangle_update;

  std::vector<int> updates;
};

constexpr const char* no_effect = "\n! Operation had no effect. No undo information stored. !\n";

void add_box(trControl& control, const char* name) {
  control.start_undo(name);
  add_to(control.triblock(), closed_box());
  control.finish_undo(1);
}

}  // namespace

TEST(UndoBracket, SuccessKeepsTheRecordAndMarksTheMesh) {
  CapturedOutput output;
  trControl control;
  add_box(control, "box");
  EXPECT_EQ(control.triblock_changed(), 1);
  EXPECT_EQ(control.undo_hist().current(), 0);
  EXPECT_EQ(control.triblock().undo, nullptr);
  EXPECT_EQ(output.take(), "");
  control.start_undo("nothing");
  control.finish_undo(1);
  EXPECT_EQ(output.take(), no_effect);
  EXPECT_EQ(control.undo_hist().current(), 0);
}

// A failed edit is gone for good: it can neither be seen nor done again.
TEST(UndoBracket, FailureTakesTheEditBackForGood) {
  CapturedOutput output;
  trControl control;
  add_box(control, "box");
  control.start_undo("half a deletion");
  for (int e = 1; e <= 6; ++e) control.triblock().delete_element(e);
  control.finish_undo(0);
  EXPECT_EQ(output.take(), " AUTO UNDOING ...\n");
  EXPECT_EQ(control.triblock().valid_elements(), 12);
  EXPECT_TRUE(is_sound(control.triblock()));
  EXPECT_EQ(control.undo_hist().last(), 0);
  control.action_redo(1);
  EXPECT_EQ(output.take(), "Nothing to redo.\n");
  control.start_undo("nothing");
  control.finish_undo(0);
  EXPECT_EQ(output.take(), std::string(no_effect) + " NOTHING TO UNDO\n");
}

// Without an open record there is nothing to close: the operation before stays as it is.
TEST(UndoBracket, FinishingTwiceDoesNotTouchTheOperationBefore) {
  CapturedOutput output;
  trControl control;
  control.finish_undo(0);
  EXPECT_EQ(output.take(), " NOTHING TO UNDO\n");
  add_box(control, "box");
  control.finish_undo(0);
  EXPECT_EQ(output.take(), " NOTHING TO UNDO\n");
  EXPECT_EQ(control.triblock().valid_elements(), 12);
  EXPECT_EQ(control.undo_hist().current(), 0);
}

// Steps are counted before the first one, and one more than there are records is taken, so that the history says that it has no more.
TEST(UndoBracket, StepsStopOneBeyondTheLastRecord) {
  CapturedOutput output;
  Host host;
  for (const char* name : {"one", "two", "three"}) add_box(host, name);
  host.action_undo(10);
  EXPECT_EQ(output.take(), "Nothing to undo.\n");
  EXPECT_EQ(host.undo_hist().current(), -1);
  EXPECT_EQ(host.triblock().element_count(), 1);
  EXPECT_EQ(host.updates, std::vector<int>{1});
  host.action_undo(1);
  EXPECT_EQ(output.take(), "Nothing to undo.\n");
  EXPECT_EQ(host.updates.size(), 1u);
  host.action_redo(2);
  EXPECT_EQ(output.take(), "");
  EXPECT_EQ(host.triblock().element_count(), 25);
  host.action_redo(2);
  EXPECT_EQ(output.take(), "Nothing to redo.\n");
  EXPECT_EQ(host.triblock().element_count(), 37);
  EXPECT_EQ(host.updates.size(), 3u);
}

// The same text for redo; and where there would have been a step to take, the host is told of an update although none was taken.
TEST(UndoBracket, SenselessCountsAreAnswered) {
  CapturedOutput output;
  Host host;
  add_box(host, "box");
  host.action_undo(0);
  EXPECT_EQ(output.take(), " Error: it does not make sense to undo 0 times!\n");
  EXPECT_EQ(host.updates, std::vector<int>{1});
  EXPECT_EQ(host.undo_hist().current(), 0);
  host.action_redo(-3);
  EXPECT_EQ(output.take(), " Error: it does not make sense to undo -3 times!\n");
  EXPECT_EQ(host.updates.size(), 1u);
}

TEST(UndoBracket, HistoryGoesToScreenAndFileAndClosesTheFile) {
  CapturedOutput output;
  trControl control;
  add_box(control, "make a box");
  CommandFile commands;
  control.action_history(commands.file());
  EXPECT_EQ(commands.text(),
            "Data not yet read from file.\n     1  make a box                    [8 nodes, 12 tri]");
  EXPECT_EQ(output.take(),
            "Data not yet read from file.\n     1  make a box                         [8 nodes, 12 elems]\n");
}

// After an edit all lists are out of date, save one whose own deletion the edit was.
TEST(UndoBracket, UpdatesMakeTheDefectListsStale) {
  CapturedOutput output;
  Host host;
  add_to(host.triblock(), closed_box());
  host.print_element_lists(1);
  EXPECT_EQ(host.sick_elems().stale() + host.thin_elems().stale() + host.overhang_elems().stale(), 0);
  EXPECT_EQ(host.overhang_elems().delete_elements(), 1);
  host.triangle_update(1);
  EXPECT_EQ(host.sick_elems().stale() + host.thin_elems().stale(), 2);
  EXPECT_EQ(host.overhang_elems().stale(), 0);
  host.triangle_update(1);
  EXPECT_EQ(host.overhang_elems().stale(), 1);
}
