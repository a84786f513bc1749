// The actions that change the mesh: what each refuses, what it tells the host, and what becomes of the defect lists.

#include <gtest/gtest.h>

#include <functional>

#include "control/host.h"
#include "support/interrupting_handler.h"

namespace {

using Updates = std::vector<int>;
using Act = std::function<void(Host&)>;

// A box and loose triangles of the given points.
Shape box_and(const std::vector<giPoint3>& points) {
  Shape shape = closed_box();
  for (int k = 0; k < static_cast<int>(points.size()); k += 3) shape.triangles.push_back({8 + k, 9 + k, 10 + k});
  shape.points.insert(shape.points.end(), points.begin(), points.end());
  return shape;
}

// Two squares of one side each in z = 0, folded onto each other along their common edge.
const Shape folded = {{{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 0.5, 1e-3}}, {{0, 2, 1}, {0, 1, 3}}};
// A kite split along its long diagonal.
const Shape bad_diagonal = {{{-5, 0, 0}, {5, 0, 0}, {0, 1, 0}, {0, -1, 0}}, {{0, 1, 2}, {1, 0, 3}}};
const Shape with_sliver = box_and({{5, 0, 0}, {9, 0, 0}, {7, 1e-4, 0}});
const Shape crossing = box_and({{0.5, 0.4, 0.3}, {0.5, 0.4, 2}, {0.6, 2, 2}});

// A triangle on the edge of two others.
Shape with_fin() {
  Shape shape = closed_box();
  shape.points.emplace_back(0.5, 0.5, 9);
  shape.triangles.push_back({shape.triangles[0][0], shape.triangles[0][1], 8});
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

// What an action tells the host: 1 when the shape changed, 0 when only the triangles did. Where it is told anything all six lists are out
// of date but for that which the action itself emptied.
struct Case {
  const char* name;
  Act act;
  Shape shape;
  Updates updates;
  int fresh = -1;  // place among the lists
  Act prepare = [](Host&) {};
};

void undup(Host& c) { c.action_undup(1e-6); }
void bundup(Host& c) { c.action_bundup(1e-6); }
void swap_thin(Host& c) { c.action_swap(0.9, 3); }
void height(Host& c) { c.action_height(1e-3); }
void aspect(Host& c) { c.action_aspect(1e-3); }
void cancel(Host& c) { c.action_cancelling(1); }
void overlapping(Host& c) { c.action_overlapping(10); }
void intersecting(Host& c) { c.action_intersecting(100); }
void overhanging(Host& c) { c.action_overhanging(giUnitVec3(giVector3(0, 0, 1))); }
void orient(Host& c) { c.action_orient(); }
void cure_all(Host& c) { c.action_cure(0); }
void cure_smaller(Host& c) { c.action_cure(1); }
void fill(Host& c) { c.action_fill(0); }
void cap(Host& c) {
  at2PlaneError error = at2_success;
  c.action_cap(0.2, error, 0);
}
void cap_each(Host& c) {
  at2PlaneError error = at2_success;
  c.action_cap_ext(0.2, 0, error);
}
void undo(Host& c) { c.action_undo(1); }
void redo(Host& c) { c.action_redo(1); }
void edit(Host& c) {
  c.start_undo("edit");
  c.triblock().delete_element(1);
  c.finish_undo(1);
}
void edit_and_undo(Host& c) {
  edit(c);
  undo(c);
}

// With something to do.
const std::vector<Case> mending = {
    {"undup", undup, exploded(crossing), {1}},
    {"bundup", bundup, exploded(crossing), {1}},
    {"swap", swap_thin, bad_diagonal, {0}},
    {"height", height, with_sliver, {1}, 1},
    {"aspect", aspect, with_sliver, {1}, 2},
    {"cancelling", cancel, one_repeated(), {1}},
    {"overlapping", overlapping, folded, {1}, 3},
    {"intersecting", intersecting, crossing, {1}, 4},
    {"orient", orient, one_reversed(), {1}},
    {"cure, all", cure_all, with_fin(), {1}, 0},
    {"cure, all but two", cure_smaller, with_fin(), {1}},
};

// Turning all over and renumbering tell the host always, as do transforming, stitching and deleting all sick or overhanging triangles.
// Swapping goes on until a pass finds nothing, or the allowed number is reached; none at all is no change. Nothing found leaves the lists
// alone, even for another tolerance than that of the list before.
const std::vector<Case> others = {
    {"swap, many passes", [](Host& c) { c.action_swap(0.9, 100); }, bad_diagonal, {0}},
    {"swap, no pass", [](Host& c) { c.action_swap(0.9, 0); }, bad_diagonal, {}},
    {"overhanging", overhanging, closed_box(), {1}, 5},
    {"reverse", [](Host& c) { c.action_reverse(); }, closed_box(), {0}},
    {"reverse, empty: the reserved node counts", [](Host& c) { c.action_reverse(); }, {}, {0}},
    {"renumber", [](Host& c) { c.action_renumber(); }, closed_box(), {0}},
    {"transform", [](Host& c) { c.action_transform_triangles(giXform3()); }, closed_box(), {1}},
    {"undup, idle", undup, closed_box(), {}},
    {"bundup, idle", bundup, closed_box(), {}},
    {"swap, idle", [](Host& c) { c.action_swap(0.1, 3); }, closed_box(), {}},
    {"height, idle", [](Host& c) { c.action_height(1e-9); }, closed_box(), {}},
    {"aspect, idle", aspect, closed_box(), {}},
    {"cancelling, idle", cancel, closed_box(), {}},
    {"overlapping, idle", [](Host& c) { c.action_overlapping(1); }, closed_box(), {}},
    {"intersecting, idle", intersecting, closed_box(), {}},
    {"orient, idle", orient, closed_box(), {}},
    {"cure, all, idle", cure_all, closed_box(), {1}, 0},
    {"cure, all but two, idle", cure_smaller, closed_box(), {}},
    {"stitch, idle", [](Host& c) { c.action_stitch(1e-6); }, closed_box(), {1}},
    {"staple, idle", [](Host& c) { c.action_staple(1e-6); }, closed_box(), {}},
    {"auto stitch, idle", [](Host& c) { c.action_auto_stitch(Single, 1e-6, 0, 0, 1, 0, 0, 0, 0); }, closed_box(), {1}},
    {"fill", fill, punctured_sphere(6, 1), {1}, -1, [](Host& c) { c.select_all(); }},
    {"fill, idle", fill, punctured_sphere(6, 1), {}},
    {"cap", cap, punctured_sphere(6, 1), {1}, -1, [](Host& c) { c.select_all(); }},
    {"cap, idle", cap, punctured_sphere(6, 1), {}},
    {"cap each", cap_each, punctured_sphere(6, 1), {1}, -1, [](Host& c) { c.select_all(); }},
    {"cap each, idle", cap_each, punctured_sphere(6, 1), {}},
    {"undo", undo, closed_box(), {1}, -1, edit},
    {"undo, idle", undo, closed_box(), {}},
    {"redo", redo, closed_box(), {1}, -1, edit_and_undo},
    {"redo, idle", redo, closed_box(), {}, -1, edit},
};

}  // namespace

TEST(RepairActions, TellTheHostAndMakeListsStale) {
  const CapturedOutput output;
  for (const std::vector<Case>* cases : {&mending, &others}) {
    for (const Case& c : *cases) {
      SCOPED_TRACE(c.name);
      Host host(c.shape);
      c.prepare(host);
      for (trElementList* list : host.lists()) list->detect_elements();
      host.updates.clear();
      c.act(host);
      EXPECT_EQ(host.updates, c.updates);
      EXPECT_TRUE(is_sound(host.triblock()));
      for (int k = 0; k < 6; ++k) {
        const trElementList* list = host.lists()[static_cast<std::size_t>(k)];
        EXPECT_EQ(list->stale(), !c.updates.empty() && k != c.fresh) << "list " << k;
        if (k == c.fresh) { EXPECT_EQ(list->elements().count(), 0); }
      }
    }
  }
}

// A tolerance below zero is refused in one line, and nothing is searched; one that is no number passes.
TEST(RepairActions, RefuseTolerancesBelowZero) {
  const std::function<void(Host&, double)> actions[] = {
      [](Host& c, double tol) { c.action_undup(tol); },   [](Host& c, double tol) { c.action_bundup(tol); },
      [](Host& c, double tol) { c.action_swap(tol, 2); }, [](Host& c, double tol) { c.action_height(tol); },
      [](Host& c, double tol) { c.action_aspect(tol); },  [](Host& c, double tol) { c.action_overlapping(tol); },
  };
  for (const auto& act : actions) {
    CapturedOutput output;
    Host host(with_sliver);
    for (trElementList* list : host.lists()) list->detect_elements();
    const BlockSnapshot before(host.triblock());
    const double tolerance = host.small_elems().tolerance();
    output.take();
    act(host, -1);
    EXPECT_EQ(output.take(), negative_tolerance);
    EXPECT_EQ(host.difference(before), "");
    EXPECT_TRUE(host.updates.empty());
    EXPECT_EQ(host.small_elems().tolerance(), tolerance);
    for (const trElementList* list : host.lists()) EXPECT_EQ(list->stale(), 0);
    act(host, std::nan(""));
    EXPECT_EQ(output.take().find("Error"), std::string::npos);
  }
}

// A list that has just deleted what it held is out of date only from the second change on.
TEST(RepairActions, AListOutlivesTheFirstChangeAfterItsOwnDeletion) {
  const CapturedOutput output;
  for (std::size_t cleaned = 0; cleaned < 6; ++cleaned) {
    Host host(closed_box());
    for (trElementList* list : host.lists()) list->detect_elements();
    host.lists()[cleaned]->delete_elements();
    for (std::size_t k = 0; k < 6; ++k) EXPECT_EQ(host.lists()[k]->stale(), 0);
    host.action_reverse();
    for (std::size_t k = 0; k < 6; ++k) EXPECT_EQ(host.lists()[k]->stale(), k != cleaned) << k << " after " << cleaned;
    host.action_reverse();
    for (const trElementList* list : host.lists()) EXPECT_EQ(list->stale(), 1);
  }
}

// Another limit makes no list of intersections out of date: what was found before is deleted without another search.
TEST(RepairActions, DeleteIntersectionsThatWereFoundBefore) {
  const CapturedOutput output;
  Host host(crossing);
  host.isect_elems().detect_elements();
  const int found = host.isect_elems().elements().count(), elements = host.valid_elements();
  ASSERT_GT(found, 0);
  host.triblock().set_node(1, giPoint3(-0.1, -0.1, -0.1));  // the list does not watch the mesh
  host.action_intersecting(7);
  EXPECT_EQ(host.valid_elements(), elements - found);
}
