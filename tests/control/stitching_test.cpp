// The stitching actions: checks, messages, modes, and whole models closed.

#include <gtest/gtest.h>

#include <algorithm>

#include "control/control.h"
#include "support/captured_output.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

class Host : public trControl {
 public:
  explicit Host(const Shape& shape) { add_to(triblock(), shape); }
  void control_update(int what) override { updates.push_back(what); }

  std::vector<int> updates;
};

// An edge of length 1 on the x axis whose middle lies `gap` above the apex of a second triangle.
Shape t_junction(double gap) {
  return Shape{{{0, 0, 0}, {1, 0, 0}, {0.5, 1, 0}, {0.5, -gap, 0}, {0, -1, 0}, {1, -1, 0}}, {{0, 1, 2}, {3, 4, 5}}};
}

// A triangle, and behind it two that divide it at the middle of one edge: stapling makes two pairs that lie back to back.
Shape divided_behind() { return Shape{{{0, 0, 0}, {2, 0, 0}, {1, 2, 0}, {1, 0, 0}}, {{0, 1, 2}, {0, 2, 3}, {3, 2, 1}}}; }

// A closed box of which the lower half of the walls stands on edges of two triangles that the upper half divides.
Shape box_with_t_junctions(double gap) {
  Shape box = closed_box();
  Shape all = exploded(box);
  const auto add = [&](const giPoint3& a, const giPoint3& b, const giPoint3& c) {
    const int n = static_cast<int>(all.points.size());
    for (const giPoint3& p : {a, b, c}) all.points.push_back(p);
    all.triangles.push_back({n, n + 1, n + 2});
  };
  // Every second triangle is divided at the middle of its first edge, a little off its place.
  Shape divided;
  std::swap(all, divided);
  for (std::size_t t = 0; t < divided.triangles.size(); ++t) {
    const giPoint3 &a = divided.points[3 * t], &b = divided.points[3 * t + 1], &c = divided.points[3 * t + 2];
    if (t % 2 == 1) {
      add(a, b, c);
      continue;
    }
    giPoint3 middle = gi_interpolate(a, b, 0.5);
    middle.z += gap;
    add(a, middle, c);
    add(middle, b, c);
  }
  return all;
}

constexpr const char* negative = " Error: tol must not be less than zero\n";

}  // namespace

TEST(ControlStitching, NegativeTolerancesAreRefusedSaveByStitch) {
  CapturedOutput output;
  Host host(t_junction(0));
  host.action_staple(-1);
  EXPECT_EQ(output.take(), negative);
  host.action_astaple(-1, 5);
  EXPECT_EQ(output.take(), negative);
  host.action_auto_stitch(Single, -1, 0, 0, 0, 0, 0, 0, 0);
  EXPECT_EQ(output.take(), negative);
  EXPECT_TRUE(host.updates.empty());
  host.action_stitch(-1);
  EXPECT_EQ(output.take(), "");
  EXPECT_EQ(host.updates, std::vector<int>{1}) << "the host is told whatever came of it";
}

TEST(ControlStitching, StapleTellsTheHostOnlyOfAChange) {
  Host host(t_junction(0.01));
  host.action_staple(0.001);
  EXPECT_TRUE(host.updates.empty());
  host.action_staple(0.1);
  EXPECT_EQ(host.updates, std::vector<int>{1});
  EXPECT_EQ(host.triblock().valid_elements(), 3);
}

// Boundaries left, -1 at the limit, -2 when nothing could be done: a limit of 1 is reached by a pass that changes
// something.
TEST(ControlStitching, AutoStapleTellsWhyItEnded) {
  Host first(t_junction(0.01));
  EXPECT_EQ(first.auto_staple(0.1, 1), -1);
  EXPECT_EQ(first.updates.size(), 1u);
  Host second(t_junction(0.01));
  EXPECT_EQ(second.auto_staple(0.1, 9), 1);
  Host third(t_junction(0.01));
  EXPECT_EQ(third.auto_staple(0.001, 9), -2);
  Host closed(closed_box());
  EXPECT_EQ(closed.auto_staple(0.1, 9), 0);
}

TEST(ControlStitching, AutoStitchChecksItsArgumentsInOrder) {
  struct Case {
    trAutoMode mode;
    double finish, step;
    int limit;
    const char* message;
  };
  const Case cases[] = {
      {Multi, 0.5, 0, 0, "<Nothing to do: finish tol is less than start tol\n"},
      {Multi, 1, 0, 0, "<Error! tol step must be positive\n"},
      {Multi, 1, -1, 5, "<Error! tol step must be positive\n"},
      {Multi, 1, 1, 0, "<Error! iteration limit must be greater than 1\n"},
      {Repeat, 0, 0, 0, "<Error! iteration limit must be greater than 1\n"},
      {Repeat, 0, 0, 1, ""},  // 1 is taken all the same
      {Single, 0, 0, 0, ""},  // and here the limit does not matter
  };
  for (const Case& c : cases) {
    CapturedOutput output;
    MarkingHook hook;
    Host host(closed_box());
    host.action_auto_stitch(c.mode, 1, c.finish, c.step, c.limit, 0, 0, 0, 0);
    EXPECT_EQ(output.take(), c.message);
    EXPECT_EQ(host.updates.size(), *c.message ? 0u : 1u);
  }
}

// A triangle with divided neighbours on two sides needs two passes: what a pass made it does not split again.
TEST(ControlStitching, SingleMakesOnePassAndRepeatManyAtOneTolerance) {
  const Shape shape = box_with_t_junctions(1e-4);
  Host single(shape);
  single.action_auto_stitch(Single, 1e-3, 0, 0, 5, 0, 0, 1, 0);
  EXPECT_GT(single.cycles().num_boundaries(), 0);
  EXPECT_EQ(single.updates, (std::vector<int>{1, 1})) << "once for the pass, once at the end";
  Host repeat(shape);
  repeat.action_auto_stitch(Repeat, 1e-3, 0, 0, 5, 0, 0, 1, 0);
  EXPECT_EQ(repeat.cycles().num_boundaries(), 0);
  EXPECT_TRUE(is_sound(repeat.triblock()));
  EXPECT_EQ(repeat.updates, (std::vector<int>{1, 1, 1}));
}

// Gaps that only the third tolerance reaches. The count is looked at after each stapling, and what comes after it still
// runs.
TEST(ControlStitching, MultiWidensTheToleranceUntilTheTargetIsMet) {
  const Shape shape = box_with_t_junctions(0.025);
  Host host(shape);
  InterruptingHandler handler;
  host.action_auto_stitch(Multi, 0.01, 0.1, 0.01, 5, 1, 0, 1, 0);
  EXPECT_EQ(host.cycles().num_boundaries(), 0);
  std::set<std::string> tolerances;
  for (const std::string& message : handler.messages) {
    if (message.rfind("Stitch tolerance ", 0) == 0) tolerances.insert(message.substr(17, 5));
  }
  EXPECT_EQ(tolerances, (std::set<std::string>{"0.010", "0.020", "0.030"}));
  EXPECT_EQ(host.updates.back(), 1);
}

// After a tolerance at which nothing changed the next one only staples: a node that lies within it of another stays.
TEST(ControlStitching, AfterAPassWithoutEffectOnlyStaplingIsTried) {
  Shape shape = t_junction(0.5);
  shape.points.push_back({5, 5, 5});
  for (const giPoint3& p : {giPoint3(1.015, 0, 0), giPoint3(3, 0, 0), giPoint3(3, 1, 0)}) shape.points.push_back(p);
  shape.triangles.push_back({7, 8, 9});
  Host multi(shape);
  multi.action_auto_stitch(Multi, 0.01, 0.02, 0.01, 5, 0, 0, 0, 0);
  EXPECT_EQ(multi.triblock().node(8).invalid, 0);
  Host single(shape);
  single.action_auto_stitch(Single, 0.02, 0, 0, 5, 0, 0, 0, 0);
  EXPECT_EQ(single.triblock().node(8).invalid, 1);
}

// A step that is lost in rounding would be made for ever.
TEST(ControlStitching, EndsWhenTheStepNoLongerWidensTheTolerance) {
  CapturedOutput output;
  for (const trAutoMode mode : {Single, Repeat, Multi}) {
    for (const double start : {1e16, 1e300, std::numeric_limits<double>::infinity()}) {
      Host host(t_junction(0.01));
      host.action_auto_stitch(mode, start, start, 0.5, 3, 0, 0, 0, 99);
      EXPECT_TRUE(is_sound(host.triblock())) << start;
    }
  }
  Host host(t_junction(0.01));
  host.action_auto_stitch(Multi, std::nan(""), std::nan(""), std::nan(""), 3, 0, 0, 0, 99);
  EXPECT_EQ(host.triblock().valid_elements(), 2);
}

// Pairs that stapling made are deleted at the end when that is asked for, both of each; also when the target is met at once, which
// leaves the other tolerances out. Pairs that were there before a pass are deleted in any case.
TEST(ControlStitching, FinalCancelDeletesThePairsThatStaplingMade) {
  for (const trAutoMode mode : {Single, Repeat, Multi}) {
    for (const int final_cancel : {0, 1}) {
      Host host(divided_behind());
      InterruptingHandler handler;
      host.action_auto_stitch(mode, 0.01, 0.03, 0.01, 5, 0, 0, final_cancel, 0);
      EXPECT_EQ(host.cycles().num_boundaries(), 0);
      EXPECT_EQ(host.triblock().valid_elements(), final_cancel ? 0 : 4) << tr_automode_string(mode);
      for (const std::string& message : handler.messages) EXPECT_EQ(message.find("tolerance 0.02"), std::string::npos);
    }
  }
}

// Before stapling, opposite triangles go in pairs, and of repeated ones that with the highest number stays.
TEST(ControlStitching, EachPassDeletesOppositeAndRepeatedTriangles) {
  Shape shape = t_junction(0.001);
  shape.triangles = {{0, 1, 2}, {2, 3, 4}, {4, 3, 2}, {3, 4, 5}, {5, 3, 4}, {4, 5, 3}};
  Host host(shape);
  host.action_auto_stitch(Single, 1e-6, 0, 0, 1, 0, 0, 0, -5);
  std::vector<int> left;
  for (int e = 1; e < host.triblock().element_count(); ++e) {
    if (host.triblock().element(e).valid()) left.push_back(e);
  }
  EXPECT_EQ(left, (std::vector<int>{1, 6}));
}

// Only with `orient` a triangle that faces the wrong way is turned, and only before stapling: what one pass could not close because of
// it stays open.
TEST(ControlStitching, OrientsOnlyWhenAsked) {
  Shape shape = closed_box();
  std::swap(shape.triangles[5][0], shape.triangles[5][1]);
  for (const int orient : {0, 1}) {
    Host host(shape);
    host.action_auto_stitch(Single, 1e-6, 0, 0, 1, 0, orient, 0, 0);
    EXPECT_EQ(host.cycles().num_boundaries() == 0, orient == 1);
    EXPECT_EQ(host.triblock().valid_elements(), 12);
  }
}

// Where a pass had no effect, neither the next tolerance nor the end of the sequence does more than staple: nothing else reports, or
// asks for an interruption.
TEST(ControlStitching, AfterAPassWithoutEffectNothingElseIsEvenTried) {
  struct BehindFirstPass : InterruptingHandler {
    void report_progress_callback(const char* message, double percent) override {
      if (std::string(message).rfind("Stitch tolerance", 0) == 0 && tolerances++ == 0) polls = 0;
      if (tolerances > 0) InterruptingHandler::report_progress_callback(message, percent);
    }
    int tolerances = 0;
  };
  std::vector<std::string> messages[3];
  int polls[3];
  for (int k = 0; k < 3; ++k) {
    Host host(t_junction(0.5));
    BehindFirstPass handler;
    host.action_auto_stitch(Multi, 0.01, 0.035, 0.01, 5, 0, k == 1, k == 2, 0);
    EXPECT_EQ(handler.tolerances, 3);
    messages[k] = handler.messages;
    polls[k] = handler.polls;
  }
  EXPECT_EQ(messages[1], messages[0]) << "with orientation";
  EXPECT_EQ(messages[2], messages[0]) << "with the final deletion";
  EXPECT_EQ(polls[1], polls[0]);
  EXPECT_EQ(polls[2], polls[0]);
}

// Moving the mesh keeps the boundaries that were found; distances between them are those of the moved mesh.
TEST(ControlStitching, StaplesAfterATransform) {
  Host host(t_junction(0.5));
  ASSERT_EQ(host.cycles().num_boundaries(), 2);
  for (int i = 0; i < 2; ++i) EXPECT_FALSE(host.cycles().cycles[i].box().crosses(host.cycles().cycles[1 - i].box(), 0.006));
  host.action_transform_triangles(giXform3::scaling(0.01, 0.01, 0.01));
  EXPECT_EQ(host.cycles().detected(), 1);
  host.action_staple(0.006);
  EXPECT_EQ(host.triblock().valid_elements(), 3);
  EXPECT_EQ(host.updates, (std::vector<int>{1, 1}));
}

TEST(ControlStitching, LooseTrianglesOfAClosedModelBecomeWatertight) {
  for (const Shape& model : {closed_box(), sphere(12), torus(16, 8)}) {
    BlockOf whole(model);
    Host host(exploded(shuffled(model, 5)));
    host.start_undo("stitch");
    host.action_auto_stitch(Repeat, 1e-6, 0, 0, 5, 0, 1, 1, 0);
    host.finish_undo(1);
    EXPECT_EQ(host.cycles().num_edges(), 0);
    EXPECT_TRUE(is_sound(host.triblock()));
    EXPECT_EQ(host.triblock().valid_elements(), whole.valid_elements());
    EXPECT_EQ(host.triblock().valid_nodes(), whole.valid_nodes());
    EXPECT_NEAR(host.triblock().volume(), whole.volume(), 1e-9);
    CapturedOutput output;
    host.action_undo(1);
    EXPECT_EQ(host.cycles().num_boundaries(), whole.valid_elements());
  }
}

TEST(ControlStitching, AnInterruptionAtAnyPollCanBeTakenBackAndIsNotAnnounced) {
  const Shape shape = box_with_t_junctions(1e-4);
  Host whole(shape);
  whole.action_auto_stitch(Repeat, 1e-3, 0, 0, 5, 1, 1, 1, 0);
  int stop = 1;
  for (bool is_stopped = true; is_stopped; stop += 1 + stop / 8) {
    Host host(shape);
    host.start_undo("stitch");
    {
      InterruptingHandler handler(stop);
      host.action_auto_stitch(Repeat, 1e-3, 0, 0, 5, 1, 1, 1, 0);
      is_stopped = handler.interrupted_flag;
      if (is_stopped) { EXPECT_LT(host.updates.size(), whole.updates.size()); }
    }
    ASSERT_TRUE(is_sound(host.triblock(), {false, true})) << "stopped at " << stop;
    CapturedOutput output;
    host.finish_undo(!is_stopped);
    ASSERT_EQ(host.cycles().num_boundaries(), is_stopped ? 18 : 0) << "stopped at " << stop;
  }
  EXPECT_GE(stop, 100);
}
