// All actions of the controller in random order, each in a bracket of its own, with random walks of undo and redo between them: every
// state that was left must come back to the last bit. Some actions are interrupted, and then taken back by their bracket; now and then
// the mesh is written in some format and goes on as it was read back.
//
// MENDEX_WALK_STEPS: the actions made, 1500 by default.

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <map>

#include "control/control.h"
#include "format_input.h"
#include "support/block_snapshot.h"
#include "support/captured_output.h"
#include "support/interrupting_handler.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

class ActionWalk {
 public:
  explicit ActionWalk(std::uint64_t seed) : random_(seed) {
    Shape shapes[] = {exploded(punctured_sphere(6, 3)), punctured_sphere(8, 4), bumpy_sphere(200), exploded(flat_sheet(4, 3))};
    Shape& shape = shapes[random_.below(4)];
    for (giPoint3& p : shape.points) p = p + giVector3(jitter(), jitter(), jitter());
    add_to(control_.triblock(), shape);
    trTriBlock& block = control_.triblock();
    if (random_.one_in(3)) block.set_element_colour(1, 77);
    has_attributes_ = random_.one_in(3);
    if (has_attributes_) block.set_node_data_size(2);
    for (int i = 1; i < block.node_count() && has_attributes_; ++i) {
      block.node_data(i).weight = random_.below(4);
      block.node_data(i).values[1] = random_.unit();
    }
    states_.emplace_back(control_.triblock());
  }

  void act() {
    const NamedAction& action = actions[static_cast<std::size_t>(random_.below(static_cast<int>(std::size(actions))))];
    const bool brackets_itself = std::string(action.name) == "cap_ext";
    // The new nodes of a cap drop all attributes for good.
    if (has_attributes_ && std::string(action.name).rfind("cap", 0) == 0) return;
    const int before = control_.undo_hist().current(), slots = slot_count();
    const int stop_at = random_.one_in(6) ? random_.between(1, 60) : 0;
    bool is_interrupted = false;
    if (!brackets_itself) control_.start_undo(action.name);
    {
      InterruptingHandler handler(stop_at);
      (this->*action.act)();
      is_interrupted = stop_at > 0 && handler.polls >= stop_at;
    }
    if (!brackets_itself) control_.finish_undo(!is_interrupted);
    ++times[action.name];
    states_.erase(states_.begin() + before + 2, states_.end());
    const int made = control_.undo_hist().current() - before;
    const int records = control_.undo_hist().last() - before;  // more where an action took its own brackets back
    const BlockSnapshot now(control_.triblock());
    // Of an action in several brackets only the last state is known.
    known_.resize(static_cast<std::size_t>(before) + 2);
    for (int k = 1; k <= records; ++k) {
      states_.push_back(now);
      known_.push_back(k == made);
    }
    BlockSnapshot& here = states_[static_cast<std::size_t>(before) + 1];
    if (made == 0 && only_cuts(action.name, slots)) here = now;
    if (made == 0 && known_[static_cast<std::size_t>(before) + 1]) {
      ASSERT_EQ(here.difference(now), "") << action.name << " without a record";
    }
    ASSERT_TRUE(is_sound(control_.triblock())) << "after " << action.name;
  }

  void walk() {
    for (int k = random_.below(4); k > 0; --k) {
      const int steps = random_.between(1, 4);
      if (random_.one_in(2)) {
        control_.action_undo(steps);
      } else {
        control_.action_redo(steps);
      }
      const auto at = static_cast<std::size_t>(control_.undo_hist().current() + 1);
      if (at < known_.size() && !known_[at]) continue;
      ASSERT_LT(at, states_.size());
      ASSERT_EQ(states_[at].difference(BlockSnapshot(control_.triblock())), "");
      ++compared;
    }
  }

  // What the format keeps comes back; the history begins anew.
  void reopen() {
    constexpr struct {
      const char* extension;
      bool is_exact;
    } formats[] = {{"mnx", true}, {"kvx", true}, {"mes", false}, {"tri", false}, {"stl", false}, {"ast", false}};
    const auto& format = formats[random_.below(6)];
    const std::string name = testing::TempDir() + "mendex_walk_" + std::to_string(getpid()) + "." + format.extension;
    trTriBlock& mesh = control_.triblock();
    const int elements = mesh.valid_elements();
    const std::vector<double> corners = corners_of(mesh);
    random_.one_in(2) ? control_.action_write(utString(name)) : control_.action_rwrite(utString(name));
    ASSERT_NE(control_.action_read(utString(name)), tr_unknown_file);
    std::remove(name.c_str());
    ASSERT_EQ(mesh.valid_elements(), elements) << format.extension;
    if (format.is_exact) {
      ASSERT_EQ(corners_of(mesh), corners) << format.extension;
    }
    ASSERT_TRUE(is_sound(mesh)) << format.extension;
    states_.clear();
    states_.emplace_back(mesh);
    known_ = {true};
    ++reopened;
  }

  void return_to_the_start() {
    control_.action_undo(control_.undo_hist().current() + 1);
    ASSERT_EQ(states_[0].difference(BlockSnapshot(control_.triblock())), "");
  }

  static std::map<std::string, int> times;
  static int compared;
  static int reopened;
  struct NamedAction {
    const char* name;
    void (ActionWalk::*act)();
  };
  static const NamedAction actions[25];

 private:
  // Renumbering that only cuts deleted numbers off the end leaves no record.
  bool only_cuts(const std::string& name, int slots) const { return name == "renumber" && slot_count() < slots; }
  int slot_count() const { return control_.triblock().node_count() + control_.triblock().element_count(); }
  double jitter() { return 0.02 * (random_.unit() - 0.5); }
  double tolerance() { return random_.one_in(2) ? 1e-6 : 0.1 * random_.unit(); }
  void select() {
    const int count = control_.cycles().num_boundaries();
    intcoSet ids;
    for (int k = 0; k < count; ++k) {
      if (random_.one_in(2)) ids.add(k);
    }
    double average = 0.0;
    const intcoSet no_nodes;
    control_.select_cycles(ids, average, -1, no_nodes, -1, -1);
  }

  void undup() { control_.action_undup(tolerance()); }
  void bundup() { control_.action_bundup(tolerance()); }
  void renumber() { control_.action_renumber(); }
  void swap() { control_.action_swap(random_.unit(), random_.below(3)); }
  void height() { control_.action_height(0.1 * random_.unit()); }
  void aspect() { control_.action_aspect(0.4 * random_.unit()); }
  void cancelling() { control_.action_cancelling(random_.below(2)); }
  void overlapping() { control_.action_overlapping(90 * random_.unit()); }
  void intersecting() { control_.action_intersecting(random_.between(2, 50)); }
  void overhanging() { control_.action_overhanging(giUnitVec3(giVector3(jitter(), jitter(), 1))); }
  void orient() { control_.action_orient(); }
  void reverse() { control_.action_reverse(); }
  void cure_all() { control_.action_cure(0); }
  void cure_but_two() { control_.action_cure(1); }
  void fins() { control_.triblock().cure_sick_fins(); }
  void slice() { control_.action_slice(static_cast<gi_Axis>(random_.below(3)), random_.unit() - 0.5, random_.below(2)); }
  void transform() { control_.action_transform_triangles(giXform3::half_turn_x()); }
  void stitch() { control_.action_stitch(tolerance()); }
  void staple() { control_.action_staple(tolerance()); }
  void astaple() { control_.action_astaple(tolerance(), 3); }
  void auto_stitch() { control_.action_auto_stitch(Multi, 0.0, 0.1, 0.05, 3, random_.below(2), random_.below(2), random_.below(2), 0); }
  void fill() {
    select();
    control_.action_fill(0);
  }
  void cap() {
    select();
    at2PlaneError error = at2_success;
    if (control_.cycles().selection.count() != 0) control_.action_cap(0.3, error, random_.below(2));
  }
  void cap_ext() {
    select();
    at2PlaneError error = at2_success;
    control_.action_cap_ext(0.3, random_.below(2), error);
  }
  void reverse_one() {
    if (control_.triblock().element_count() > 1) control_.triblock().reverse_element(1);
  }

  Random random_;
  trControl control_;
  std::vector<BlockSnapshot> states_;  // by record; 0 is the start
  std::vector<bool> known_{true};
  bool has_attributes_ = false;
};

std::map<std::string, int> ActionWalk::times;
int ActionWalk::compared = 0;
int ActionWalk::reopened = 0;

const ActionWalk::NamedAction ActionWalk::actions[25] = {
    {"undup", &ActionWalk::undup},           {"bundup", &ActionWalk::bundup},
    {"renumber", &ActionWalk::renumber},     {"swap", &ActionWalk::swap},
    {"height", &ActionWalk::height},         {"aspect", &ActionWalk::aspect},
    {"cancelling", &ActionWalk::cancelling}, {"overlapping", &ActionWalk::overlapping},
    {"intersecting", &ActionWalk::intersecting}, {"overhanging", &ActionWalk::overhanging},
    {"orient", &ActionWalk::orient},         {"reverse", &ActionWalk::reverse},
    {"cure_all", &ActionWalk::cure_all},     {"cure_but_two", &ActionWalk::cure_but_two},
    {"fins", &ActionWalk::fins},             {"slice", &ActionWalk::slice},
    {"transform", &ActionWalk::transform},   {"stitch", &ActionWalk::stitch},
    {"staple", &ActionWalk::staple},         {"astaple", &ActionWalk::astaple},
    {"auto_stitch", &ActionWalk::auto_stitch}, {"fill", &ActionWalk::fill},
    {"cap", &ActionWalk::cap},               {"cap_ext", &ActionWalk::cap_ext},
    {"reverse_one", &ActionWalk::reverse_one},
};

}  // namespace

TEST(ActionWalk, EveryStateComesBack) {
  CapturedOutput output;
  const char* const wanted = std::getenv("MENDEX_WALK_STEPS");
  const auto steps = static_cast<std::uint64_t>(wanted == nullptr ? 1500 : std::atoi(wanted));
  constexpr std::uint64_t length = 25;
  for (std::uint64_t seed = 1; seed <= steps / length && !HasFatalFailure(); ++seed) {
    SCOPED_TRACE("script " + std::to_string(seed));
    ActionWalk walk(seed);
    for (std::uint64_t k = 0; k < length && !HasFatalFailure(); ++k) {
      walk.act();
      walk.walk();
      if (!HasFatalFailure() && (seed + k) % 11 == 0) walk.reopen();
    }
    if (!HasFatalFailure()) walk.return_to_the_start();
    output.take();
  }
  EXPECT_GT(ActionWalk::compared, static_cast<int>(steps / 2));
  EXPECT_GT(ActionWalk::reopened, static_cast<int>(steps / 20));
  EXPECT_EQ(ActionWalk::times.size(), std::size(ActionWalk::actions));
}
