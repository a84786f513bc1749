// The controller's settings and brackets round edits: what they print, to the letter, and what they refuse, keep and take back.

#include <gtest/gtest.h>

#include "control/host.h"
#include "support/command_file.h"
#include "support/marking_hook.h"

namespace {

trControl made_before_main;

void add_box(trControl& control, const char* name) {
  control.start_undo(name);
  add_to(control.triblock(), closed_box());
  control.finish_undo(1);
}

struct ControlSettings : testing::Test {
  CapturedOutput output;
  Host host;
};

using UndoBracket = ControlSettings;

}  // namespace

TEST_F(ControlSettings, FlagsAreSwitchedAndPrinted) {
  host.action_verbose(tr_flag_toggle);
  host.action_verbose(tr_flag_on);
  EXPECT_EQ(output.take(), "Verbose printing is ON\nVerbose printing is ON\n");
  EXPECT_EQ(host.triblock().verbose, 1);
  host.action_trismooth(tr_flag_off);
  host.action_trismooth(static_cast<trFlagAction>(7));  // no action: as it was
  EXPECT_EQ(output.take(), "Trismooth is OFF\nTrismooth is OFF\n");
  host.action_undomode(tr_flag_on);
  host.action_undomode(tr_flag_off);
  EXPECT_EQ(output.take(), "Full undo history is ON\nFull undo history is OFF\n");
  EXPECT_EQ(host.undo_hist().full_history(), 0);
  host.action_preserve(tr_flag_on);
  EXPECT_EQ(output.take(), "Preserve is ON\n");
  EXPECT_TRUE(host.updates.empty());
}

// Attributes are not kept by halves: switching the setting off deletes those that the mesh has, and the host is told.
TEST_F(ControlSettings, PreserveOffDeletesTheAttributes) {
  add_to(host.triblock(), closed_box());
  host.triblock().set_node_data_size(3);
  host.action_preserve(tr_flag_off);
  EXPECT_EQ(output.take(), "Node attributes deleted\nPreserve is OFF\n");
  EXPECT_EQ(host.triblock().node_data_size(), 0);
  EXPECT_EQ(host.updates, std::vector<int>{0});
}

// A change of the undo mode forgets the whole history.
TEST_F(ControlSettings, UndoModeForgetsTheHistory) {
  add_box(host, "box");
  EXPECT_EQ(host.undo_hist().current(), 0);
  host.action_undomode(tr_flag_toggle);
  EXPECT_EQ(host.undo_hist().last(), -1);
}

TEST_F(ControlSettings, StlRangeIsCheckedAndPrinted) {
  struct Case {
    int start, stop;
    const char* text;
    int kept_start, kept_stop;
  };
  const Case cases[] = {
      {3, 9, "Reading STL files: triangles 3 to 9 will be read.\n", 3, 9},
      {1, 9, "Reading STL files: only the first 9 triangles will be read.\n", 1, 9},
      {5, 0, "Reading STL files: the first 4 triangles will be skipped.\n", 5, 0},
      {1, 0, "Reading STL files: all triangles will be read.\n", 1, 0},
      {0, 0, " Error: STL_START must be at least 1\nReading STL files: all triangles will be read.\n", 1, 0},
      {5, 3, " Error: STL_STOP cannot be less than STL_START!\nReading STL files: all triangles will be read.\n", 1, 0},
      {0, -1,
       " Error: STL_START must be at least 1\n Error: STL_STOP cannot be less than STL_START!\n"
       "Reading STL files: all triangles will be read.\n",
       1, 0},
  };
  for (const Case& c : cases) {
    host.action_stlrange(c.start, c.stop);
    EXPECT_EQ(output.take(), c.text);
    EXPECT_EQ(host.stl_start(), c.kept_start);
    EXPECT_EQ(host.stl_stop(), c.kept_stop);
  }
}

TEST_F(ControlSettings, EveryTextPassesTheTranslation) {
  made_before_main.print_system_params(1);
  EXPECT_EQ(output.take(),
            "System info...\n  Verbose printing is OFF\n  Full undo history is ON\n  Preserve is OFF\n  Trismooth is ON\n"
            "  Formats: .mnx .mes .tri .stl .ast .kvx\n");
  EXPECT_EQ(made_before_main.isect_elems().limit(), 1000);
  EXPECT_EQ(made_before_main.overhang_elems().up_vector(), giUnitVec3(gi_z_axis));
  const MarkingHook hook;
  host.action_stlrange(3, 9);
  EXPECT_EQ(output.take(), "<Reading STL files: <triangles 3< to 9< will be read.\n");
  host.print_system_params(0);
  EXPECT_EQ(output.take(),
            "<System info...\n  <Verbose printing< is <OFF\n  <Full undo history< is <ON\n"
            "<  Formats:< .mnx< .mes< .tri< .stl< .ast< .kvx\n");
}

TEST_F(UndoBracket, SuccessKeepsTheRecordAndMarksTheMesh) {
  add_box(host, "box");
  EXPECT_EQ(host.triblock_changed(), 1);
  EXPECT_EQ(host.undo_hist().current(), 0);
  EXPECT_EQ(host.triblock().undo, nullptr);
  EXPECT_EQ(output.take(), "");
  host.start_undo("nothing");
  host.finish_undo(1);
  EXPECT_EQ(output.take(), no_effect);
  EXPECT_EQ(host.undo_hist().current(), 0);
}

// A failed edit is gone for good: it can neither be seen nor done again.
TEST_F(UndoBracket, FailureTakesTheEditBackForGood) {
  add_box(host, "box");
  host.start_undo("half a deletion");
  for (int e = 1; e <= 6; ++e) host.triblock().delete_element(e);
  host.finish_undo(0);
  EXPECT_EQ(output.take(), " AUTO UNDOING ...\n");
  EXPECT_EQ(host.valid_elements(), 12);
  EXPECT_TRUE(is_sound(host.triblock()));
  EXPECT_EQ(host.undo_hist().last(), 0);
  host.action_redo(1);
  EXPECT_EQ(output.take(), "Nothing to redo.\n");
  host.start_undo("nothing");
  host.finish_undo(0);
  EXPECT_EQ(output.take(), std::string(no_effect) + nothing_to_undo);
}

// Without an open record there is nothing to close: the operation before stays as it is.
TEST_F(UndoBracket, FinishingTwiceDoesNotTouchTheOperationBefore) {
  host.finish_undo(0);
  add_box(host, "box");
  host.finish_undo(0);
  EXPECT_EQ(output.take(), std::string(nothing_to_undo) + nothing_to_undo);
  EXPECT_EQ(host.valid_elements(), 12);
  EXPECT_EQ(host.undo_hist().current(), 0);
}

// Steps are counted before the first one, and one more than there are records is taken, so that the history says that it has no more.
TEST_F(UndoBracket, StepsStopOneBeyondTheLastRecord) {
  for (const char* name : {"one", "two", "three"}) add_box(host, name);
  const struct {
    int steps;  // below 0: to undo
    const char* text;
    int elements;
    std::size_t updates;
  } cases[] = {{-10, "Nothing to undo.\n", 1, 1}, {-1, "Nothing to undo.\n", 1, 1}, {2, "", 25, 2}, {2, "Nothing to redo.\n", 37, 3}};
  for (const auto& c : cases) {
    c.steps < 0 ? host.action_undo(-c.steps) : host.action_redo(c.steps);
    EXPECT_EQ(output.take(), c.text);
    EXPECT_EQ(host.triblock().element_count(), c.elements);
    EXPECT_EQ(host.updates.size(), c.updates);
  }
}

// The same text for redo; and where there would have been a step to take, the host is told of an update although none was taken.
TEST_F(UndoBracket, SenselessCountsAreAnswered) {
  add_box(host, "box");
  host.action_undo(0);
  EXPECT_EQ(output.take(), " Error: it does not make sense to undo 0 times!\n");
  EXPECT_EQ(host.updates, std::vector<int>{1});
  EXPECT_EQ(host.undo_hist().current(), 0);
  host.action_redo(-3);
  EXPECT_EQ(output.take(), " Error: it does not make sense to undo -3 times!\n");
  EXPECT_EQ(host.updates.size(), 1u);
}

TEST_F(UndoBracket, HistoryGoesToScreenAndFileAndClosesTheFile) {
  add_box(host, "make a box");
  CommandFile commands;
  host.action_history(commands.file());
  EXPECT_EQ(commands.text(), "Data not yet read from file.\n     1  make a box                    [8 nodes, 12 tri]");
  EXPECT_EQ(output.take(), "Data not yet read from file.\n     1  make a box                         [8 nodes, 12 elems]\n");
}
