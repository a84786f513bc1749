// The actions that mend the mesh: what each refuses, what it tells the host, and what becomes of the defect lists.

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "control/control.h"
#include "support/block_snapshot.h"
#include "support/captured_output.h"
#include "support/interrupting_handler.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

using Updates = std::vector<int>;

class Host : public trControl {
 public:
  explicit Host(const Shape& shape = closed_box()) { add_to(triblock(), shape); }
  void control_update(int what) override { updates.push_back(what); }

  std::vector<trElementList*> lists() {
    return {&sick_elems(), &small_elems(), &thin_elems(), &overlap_elems(), &isect_elems(), &overhang_elems()};
  }
  void detect_all() {
    for (trElementList* list : lists()) list->detect_elements();
  }

  Updates updates;
};

// Two squares of one side each in z = 0, folded onto each other along their common edge.
Shape folded() { return Shape{{{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 0.5, 1e-3}}, {{0, 2, 1}, {0, 1, 3}}}; }

// A triangle on the edge of two others.
Shape with_fin() {
  Shape shape = closed_box();
  shape.points.emplace_back(0.5, 0.5, 9);
  shape.triangles.push_back({shape.triangles[0][0], shape.triangles[0][1], 8});
  return shape;
}

Shape crossing() {
  Shape shape = closed_box();
  const Shape other = closed_box(giPoint3(0.5, 0.4, 0.3));
  for (const giPoint3& p : other.points) shape.points.push_back(p);
  for (const auto& t : other.triangles) shape.triangles.push_back({t[0] + 8, t[1] + 8, t[2] + 8});
  return shape;
}

Shape with_sliver() {
  Shape shape = closed_box();
  shape.points.emplace_back(5, 0, 0);
  shape.points.emplace_back(9, 0, 0);
  shape.points.emplace_back(7, 1e-4, 0);
  shape.triangles.push_back({8, 9, 10});
  return shape;
}

Shape one_reversed() {
  Shape shape = closed_box();
  std::swap(shape.triangles[5][0], shape.triangles[5][1]);
  return shape;
}

Shape one_repeated() {
  Shape shape = closed_box();
  shape.triangles.push_back(shape.triangles[3]);
  return shape;
}

// A kite split along its long diagonal.
Shape bad_diagonal() { return Shape{{{-5, 0, 0}, {5, 0, 0}, {0, 1, 0}, {0, -1, 0}}, {{0, 1, 2}, {1, 0, 3}}}; }

}  // namespace

// What an action tells the host where it finds something to do and where not: 1 when the shape changed, 0 when only the triangles did.
// Turning all over and renumbering tell it always, as do transforming and deleting all sick triangles.
TEST(RepairActions, TellTheHostWhatChanged) {
  const CapturedOutput output;
  const struct {
    const char* name;
    std::function<void(trControl&)> act;
    Shape shape;
    Updates with_effect;
    Updates without;
  } cases[] = {
      {"undup", [](trControl& c) { c.action_undup(1e-6); }, exploded(closed_box()), {1}, {}},
      {"bundup", [](trControl& c) { c.action_bundup(1e-6); }, exploded(closed_box()), {1}, {}},
      {"renumber", [](trControl& c) { c.action_renumber(); }, closed_box(), {0}, {0}},
      {"swap", [](trControl& c) { c.action_swap(0.9, 3); }, bad_diagonal(), {0}, {}},
      {"height", [](trControl& c) { c.action_height(1e-3); }, with_sliver(), {1}, {}},
      {"aspect", [](trControl& c) { c.action_aspect(1e-3); }, with_sliver(), {1}, {}},
      {"cancelling", [](trControl& c) { c.action_cancelling(1); }, one_repeated(), {1}, {}},
      {"overlapping", [](trControl& c) { c.action_overlapping(10); }, folded(), {1}, {}},
      {"intersecting", [](trControl& c) { c.action_intersecting(100); }, crossing(), {1}, {}},
      {"overhanging", [](trControl& c) { c.action_overhanging(giUnitVec3(giVector3(0, 0, 1))); }, closed_box(), {1}, {1}},
      {"orient", [](trControl& c) { c.action_orient(); }, one_reversed(), {1}, {}},
      {"reverse", [](trControl& c) { c.action_reverse(); }, closed_box(), {0}, {0}},
      {"cure, all", [](trControl& c) { c.action_cure(0); }, with_fin(), {1}, {1}},
      {"cure, all but two", [](trControl& c) { c.action_cure(1); }, with_fin(), {1}, {}},
      {"transform", [](trControl& c) { c.action_transform_triangles(giXform3()); }, closed_box(), {1}, {1}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Host busy(c.shape), idle;
    c.act(busy);
    EXPECT_EQ(busy.updates, c.with_effect);
    EXPECT_TRUE(is_sound(busy.triblock()));
    c.act(idle);
    EXPECT_EQ(idle.updates, c.without);
  }
  Host empty{Shape{}};
  empty.action_reverse();
  EXPECT_EQ(empty.updates, Updates{0}) << "the reserved node counts";
}

// A tolerance below zero is refused in one line, and nothing is searched; one that is no number passes.
TEST(RepairActions, RefuseTolerancesBelowZero) {
  const std::function<void(trControl&, double)> actions[] = {
      [](trControl& c, double tol) { c.action_undup(tol); },       [](trControl& c, double tol) { c.action_bundup(tol); },
      [](trControl& c, double tol) { c.action_swap(tol, 2); },     [](trControl& c, double tol) { c.action_height(tol); },
      [](trControl& c, double tol) { c.action_aspect(tol); },      [](trControl& c, double tol) { c.action_overlapping(tol); },
  };
  for (const auto& act : actions) {
    CapturedOutput output;
    Host host(with_sliver());
    host.detect_all();
    const BlockSnapshot before(host.triblock());
    const double tolerance = host.small_elems().tolerance();
    output.take();
    act(host, -1);
    EXPECT_EQ(output.take(), " Error: tol must not be less than zero\n");
    EXPECT_EQ(before.difference(BlockSnapshot(host.triblock())), "");
    EXPECT_TRUE(host.updates.empty());
    EXPECT_EQ(host.small_elems().tolerance(), tolerance);
    for (const trElementList* list : host.lists()) EXPECT_EQ(list->stale(), 0);
    act(host, std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(output.take().find("Error"), std::string::npos);
  }
}

// The list whose triangles were deleted counts as searched and empty; the others are out of date.
TEST(RepairActions, LeaveTheirListFreshAndTheOthersStale) {
  const CapturedOutput output;
  const struct {
    std::function<void(trControl&)> act;
    Shape shape;
    int fresh;  // place among the lists
  } cases[] = {
      {[](trControl& c) { c.action_cure(0); }, with_fin(), 0},
      {[](trControl& c) { c.action_height(1e-3); }, with_sliver(), 1},
      {[](trControl& c) { c.action_aspect(1e-3); }, with_sliver(), 2},
      {[](trControl& c) { c.action_overlapping(10); }, folded(), 3},
      {[](trControl& c) { c.action_intersecting(50); }, crossing(), 4},
      {[](trControl& c) { c.action_overhanging(giUnitVec3(giVector3(0, 0, 1))); }, closed_box(), 5},
  };
  for (const auto& c : cases) {
    Host host(c.shape);
    host.detect_all();
    const int elements = host.triblock().valid_elements();
    c.act(host);
    EXPECT_LT(host.triblock().valid_elements(), elements);
    const std::vector<trElementList*> lists = host.lists();
    for (int k = 0; k < 6; ++k) {
      EXPECT_EQ(lists[static_cast<std::size_t>(k)]->stale(), k != c.fresh) << "list " << k << " after that of " << c.fresh;
    }
    EXPECT_EQ(lists[static_cast<std::size_t>(c.fresh)]->elements().count(), 0);
  }
}

// Every action that tells the host of a change makes all six lists stale, and one that does not leaves all of them alone. Taking
// back and doing again tell whenever there is something to take back or to do again.
TEST(RepairActions, MakeAllListsStaleWhenTheMeshChanged) {
  const CapturedOutput output;
  using Act = std::function<void(trControl&)>;
  const auto fill = [](trControl& c) { c.action_fill(0); };
  const auto cap = [](trControl& c) {
    at2PlaneError error = at2_success;
    c.action_cap(0.2, error, 0);
  };
  const auto cap_each = [](trControl& c) {
    at2PlaneError error = at2_success;
    c.action_cap_ext(0.2, 0, error);
  };
  const Act nothing = [](trControl&) {};
  const Act select = [](trControl& c) {
    double length = 0.0;
    c.select_cycles({0}, length, -1, intcoSet(), -1, -1);
  };
  const Act edit = [](trControl& c) {
    c.start_undo("edit");
    c.triblock().delete_element(1);
    c.finish_undo(1);
  };
  const Act edit_and_undo = [&](trControl& c) {
    edit(c);
    c.action_undo(1);
  };
  const struct {
    const char* name;
    Act act;
    Act prepare;
    Shape shape;
    int is_stale;
  } cases[] = {
      {"undup", [](trControl& c) { c.action_undup(1e-6); }, nothing, exploded(closed_box()), 1},
      {"undup, idle", [](trControl& c) { c.action_undup(1e-6); }, nothing, closed_box(), 0},
      {"bundup", [](trControl& c) { c.action_bundup(1e-6); }, nothing, exploded(closed_box()), 1},
      {"bundup, idle", [](trControl& c) { c.action_bundup(1e-6); }, nothing, closed_box(), 0},
      {"swap", [](trControl& c) { c.action_swap(0.9, 3); }, nothing, bad_diagonal(), 1},
      {"swap, idle", [](trControl& c) { c.action_swap(0.1, 3); }, nothing, closed_box(), 0},
      {"orient", [](trControl& c) { c.action_orient(); }, nothing, one_reversed(), 1},
      {"orient, idle", [](trControl& c) { c.action_orient(); }, nothing, closed_box(), 0},
      {"reverse", [](trControl& c) { c.action_reverse(); }, nothing, closed_box(), 1},
      {"renumber", [](trControl& c) { c.action_renumber(); }, nothing, closed_box(), 1},
      {"transform", [](trControl& c) { c.action_transform_triangles(giXform3()); }, nothing, closed_box(), 1},
      {"cancelling", [](trControl& c) { c.action_cancelling(1); }, nothing, one_repeated(), 1},
      {"cancelling, idle", [](trControl& c) { c.action_cancelling(1); }, nothing, closed_box(), 0},
      {"stitch, idle", [](trControl& c) { c.action_stitch(1e-6); }, nothing, closed_box(), 1},
      {"staple, idle", [](trControl& c) { c.action_staple(1e-6); }, nothing, closed_box(), 0},
      {"auto stitch, idle", [](trControl& c) { c.action_auto_stitch(Single, 1e-6, 0, 0, 1, 0, 0, 0, 0); }, nothing, closed_box(), 1},
      {"fill", fill, select, punctured_sphere(6, 1), 1},
      {"fill, idle", fill, nothing, punctured_sphere(6, 1), 0},
      {"cap", cap, select, punctured_sphere(6, 1), 1},
      {"cap, idle", cap, nothing, punctured_sphere(6, 1), 0},
      {"cap each", cap_each, select, punctured_sphere(6, 1), 1},
      {"cap each, idle", cap_each, nothing, punctured_sphere(6, 1), 0},
      {"undo", [](trControl& c) { c.action_undo(1); }, edit, closed_box(), 1},
      {"undo, idle", [](trControl& c) { c.action_undo(1); }, nothing, closed_box(), 0},
      {"redo", [](trControl& c) { c.action_redo(1); }, edit_and_undo, closed_box(), 1},
      {"redo, idle", [](trControl& c) { c.action_redo(1); }, edit, closed_box(), 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Host host(c.shape);
    c.prepare(host);
    host.detect_all();
    host.updates.clear();
    c.act(host);
    EXPECT_EQ(!host.updates.empty(), c.is_stale == 1);
    for (std::size_t k = 0; k < 6; ++k) EXPECT_EQ(host.lists()[k]->stale(), c.is_stale) << "list " << k;
  }
}

// A list that has just deleted what it held is out of date only from the second change on.
TEST(RepairActions, AListOutlivesTheFirstChangeAfterItsOwnDeletion) {
  const CapturedOutput output;
  for (std::size_t cleaned = 0; cleaned < 6; ++cleaned) {
    Host host;
    host.overhang_elems().set_up_vector(giUnitVec3(giVector3(0, 0, 1)));
    host.detect_all();
    host.lists()[cleaned]->delete_elements();
    host.action_reverse();
    for (std::size_t k = 0; k < 6; ++k) EXPECT_EQ(host.lists()[k]->stale(), k != cleaned) << k << " after " << cleaned;
    host.action_reverse();
    for (const trElementList* list : host.lists()) EXPECT_EQ(list->stale(), 1);
  }
}

// Nothing found, nothing out of date: not even for another tolerance than that of the list before.
TEST(RepairActions, LeaveTheListsAloneWhereNothingIsFound) {
  const CapturedOutput output;
  Host host;
  host.detect_all();
  host.action_overlapping(1);
  host.action_height(1e-9);
  for (const trElementList* list : host.lists()) EXPECT_EQ(list->stale(), 0);
  EXPECT_TRUE(host.updates.empty());
}

// Another limit makes no list of intersections out of date: what was found before is deleted without another search.
TEST(RepairActions, DeleteIntersectionsThatWereFoundBefore) {
  const CapturedOutput output;
  Host host(crossing());
  host.isect_elems().detect_elements();
  const int found = host.isect_elems().elements().count();
  ASSERT_GT(found, 0);
  const int elements = host.triblock().valid_elements();
  host.triblock().set_node(1, giPoint3(-0.1, -0.1, -0.1));  // the list does not watch the mesh
  host.action_intersecting(7);
  EXPECT_EQ(host.triblock().valid_elements(), elements - found);
}

// Passes go on until one finds nothing, or the allowed number is reached; none at all is no change.
TEST(RepairActions, SwapAsOftenAsAllowed) {
  const CapturedOutput output;
  Host host(bad_diagonal());
  host.action_swap(0.9, 0);
  EXPECT_TRUE(host.updates.empty());
  host.action_swap(0.9, 100);
  EXPECT_EQ(host.updates, Updates{0});
  EXPECT_EQ(host.triblock().valid_elements(), 2);
}
