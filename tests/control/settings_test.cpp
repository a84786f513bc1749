// The controller's settings: what they print, to the letter, and what they refuse.

#include <gtest/gtest.h>

#include "control/control.h"
#include "support/captured_output.h"
#include "support/marking_hook.h"
#include "support/shapes.h"

namespace {

// A host that overrides all there is to override.
class Host : public trControl {
 public:
  void control_update(int what) override { updates.push_back(what); }
  const ccWorkplane& active_workplane() const override { return plane; }
  giVector3 apply_workplane(const giVector3& v) const override { return v; }
  giPoint3 apply_workplane(const giPoint3& p) const override { return p; }

  std::vector<int> updates;
  ccWorkplane plane;
};

trControl made_before_main;

}  // namespace

TEST(ControlSettings, FlagsAreSwitchedAndPrinted) {
  CapturedOutput output;
  Host host;
  host.action_verbose(tr_flag_toggle);
  EXPECT_EQ(output.take(), "Verbose printing is ON\n");
  EXPECT_EQ(host.triblock().verbose, 1);
  host.action_verbose(tr_flag_on);
  EXPECT_EQ(output.take(), "Verbose printing is ON\n");
  host.action_trismooth(tr_flag_off);
  EXPECT_EQ(output.take(), "Trismooth is OFF\n");
  host.action_trismooth(static_cast<trFlagAction>(7));  // no action: as it was
  EXPECT_EQ(output.take(), "Trismooth is OFF\n");
  host.action_undomode(tr_flag_on);
  EXPECT_EQ(output.take(), "Full undo history is ON\n");
  host.action_undomode(tr_flag_off);
  EXPECT_EQ(output.take(), "Full undo history is OFF\n");
  EXPECT_EQ(host.undo_hist().full_history(), 0);
  host.action_preserve(tr_flag_on);
  EXPECT_EQ(output.take(), "Preserve is ON\n");
  EXPECT_TRUE(host.updates.empty());
}

// Attributes are not kept by halves: switching the setting off deletes those that the mesh has, and the host is told.
TEST(ControlSettings, PreserveOffDeletesTheAttributes) {
  CapturedOutput output;
  Host host;
  add_to(host.triblock(), closed_box());
  host.triblock().set_node_data_size(3);
  host.action_preserve(tr_flag_off);
  EXPECT_EQ(output.take(), "Node attributes deleted\nPreserve is OFF\n");
  EXPECT_EQ(host.triblock().node_data_size(), 0);
  EXPECT_EQ(host.updates, std::vector<int>{0});
}

// A change of the undo mode forgets the whole history.
TEST(ControlSettings, UndoModeForgetsTheHistory) {
  CapturedOutput output;
  trControl control;
  control.start_undo("box");
  add_to(control.triblock(), closed_box());
  control.finish_undo(1);
  EXPECT_EQ(control.undo_hist().current(), 0);
  control.action_undomode(tr_flag_toggle);
  EXPECT_EQ(control.undo_hist().current(), -1);
  EXPECT_EQ(control.undo_hist().last(), -1);
}

TEST(ControlSettings, StlRangeIsCheckedAndPrinted) {
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
  CapturedOutput output;
  trControl control;
  for (const Case& c : cases) {
    control.action_stlrange(c.start, c.stop);
    EXPECT_EQ(output.take(), c.text);
    EXPECT_EQ(control.stl_start(), c.kept_start);
    EXPECT_EQ(control.stl_stop(), c.kept_stop);
  }
}

TEST(ControlSettings, EveryTextPassesTheTranslation) {
  CapturedOutput output;
  const MarkingHook hook;
  trControl control;
  control.action_stlrange(3, 9);
  EXPECT_EQ(output.take(), "<Reading STL files: <triangles 3< to 9< will be read.\n");
  control.print_preserve();
  EXPECT_EQ(output.take(), "<Preserve< is <OFF\n");
  control.print_system_params(0);
  EXPECT_EQ(output.take(),
            "<System info...\n  <Verbose printing< is <OFF\n  <Full undo history< is <ON\n"
            "<  Formats:< .mnx< .mes< .tri< .stl< .ast< .kvx\n");
}

TEST(ControlSettings, SystemParametersInFull) {
  CapturedOutput output;
  made_before_main.print_system_params(1);
  EXPECT_EQ(output.take(),
            "System info...\n  Verbose printing is OFF\n  Full undo history is ON\n  Preserve is OFF\n  Trismooth is ON\n"
            "  Formats: .mnx .mes .tri .stl .ast .kvx\n");
}

TEST(ControlSettings, DefaultsOfTheDefectLists) {
  trControl control;
  EXPECT_EQ(control.small_elems().tolerance(), 0.0001);
  EXPECT_EQ(control.thin_elems().tolerance(), 0.0001);
  EXPECT_EQ(control.overlap_elems().tolerance(), 2.5);
  EXPECT_EQ(control.isect_elems().limit(), 1000);
  EXPECT_EQ(control.overhang_elems().up_vector(), giUnitVec3(gi_z_axis));
  EXPECT_EQ(control.stl_start(), 1);
  EXPECT_TRUE(control.active_workplane().workplane().origin().invalid());
  EXPECT_EQ(control.triblock_changed(), 0);
}
