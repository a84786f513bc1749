// The stitching actions: checks, messages, modes, and whole models closed.

#include <gtest/gtest.h>

#include "control/host.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"

namespace {

// An edge of length 1 on the x axis whose middle lies `gap` above the apex of a second triangle.
Shape t_junction(double gap) {
  return Shape{{{0, 0, 0}, {1, 0, 0}, {0.5, 1, 0}, {0.5, -gap, 0}, {0, -1, 0}, {1, -1, 0}}, {{0, 1, 2}, {3, 4, 5}}};
}

// A triangle, and behind it two that divide it at the middle of one edge: stapling makes two pairs that lie back to back.
const Shape divided_behind = {{{0, 0, 0}, {2, 0, 0}, {1, 2, 0}, {1, 0, 0}}, {{0, 1, 2}, {0, 2, 3}, {3, 2, 1}}};

// A closed box of loose triangles, every second of which is divided at the middle of its first edge, a little off its place.
Shape box_with_t_junctions(double gap) {
  const Shape box = closed_box();
  Shape all;
  for (std::size_t t = 0; t < box.triangles.size(); ++t) {
    const auto corner = [&](std::size_t k) { return box.points[static_cast<std::size_t>(box.triangles[t][k])]; };
    const giPoint3 a = corner(0), b = corner(1), c = corner(2);
    giPoint3 middle = gi_interpolate(a, b, 0.5);
    middle.z += gap;
    const std::vector<giPoint3> pieces = t % 2 == 1 ? std::vector<giPoint3>{a, b, c} : std::vector<giPoint3>{a, middle, c, middle, b, c};
    for (std::size_t k = 0; k < pieces.size(); k += 3) {
      const int n = static_cast<int>(all.points.size());
      all.points.insert(all.points.end(), &pieces[k], &pieces[k] + 3);
      all.triangles.push_back({n, n + 1, n + 2});
    }
  }
  return all;
}

void single_pass(Host& host, double tol, int orient = 0) { host.action_auto_stitch(Single, tol, 0, 0, 5, 0, orient, 0, 0); }

}  // namespace

TEST(ControlStitching, NegativeTolerancesAreRefusedSaveByStitch) {
  CapturedOutput output;
  Host host(t_junction(0));
  host.action_staple(-1);
  host.action_astaple(-1, 5);
  single_pass(host, -1);
  EXPECT_EQ(output.take(), std::string(negative_tolerance) + negative_tolerance + negative_tolerance);
  EXPECT_TRUE(host.updates.empty());
  host.action_stitch(-1);
  EXPECT_EQ(output.take(), "");
  EXPECT_EQ(host.updates, std::vector<int>{1}) << "the host is told whatever came of it";
}

// Boundaries left, -1 at the limit, -2 when nothing could be done: a limit of 1 is reached by a pass that changes
// something. Stapling tells the host only of a change.
TEST(ControlStitching, AutoStapleTellsWhyItEnded) {
  const struct {
    Shape shape;
    double tol;
    int limit, result;
  } cases[] = {{t_junction(0.01), 0.1, 1, -1}, {t_junction(0.01), 0.1, 9, 1}, {t_junction(0.01), 0.001, 9, -2}, {closed_box(), 0.1, 9, 0}};
  for (const auto& c : cases) {
    Host host(c.shape), once(c.shape);
    EXPECT_EQ(host.auto_staple(c.tol, c.limit), c.result);
    once.action_staple(c.tol);
    const bool is_changed = c.result == 1 || c.result == -1;
    EXPECT_EQ(once.updates.size(), is_changed ? 1u : 0u);
    EXPECT_EQ(host.updates.empty(), !is_changed);
  }
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

// A triangle with divided neighbours on two sides needs two passes: what a pass made it does not split again. The host is told once for
// each pass, and once at the end.
TEST(ControlStitching, SingleMakesOnePassAndRepeatManyAtOneTolerance) {
  const Shape shape = box_with_t_junctions(1e-4);
  Host single(shape), repeat(shape);
  single.action_auto_stitch(Single, 1e-3, 0, 0, 5, 0, 0, 1, 0);
  EXPECT_GT(single.boundaries(), 0);
  EXPECT_EQ(single.updates, (std::vector<int>{1, 1}));
  repeat.action_auto_stitch(Repeat, 1e-3, 0, 0, 5, 0, 0, 1, 0);
  EXPECT_EQ(repeat.boundaries(), 0);
  EXPECT_TRUE(is_sound(repeat.triblock()));
  EXPECT_EQ(repeat.updates, (std::vector<int>{1, 1, 1}));
}

// Gaps that only the third tolerance reaches. The count is looked at after each stapling, and what comes after it still
// runs.
TEST(ControlStitching, MultiWidensTheToleranceUntilTheTargetIsMet) {
  Host host(box_with_t_junctions(0.025));
  InterruptingHandler handler;
  host.action_auto_stitch(Multi, 0.01, 0.1, 0.01, 5, 1, 0, 1, 0);
  EXPECT_EQ(host.boundaries(), 0);
  std::set<std::string> tolerances;
  for (const std::string& message : handler.messages) {
    if (message.rfind("Stitch tolerance ", 0) == 0) tolerances.insert(message.substr(17, 5));
  }
  EXPECT_EQ(tolerances, (std::set<std::string>{"0.010", "0.020", "0.030"}));
  EXPECT_EQ(host.updates.back(), 1);
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
  std::vector<std::string> messages;
  int polls = 0;
  for (int k = 0; k < 3; ++k) {  // as it is, with orientation, with the final deletion
    Host host(t_junction(0.5));
    BehindFirstPass handler;
    host.action_auto_stitch(Multi, 0.01, 0.035, 0.01, 5, 0, k == 1, k == 2, 0);
    EXPECT_EQ(handler.tolerances, 3);
    if (k > 0) { EXPECT_EQ(handler.messages, messages); }
    if (k > 0) { EXPECT_EQ(handler.polls, polls); }
    messages = handler.messages;
    polls = handler.polls;
  }
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
  EXPECT_EQ(host.valid_elements(), 2);
}

// Pairs that stapling made are deleted at the end when that is asked for, both of each; also when the target is met at once, which
// leaves the other tolerances out. Pairs that were there before a pass are deleted in any case.
TEST(ControlStitching, FinalCancelDeletesThePairsThatStaplingMade) {
  for (const trAutoMode mode : {Single, Repeat, Multi}) {
    for (const int final_cancel : {0, 1}) {
      Host host(divided_behind);
      InterruptingHandler handler;
      host.action_auto_stitch(mode, 0.01, 0.03, 0.01, 5, 0, 0, final_cancel, 0);
      EXPECT_EQ(host.boundaries(), 0);
      EXPECT_EQ(host.valid_elements(), final_cancel ? 0 : 4) << tr_automode_string(mode);
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
  EXPECT_EQ(elements_of(host.triblock()), (std::vector<std::array<int, 3>>{{1, 2, 3}, {5, 6, 4}}));
}

// Only with `orient` a triangle that faces the wrong way is turned, and only before stapling: what one pass could not close because of
// it stays open.
TEST(ControlStitching, OrientsOnlyWhenAsked) {
  Shape shape = closed_box();
  std::swap(shape.triangles[5][0], shape.triangles[5][1]);
  for (const int orient : {0, 1}) {
    Host host(shape);
    single_pass(host, 1e-6, orient);
    EXPECT_EQ(host.boundaries() == 0, orient == 1);
    EXPECT_EQ(host.valid_elements(), 12);
  }
}

// Moving the mesh keeps the boundaries that were found; distances between them are those of the moved mesh.
TEST(ControlStitching, StaplesAfterATransform) {
  Host host(t_junction(0.5));
  ASSERT_EQ(host.boundaries(), 2);
  for (int i = 0; i < 2; ++i) EXPECT_FALSE(host.cycles().cycles[i].box().crosses(host.cycles().cycles[1 - i].box(), 0.006));
  host.action_transform_triangles(giXform3::scaling(0.01, 0.01, 0.01));
  EXPECT_EQ(host.cycles().detected(), 1);
  host.action_staple(0.006);
  EXPECT_EQ(host.valid_elements(), 3);
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
    EXPECT_EQ(host.valid_elements(), whole.valid_elements());
    EXPECT_EQ(host.triblock().valid_nodes(), whole.valid_nodes());
    EXPECT_NEAR(host.triblock().volume(), whole.volume(), 1e-9);
    CapturedOutput output;
    host.action_undo(1);
    EXPECT_EQ(host.boundaries(), whole.valid_elements());
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
    ASSERT_EQ(host.boundaries(), is_stopped ? 18 : 0) << "stopped at " << stop;
  }
  EXPECT_GE(stop, 100);
}
