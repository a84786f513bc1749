// Capping through the controller: what is said, what can be taken back, what is selected afterwards.

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "boundaries/bowls.h"
#include "control/control.h"
#include "support/block_snapshot.h"
#include "support/captured_output.h"
#include "support/interrupting_handler.h"
#include "support/validator.h"

namespace {

const Outline square = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};
const Outline crossing = {{0, 0}, {3, 3}, {3, 0}, {0, 2}};
const Outline flat = {{0, 0}, {1, 0}, {2, 0}, {1, 0}};  // has no plane
// A spike from above crosses the line between corners 2 and 8.
const Outline spiked = {{0, 0}, {6, 0}, {6, 3}, {6, 6}, {4, 6}, {3, 1}, {2, 6}, {0, 6}, {0, 3}};

constexpr const char* no_effect = "\n! Operation had no effect. No undo information stored. !\n";
constexpr const char* nothing = " NOTHING TO UNDO\n";

class Host : public trControl {
 public:
  explicit Host(const std::vector<Outline>& rims) {
    Shape shape;
    for (const Outline& rim : rims) append(shape, bowl(rim, moved_to(10.0 * static_cast<double>(updates_++))));
    add_to(triblock(), shape);
    updates_ = 0;
  }
  void control_update(int) override { ++updates_; }
  using trControl::save_selection_data;

  void select(const intcoSet& ids, int pick = -1) {
    double average = 0.0;
    select_cycles(ids, average, pick, intcoSet(), -1, -1);
  }
  void select_all() {
    for (int i = 0; i < cycles().num_boundaries(); ++i) select(intcoSet{i});
  }
  int updates() const { return updates_; }

 private:
  int updates_ = 0;
};

std::vector<int> numbers_in(const intcoSet& set) {
  std::vector<int> numbers;
  intcoSet::coIterator it(set);
  while (++it) numbers.push_back(it());
  return numbers;
}

std::vector<int> picked(const trCycle& cycle) {
  std::vector<int> nodes;
  for (int k = 0; k < cycle.valid_nodes.count(); ++k) nodes.push_back(cycle.valid_nodes[k]);
  return nodes;
}

}  // namespace

TEST(ActionCap, RefusesASpacingThatIsNotPositive) {
  for (const double spacing : {0.0, -1.0, std::nan("")}) {
    CapturedOutput output;
    Host host({square});
    host.select_all();
    const BlockSnapshot before(host.triblock());
    at2PlaneError error = at2_no_memory;
    EXPECT_EQ(host.action_cap(spacing, error, 0), 0);
    EXPECT_EQ(error, at2_no_memory) << "not touched";
    EXPECT_EQ(output.take(), " Error: invalid value for distance between nodes\n");
    EXPECT_EQ(before.difference(BlockSnapshot(host.triblock())), "");
    EXPECT_EQ(host.cycles().selection.count(), 1);
    EXPECT_EQ(host.action_cap_ext(spacing, 0, error), 0);
    EXPECT_EQ(error, at2_bad_length);
    EXPECT_EQ(output.take(), "");
    EXPECT_EQ(host.cycles().selection.count(), 1);
    EXPECT_EQ(host.updates(), 0);
  }
}

// The host opens the bracket, and the action closes it when nothing was tried; the host's own closing then finds none
// open and leaves the operation before alone.
TEST(ActionCap, ClosesTheBracketOfTheHostWhenNothingWasTried) {
  CapturedOutput output;
  Host host({square, square});
  at2PlaneError error = at2_success;
  host.start_undo("cap");
  host.select(intcoSet{0});
  EXPECT_EQ(host.action_cap(1.0, error, 0), 1);
  host.finish_undo(1);
  EXPECT_EQ(host.updates(), 1);
  EXPECT_EQ(host.cycles().num_boundaries(), 1);
  EXPECT_EQ(output.take(), "");
  host.start_undo("cap nothing");
  EXPECT_EQ(host.action_cap(1.0, error, 0), 0);
  EXPECT_EQ(host.triblock().undo, nullptr);
  host.finish_undo(0);
  EXPECT_EQ(output.take(), std::string(no_effect) + nothing + nothing);
  EXPECT_EQ(host.cycles().num_boundaries(), 1);
  EXPECT_EQ(host.undo_hist().current(), 0);
  EXPECT_EQ(host.updates(), 1);
  host.action_undo(1);
  EXPECT_EQ(host.cycles().num_boundaries(), 2);
}

// Interrupted, the bracket stays open for the host to close.
TEST(ActionCap, InterruptedLeavesTheBracketToTheHost) {
  CapturedOutput output;
  Host host({square, square});
  host.select_all();
  const BlockSnapshot before(host.triblock());
  host.start_undo("cap");
  at2PlaneError error = at2_success;
  {
    const InterruptingHandler handler(10);  // in the first hole
    EXPECT_EQ(host.action_cap(1.0, error, 0), 0);
    EXPECT_EQ(handler.interrupted_flag, 1);
  }
  EXPECT_NE(host.triblock().undo, nullptr);
  EXPECT_EQ(output.take(), "");
  host.finish_undo(0);
  EXPECT_EQ(before.difference(BlockSnapshot(host.triblock())), "");
}

TEST(ActionCapExt, EachHoleIsAStepOfItsOwn) {
  CapturedOutput output;
  Host host({square, round_outline(30), square});
  std::vector<BlockSnapshot> states;
  host.select_all();
  states.emplace_back(host.triblock());
  at2PlaneError error = at2_no_memory;
  EXPECT_EQ(host.action_cap_ext(0.5, 0, error), 1);
  EXPECT_EQ(error, at2_success);
  EXPECT_EQ(output.take(), "");
  EXPECT_EQ(host.cycles().num_boundaries(), 0);
  EXPECT_EQ(host.cycles().selection.count(), 0);
  EXPECT_EQ(host.updates(), 1);
  EXPECT_EQ(host.triblock_changed(), 1);
  ASSERT_EQ(host.undo_hist().current(), 2);
  host.action_history(nullptr);
  const std::string history = output.take();
  EXPECT_NE(history.find("  3  fill_hole"), std::string::npos) << history;
  const BlockSnapshot closed(host.triblock());
  for (int left = 1; left <= 3; ++left) {
    host.action_undo(1);
    EXPECT_EQ(host.cycles().num_boundaries(), left);
    EXPECT_TRUE(is_sound(host.triblock()));
  }
  EXPECT_EQ(states[0].difference(BlockSnapshot(host.triblock())), "");
  host.action_redo(3);
  EXPECT_EQ(closed.difference(BlockSnapshot(host.triblock())), "");
  EXPECT_TRUE(is_sound(host.triblock()));
}

// One failure gives its own error, several give 6; one that has no plane was never triangulated and counts as error 0,
// so that the next failure is still the first.
TEST(ActionCapExt, ErrorsOfFailures) {
  const struct {
    std::vector<Outline> rims;
    int error;
  } cases[] = {
      {{square, crossing, square}, at2_crossing_loops},
      {{square, crossing, crossing}, at2_several_failed},
      {{square, crossing, crossing, crossing}, at2_several_failed},
      {{square, flat}, at2_success},
      {{flat, crossing, square}, at2_crossing_loops},
      {{crossing, flat, square}, at2_several_failed},
      {{flat, flat, square}, at2_success},
  };
  for (const auto& c : cases) {
    CapturedOutput output;
    Host host(c.rims);
    host.select_all();
    at2PlaneError error = at2_no_memory;
    EXPECT_EQ(host.action_cap_ext(1.0, 0, error), 1);
    EXPECT_EQ(static_cast<int>(error), c.error);
    EXPECT_TRUE(is_sound(host.triblock()));
  }
  EXPECT_EQ(static_cast<int>(at2_several_failed), 6);
}

// The hole in the middle fails: it gets another number, and is selected with the picks that it had.
TEST(ActionCapExt, FailedHolesAreSelectedAgainWithTheirPicks) {
  CapturedOutput output;
  Host host({square, spiked, square, crossing});
  const int base = 5;  // nodes before the second bowl
  host.select_all();
  const std::vector<int> picks = {base + 9, base + 3, base + 4};  // the part with the spike
  for (const int node : picks) host.select(intcoSet{1}, node);
  ASSERT_EQ(picked(host.cycles().cycles[1]), picks);
  const int nodes = host.triblock().node_count();
  at2PlaneError error = at2_success;
  EXPECT_EQ(host.action_cap_ext(1.0, 0, error), 1);
  EXPECT_EQ(error, at2_several_failed);
  EXPECT_EQ(numbers_in(host.cycles().selection), (std::vector<int>{0, 1}));
  ASSERT_EQ(host.cycles().cycles.count(), 2);
  const trCycle& again = host.cycles().cycles[0];
  EXPECT_EQ(again.get_start_node(), base + 1);
  EXPECT_EQ(again.selected, 1);
  EXPECT_EQ(picked(again), picks);
  EXPECT_EQ(picked(host.cycles().cycles[1]), std::vector<int>());
  // The row made for the arc that failed was taken back.
  EXPECT_EQ(output.take(), std::string(" AUTO UNDOING ...\n") + no_effect + nothing);
  int in_squares = 0;
  for (int i = nodes; i < host.triblock().node_count(); ++i) in_squares += host.triblock().point(i).z == 0.0;
  EXPECT_EQ(in_squares, host.triblock().node_count() - nodes);
  EXPECT_EQ(host.undo_hist().current(), 1);
  EXPECT_TRUE(is_sound(host.triblock()));
  // Picked on the other side, the lower part can be capped.
  host.unselect_cycles(intcoSet{0, 1}, *std::make_unique<double>());
  host.select(intcoSet{0});
  for (const int node : {base + 9, base + 3, base + 1}) host.select(intcoSet{0}, node);
  EXPECT_EQ(host.action_cap_ext(1.0, 0, error), 1);
  EXPECT_EQ(error, at2_success);
}

// Where nothing was capped nothing is detected again: the selection stays.
TEST(ActionCapExt, NothingCappedKeepsTheSelection) {
  CapturedOutput output;
  Host host({crossing, flat});
  host.select_all();
  const BlockSnapshot before(host.triblock());
  at2PlaneError error = at2_success;
  EXPECT_EQ(host.action_cap_ext(1.0, 0, error), 0);
  EXPECT_EQ(error, at2_several_failed);
  EXPECT_EQ(before.difference(BlockSnapshot(host.triblock())), "");
  EXPECT_EQ(numbers_in(host.cycles().selection), (std::vector<int>{0, 1}));
  EXPECT_EQ(host.updates(), 0);
  EXPECT_EQ(host.undo_hist().current(), -1);
}

// Whenever it is stopped: either all is done, or all is as it was and nothing is left to undo.
TEST(ActionCapExt, InterruptionTakesAllBack) {
  CapturedOutput output;
  const std::vector<Outline> rims = {round_outline(20), crossing, spiked, square};
  int polls = 1;
  int taken_back = 0;
  for (int stop = 1; stop <= polls; ++stop) {
    Host host(rims);
    host.select_all();
    for (const int node : {21 + 5 + 9, 21 + 5 + 3, 21 + 5 + 1}) host.select(intcoSet{2}, node);
    const BlockSnapshot before(host.triblock());
    at2PlaneError error = at2_success;
    int result = 1;
    {
      const InterruptingHandler handler(stop);
      result = host.action_cap_ext(0.8, 0, error);
      if (handler.interrupted_flag) polls = stop + 1;
    }
    ASSERT_TRUE(is_sound(host.triblock())) << stop;
    if (result) continue;
    ASSERT_EQ(before.difference(BlockSnapshot(host.triblock())), "") << stop;
    ASSERT_EQ(host.undo_hist().current(), -1) << stop;
    ++taken_back;
  }
  EXPECT_GE(taken_back, 100);
}

// The part of a hole that was not picked is a hole again, found without a further edit.
TEST(ActionCapExt, TheRestOfAHoleIsFoundAgain) {
  CapturedOutput output;
  Host host({round_outline(20)});
  host.select_all();
  for (const int node : {1, 11, 5}) host.select(intcoSet{0}, node);
  at2PlaneError error = at2_success;
  EXPECT_EQ(host.action_cap_ext(0.3, 0, error), 1);
  EXPECT_EQ(error, at2_success);
  EXPECT_EQ(host.cycles().num_boundaries(), 1);
  EXPECT_EQ(host.cycles().selection.count(), 0);
}

// Each of two holes has its half of the progress, the second from 50 on.
TEST(ActionCapExt, EachHoleHasItsShareOfTheProgress) {
  CapturedOutput output;
  Host host({round_outline(200), round_outline(200)});
  host.select_all();
  InterruptingHandler handler;
  at2PlaneError error = at2_success;
  ASSERT_EQ(host.action_cap_ext(0.03, 0, error), 1);
  std::vector<double> begins;
  for (std::size_t k = 0; k < handler.messages.size(); ++k) {
    const bool is_begin = handler.messages[k] == "Triangulating" && (k == 0 || handler.messages[k - 1] != "Triangulating");
    if (is_begin) begins.push_back(handler.percents[k]);
  }
  ASSERT_EQ(begins.size(), 2u);
  EXPECT_NEAR(begins[0], 20.0, 1e-12);
  EXPECT_NEAR(begins[1], 70.0, 1e-12);
}

// Of several controllers each caps its own: cycles that another one's detection discarded are found again.
TEST(ActionCapExt, SeveralControllers) {
  CapturedOutput output;
  Host one({square, square});
  Host two({round_outline(9)});
  one.select_all();
  two.select_all();
  at2PlaneError error = at2_success;
  EXPECT_EQ(one.action_cap_ext(1.0, 0, error), 1);
  EXPECT_EQ(two.action_cap_ext(0.5, 0, error), 1);
  EXPECT_EQ(one.cycles().num_boundaries() + two.cycles().num_boundaries(), 0);
  EXPECT_TRUE(is_sound(one.triblock()));
  EXPECT_TRUE(is_sound(two.triblock()));
}

// Only the picks of what was saved are used: its cycles were discarded since. Start nodes that begin no cycle are
// passed over.
TEST(Selection, SavedAndRestored) {
  CapturedOutput output;
  Host host({square, square});
  host.select_all();
  for (const int node : {1, 3}) host.select(intcoSet{0}, node);
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
  EXPECT_EQ(numbers_in(host.cycles().selection), std::vector<int>{0});
  EXPECT_EQ(picked(host.cycles().cycles[0]), (std::vector<int>{1, 3}));
  EXPECT_EQ(host.cycles().cycles[1].selected, 0);
}
