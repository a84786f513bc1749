// Real models: every hole is filled, every hole that lies flat is capped, nothing else comes to harm, and undo brings back what was there.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "boundaries/cycle_it.h"
#include "control/host.h"
#include "mesh/containers.h"

namespace {

namespace fs = std::filesystem;

// What tells whether closing did harm.
struct State {
  int sick_edges = 0;
  int boundaries = 0;
  int edges = 0;
};

State state_of(Host& control) {
  trEdgeConnectioncoPageArr sick;
  control.triblock().find_sick(sick, 0);
  return {sick.count(), control.cycles().num_boundaries(), control.cycles().num_edges()};
}

// The boundaries that are plain holes: those that share no node with themselves or with another. A fan over a boundary that passes a node
// twice has four triangles on the edge from there to its centre, and what closes two boundaries through the same nodes may coincide.
intcoSet plain_holes(Host& control) {
  const int count = control.cycles().num_boundaries();
  std::map<int, int> uses;
  for (int k = 0; k < count; ++k) {
    for (trCycleIT it(&control.cycles().cycles[k]); ++it;) ++uses[it.s_node()];
  }
  intcoSet chosen;
  for (int k = 0; k < count; ++k) {
    bool is_plain = true;
    for (trCycleIT it(&control.cycles().cycles[k]); ++it;) is_plain = is_plain && uses[it.s_node()] == 1;
    if (is_plain) chosen.add(k);
  }
  return chosen;
}

class CorpusClosing : public testing::Test {
 protected:
  // Calls `look` for every model that has boundaries, its exact copies merged and neighbours directed alike: where they are not, edges
  // count as free that have two triangles.
  template <class Look>
  void for_each_open_model(Look look) {
    const char* folder = std::getenv("MENDEX_CORPUS");
    if (folder == nullptr || *folder == '\0') GTEST_SKIP() << "MENDEX_CORPUS names no folder of models";
    int models = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
      if (entry.path().extension() != ".stl") continue;
      SCOPED_TRACE(entry.path().filename());
      Host control;
      control.action_read(utString(entry.path().string().c_str()));
      control.triblock().unduplicate_nodes(std::numeric_limits<double>::denorm_min());
      control.triblock().cancelling(1);
      control.triblock().repeating();
      control.action_orient();
      if (control.cycles().num_boundaries() == 0) continue;
      look(control);
      ++models;
      output.take();
    }
    EXPECT_GE(models, 10);
  }

  CapturedOutput output;
};

}  // namespace

TEST_F(CorpusClosing, FillingClosesEveryBoundaryItIsGiven) {
  for_each_open_model([](Host& control) {
    const State before = state_of(control);
    const BlockSnapshot snapshot(control.triblock());
    const intcoSet chosen = plain_holes(control);
    control.select(chosen);
    control.start_undo("fill");
    const int is_filled = control.action_fill(0);
    control.finish_undo(1);
    EXPECT_EQ(is_filled, chosen.count() != 0);
    EXPECT_TRUE(is_sound(control.triblock()));
    const State after = state_of(control);
    EXPECT_EQ(after.boundaries, before.boundaries - chosen.count());
    EXPECT_TRUE(after.sick_edges == 0 || before.sick_edges != 0);
    control.action_undo(1);
    EXPECT_EQ(control.difference(snapshot), "");
    EXPECT_EQ(control.cycles().num_edges(), before.edges);
  });
}

TEST_F(CorpusClosing, CappingClosesWhatItSaysAndLeavesTheRest) {
  for_each_open_model([](Host& control) {
    const State before = state_of(control);
    const BlockSnapshot snapshot(control.triblock());
    double spacing = 0.0;
    control.select_cycles(intcoSet{0}, spacing, -1, intcoSet(), -1, -1);
    control.select(plain_holes(control));
    at2PlaneError error = at2_success;
    const int is_capped = control.action_cap_ext(spacing, 1, error);
    EXPECT_TRUE(is_sound(control.triblock()));
    const State after = state_of(control);
    EXPECT_TRUE(after.sick_edges == 0 || before.sick_edges != 0);
    EXPECT_EQ(is_capped, after.boundaries < before.boundaries);
    control.action_undo(before.boundaries);
    EXPECT_EQ(control.difference(snapshot), "");
  });
}
