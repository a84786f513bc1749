// Capping through the controller: what is said, what can be taken back, what is selected afterwards.

#include <gtest/gtest.h>

#include "boundaries/bowls.h"
#include "control/host.h"
#include "support/interrupting_handler.h"

namespace {

const Outline square = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
const Outline crossing = {{0, 0}, {3, 3}, {3, 0}, {0, 2}};
const Outline flat = {{0, 0}, {1, 0}, {2, 0}, {1, 0}};  // has no plane
// A spike from above crosses the line between corners 2 and 8.
const Outline spiked = {{0, 0}, {6, 0}, {6, 3}, {6, 6}, {4, 6}, {3, 1}, {2, 6}, {0, 6}, {0, 3}};

Shape bowls(const std::vector<Outline>& rims) {
  Shape shape;
  for (std::size_t k = 0; k < rims.size(); ++k) append(shape, bowl(rims[k], moved_to(10.0 * static_cast<double>(k))));
  return shape;
}

// Bowls side by side with all rims selected.
struct Bowls : Host {
  explicit Bowls(const std::vector<Outline>& rims) : Host(bowls(rims)), before(triblock()) { select_all(); }

  void pick(int cycle, const std::vector<int>& nodes) {
    for (const int node : nodes) select({cycle}, node);
  }
  int cap(double spacing) { return action_cap(spacing, error, 0); }
  int cap_each(double spacing) { return action_cap_ext(spacing, 0, error); }
  std::vector<int> selected() const { return numbers_in(cycles().selection); }

  BlockSnapshot before;
  at2PlaneError error = at2_no_memory;
  CapturedOutput output;
};

std::vector<int> picked(const trCycle& cycle) {
  std::vector<int> nodes;
  for (int k = 0; k < cycle.valid_nodes.count(); ++k) nodes.push_back(cycle.valid_nodes[k]);
  return nodes;
}

}  // namespace

TEST(ActionCap, RefusesASpacingThatIsNotPositive) {
  for (const double spacing : {0.0, -1.0, std::nan("")}) {
    Bowls host({square});
    EXPECT_EQ(host.cap(spacing), 0);
    EXPECT_EQ(host.error, at2_no_memory) << "not touched";
    EXPECT_EQ(host.output.take(), " Error: invalid value for distance between nodes\n");
    EXPECT_EQ(host.cap_each(spacing), 0);
    EXPECT_EQ(host.error, at2_bad_length);
    EXPECT_EQ(host.output.take(), "");
    EXPECT_EQ(host.difference(host.before), "");
    EXPECT_EQ(host.selected().size(), 1u);
    EXPECT_TRUE(host.updates.empty());
  }
}

// The host opens the bracket, and the action closes it when nothing was tried; the host's own closing then finds none
// open and leaves the operation before alone.
TEST(ActionCap, ClosesTheBracketOfTheHostWhenNothingWasTried) {
  Bowls host({square, square});
  host.cycles().selection = {0};
  host.start_undo("cap");
  EXPECT_EQ(host.cap(1.0), 1);
  host.finish_undo(1);
  EXPECT_EQ(host.updates.size(), 1u);
  EXPECT_EQ(host.boundaries(), 1);
  EXPECT_EQ(host.output.take(), "");
  host.start_undo("cap nothing");
  EXPECT_EQ(host.cap(1.0), 0);
  EXPECT_EQ(host.triblock().undo, nullptr);
  host.finish_undo(0);
  EXPECT_EQ(host.output.take(), std::string(no_effect) + nothing_to_undo + nothing_to_undo);
  EXPECT_EQ(host.boundaries(), 1);
  EXPECT_EQ(host.undo_hist().current(), 0);
  EXPECT_EQ(host.updates.size(), 1u);
  host.action_undo(1);
  EXPECT_EQ(host.boundaries(), 2);
}

// Interrupted, the bracket stays open for the host to close.
TEST(ActionCap, InterruptedLeavesTheBracketToTheHost) {
  Bowls host({square, square});
  host.start_undo("cap");
  {
    const InterruptingHandler handler(10);  // in the first hole
    EXPECT_EQ(host.cap(1.0), 0);
    EXPECT_EQ(handler.interrupted_flag, 1);
  }
  EXPECT_NE(host.triblock().undo, nullptr);
  EXPECT_EQ(host.output.take(), "");
  host.finish_undo(0);
  EXPECT_EQ(host.difference(host.before), "");
}

// Each with its share of the progress, of which the triangles begin at two fifths.
TEST(ActionCapExt, EachHoleIsAStepOfItsOwn) {
  Bowls host({square, round_outline(30), square});
  InterruptingHandler handler;
  EXPECT_EQ(host.cap_each(0.25), 1);
  EXPECT_EQ(host.error, at2_success);
  EXPECT_EQ(host.output.take(), "");
  EXPECT_EQ(host.boundaries(), 0);
  EXPECT_TRUE(host.selected().empty());
  EXPECT_EQ(host.updates.size(), 1u);
  EXPECT_EQ(host.triblock_changed(), 1);
  std::vector<double> begins;
  for (std::size_t k = 1; k < handler.messages.size(); ++k) {
    if (handler.messages[k] == "Triangulating" && handler.messages[k - 1] != "Triangulating") begins.push_back(handler.percents[k]);
  }
  ASSERT_EQ(begins.size(), 3u);
  EXPECT_EQ(handler.default_feedback_message, utString("Filling Holes"));
  EXPECT_TRUE(std::is_sorted(handler.percents.begin(), handler.percents.end()));
  for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(begins[k], (static_cast<double>(k) + 0.4) * 100 / 3, 1e-9);
  ASSERT_EQ(host.undo_hist().current(), 2);
  host.action_history(nullptr);
  EXPECT_NE(host.output.take().find("  3  fill_hole"), std::string::npos);
  const BlockSnapshot closed(host.triblock());
  for (int left = 1; left <= 3; ++left) {
    host.action_undo(1);
    EXPECT_EQ(host.boundaries(), left);
  }
  EXPECT_EQ(host.difference(host.before), "");
  host.action_redo(3);
  EXPECT_EQ(host.difference(closed), "");
  EXPECT_TRUE(is_sound(host.triblock()));
}

// One failure gives its own error, several give 6; one that has no plane was never triangulated and counts as error 0,
// so that the next failure is still the first.
TEST(ActionCapExt, ErrorsOfFailures) {
  const std::pair<std::vector<Outline>, int> cases[] = {
      {{square, crossing, square}, at2_crossing_loops},
      {{square, crossing, crossing}, 6},
      {{square, crossing, crossing, crossing}, 6},
      {{square, flat}, at2_success},
      {{flat, crossing, square}, at2_crossing_loops},
      {{crossing, flat, square}, 6},
      {{flat, flat, square}, at2_success},
  };
  for (const auto& [rims, error] : cases) {
    Bowls host(rims);
    EXPECT_EQ(host.cap_each(1.0), 1);
    EXPECT_EQ(static_cast<int>(host.error), error);
    EXPECT_TRUE(is_sound(host.triblock()));
  }
}

// The hole in the middle fails: it gets another number, and is selected with the picks that it had.
TEST(ActionCapExt, FailedHolesAreSelectedAgainWithTheirPicks) {
  Bowls host({square, spiked, square, crossing});
  const int base = 5;  // nodes before the second bowl
  const std::vector<int> picks = {base + 9, base + 3, base + 4};  // the part with the spike
  host.pick(1, picks);
  ASSERT_EQ(picked(host.cycles().cycles[1]), picks);
  const int nodes = host.triblock().node_count();
  EXPECT_EQ(host.cap_each(1.0), 1);
  EXPECT_EQ(host.error, at2_several_failed);
  EXPECT_EQ(host.selected(), (std::vector<int>{0, 1}));
  ASSERT_EQ(host.cycles().cycles.count(), 2);
  const trCycle& again = host.cycles().cycles[0];
  EXPECT_EQ(again.get_start_node(), base + 1);
  EXPECT_EQ(again.selected, 1);
  EXPECT_EQ(picked(again), picks);
  EXPECT_EQ(picked(host.cycles().cycles[1]), std::vector<int>());
  // The row made for the arc that failed was taken back.
  EXPECT_EQ(host.output.take(), std::string(" AUTO UNDOING ...\n") + no_effect + nothing_to_undo);
  for (int i = nodes; i < host.triblock().node_count(); ++i) EXPECT_EQ(host.triblock().point(i).z, 0.0);
  EXPECT_EQ(host.undo_hist().current(), 1);
  EXPECT_TRUE(is_sound(host.triblock()));
  // Picked on the other side, the lower part can be capped.
  double length = 0.0;
  host.unselect_cycles(intcoSet{0, 1}, length);
  host.select({0});
  host.pick(0, {base + 9, base + 3, base + 1});
  EXPECT_EQ(host.cap_each(1.0), 1);
  EXPECT_EQ(host.error, at2_success);
}

// Where nothing was capped nothing is detected again: the selection stays.
TEST(ActionCapExt, NothingCappedKeepsTheSelection) {
  Bowls host({crossing, flat});
  EXPECT_EQ(host.cap_each(1.0), 0);
  EXPECT_EQ(host.error, at2_several_failed);
  EXPECT_EQ(host.difference(host.before), "");
  EXPECT_EQ(host.selected(), (std::vector<int>{0, 1}));
  EXPECT_TRUE(host.updates.empty());
  EXPECT_EQ(host.undo_hist().current(), -1);
}

// Whenever it is stopped: either all is done, or all is as it was and nothing is left to undo.
TEST(ActionCapExt, InterruptionTakesAllBack) {
  int taken_back = 0;
  bool is_stopped = true;
  for (int stop = 1; is_stopped; ++stop) {
    Bowls host({round_outline(20), crossing, spiked, square});
    host.pick(2, {21 + 5 + 9, 21 + 5 + 3, 21 + 5 + 1});
    int result = 1;
    {
      const InterruptingHandler handler(stop);
      result = host.cap_each(0.8);
      is_stopped = handler.interrupted_flag;
    }
    ASSERT_TRUE(is_sound(host.triblock())) << stop;
    if (result) continue;
    ASSERT_EQ(host.difference(host.before), "") << stop;
    ASSERT_EQ(host.undo_hist().current(), -1) << stop;
    ++taken_back;
  }
  EXPECT_GE(taken_back, 100);
}

// Only the picks of what was saved are used: its cycles were discarded since. Start nodes that begin no cycle are
// passed over.
TEST(Selection, SavedAndRestored) {
  Bowls host({square, square});
  host.pick(0, {1, 3});
  intintcoTable start_nodes;
  trCycleArray saved(&host.triblock());
  host.save_selection_data(intcoSet{0, 7, -1}, start_nodes, saved);
  EXPECT_EQ(start_nodes.count(), 1);
  EXPECT_EQ(start_nodes.value(1, -1), 0);
  start_nodes.set(2, 0);
  start_nodes.set(6, 99);
  host.cycles().clear_selection_list();
  host.triblock().alter(0);
  host.restore_selection_data(start_nodes, saved);
  EXPECT_EQ(host.selected(), std::vector<int>{0});
  EXPECT_EQ(picked(host.cycles().cycles[0]), (std::vector<int>{1, 3}));
  EXPECT_EQ(host.cycles().cycles[1].selected, 0);
}
