// The defect lists: when they search, what they print, draw and delete.

#include <gtest/gtest.h>

#include "analysis/isect_elems.h"
#include "analysis/overhang_elems.h"
#include "analysis/overlap_elems.h"
#include "analysis/sick_elems.h"
#include "analysis/small_elems.h"
#include "analysis/thin_elems.h"
#include "mesh/containers.h"
#include "support/captured_output.h"
#include "support/command_file.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/random.h"
#include "support/shapes.h"

namespace {

// A list that finds the two lowest-numbered valid elements and measures 0.125; it counts its searches.
template <class Base>
class Probe : public Base {
 public:
  using Base::Base;
  using Base::invalidate;
  int searches = 0;

 protected:
  void search() {
    ++searches;
    this->elements_.clear(0);
    for (int e = 1; e < this->triblock->element_count() && this->elements_.count() < 2; ++e) {
      if (this->triblock->element(e).valid()) this->elements_[this->elements_.count()] = e;
    }
  }
};

template <class Base>
class ThinProbe : public Probe<Base> {
 public:
  using Probe<Base>::Probe;

 private:
  double find_elements_tol() override {
    this->search();
    return 0.125;
  }
};

template <class Base>
class PlainProbe : public Probe<Base> {
 public:
  using Probe<Base>::Probe;

 private:
  void find_elements() override { this->search(); }
};

struct TolProbe : ThinProbe<trElemListTol> {
  using ThinProbe::ThinProbe;
  using trElemListTol::set_tolerance;
};
using OverhangProbe = PlainProbe<trOverhangElems>;

// The rules of the lists, as a table of states.
struct ListModel {
  bool stale = true;
  bool cleaned = false;
  int searches = 0;

  void search_if_stale() {
    searches += stale;
    stale = false;
  }
  void invalidate() {
    if (!cleaned) stale = true;
    cleaned = false;
  }
};

// One invalidation after a list's own deletion is ignored, whatever caused it: an edit, another tolerance, another
// direction.
TEST(ElementList, FollowsItsStatesOverRandomCalls) {
  Random random(31);
  BlockOf block(sphere(40));
  TolProbe tol(&block, 1.0);
  OverhangProbe overhang(&block);
  ListModel tol_model, overhang_model;
  const auto both = [&](auto act) {
    act(tol, tol_model);
    act(overhang, overhang_model);
  };
  int ignored = 0;
  for (int step = 0; step < 5000; ++step) {
    ignored += tol_model.cleaned;
    const int choice = random.below(6);
    if (choice == 0) {
      both([&](auto& list, ListModel& model) {
        EXPECT_EQ(list.detect_elements(), (model.stale || list.elements().count()) && block.valid_elements());
        model.search_if_stale();
      });
    } else if (choice == 1 && random.one_in(4)) {
      both([&](auto& list, ListModel& model) {
        list.delete_elements();
        EXPECT_EQ(list.elements().count(), 0);
        model.search_if_stale();
        model.cleaned = true;
      });
    } else if (choice == 2) {
      both([&](auto& list, ListModel& model) {
        list.invalidate();
        model.invalidate();
      });
    } else if (choice == 3) {
      const double tolerance = random.below(3);
      if (tolerance != tol.tolerance()) tol_model.invalidate();
      tol.set_tolerance(tolerance);
    } else if (choice == 4) {
      const giUnitVec3 up(static_cast<gi_Axis>(random.below(3)));
      if (up != overhang.up_vector()) overhang_model.invalidate();
      overhang.set_up_vector(up);
    }
    both([&](auto& list, ListModel& model) {
      ASSERT_EQ(list.stale(), model.stale) << "step " << step;
      ASSERT_EQ(list.searches, model.searches) << "step " << step;
    });
  }
  EXPECT_GT(ignored, 500);
  EXPECT_GT(tol_model.searches, 300);
}

TEST(ElementList, StaysStaleWhenTheSearchIsInterrupted) {
  BlockOf block(closed_box());
  TolProbe list(&block, 1.0);
  {
    InterruptingHandler handler(1);
    EXPECT_EQ(list.detect_elements(), 0);
    EXPECT_EQ(list.delete_elements(), 0);
  }
  EXPECT_EQ(list.stale(), 1);
  EXPECT_EQ(block.valid_elements(), 12);
  EXPECT_EQ(list.detect_elements(), 1);
  EXPECT_EQ(list.stale(), 0);
  list.invalidate();
  EXPECT_EQ(list.stale(), 1);  // an interrupted deletion is none
  block.changed = 0;
  EXPECT_EQ(list.delete_elements(), 1);
  EXPECT_EQ(block.changed, 1);
}

// Every text is marked by the hook; what has no mark is a number.
template <class List>
void expect_prints(List list, const std::string& stale, const std::string& fresh) {
  const MarkingHook hook;
  CapturedOutput out;
  list->print();
  EXPECT_EQ(out.take(), stale);
  list->detect_elements();
  list->print();
  EXPECT_EQ(out.take(), fresh);
}

TEST(ElementList, PrintsItsSummaryToTheLetter) {
  BlockOf block(closed_box());
  expect_prints(std::make_unique<PlainProbe<trSickElems>>(&block), "<  Sick elements: <not computed\n", "<  Sick elements: 2\n");
  expect_prints(std::make_unique<PlainProbe<trOverhangElems>>(&block), "<  Overhanging elements: <not computed\n",
                "<  Overhanging elements: 2\n");
  expect_prints(std::make_unique<PlainProbe<trIsectElems>>(&block, 1000), "<  Intersecting triangles: <not computed\n",
                "<  Intersecting triangles: 2\n");
  expect_prints(std::make_unique<ThinProbe<trSmallElems>>(&block, 0.5),
                "<  Height of smallest triangle: <not computed\n",
                "<  Height of smallest triangle: 0.125\n<  Current height tol: 0.5< (2< triangles<)\n");
  expect_prints(std::make_unique<ThinProbe<trThinElems>>(&block, 1.0 / 3.0),
                "<  Aspect ratio of thinnest triangle: <not computed\n",
                "<  Aspect ratio of thinnest triangle: 0.125\n"
                "<  Current aspect ratio tol: 0.333333< (2< triangles<)\n");
  expect_prints(std::make_unique<ThinProbe<trOverlapElems>>(&block, 20.0),
                "<  Sharpest angle between adjacent triangles: <not computed\n",
                "<  Sharpest angle between adjacent triangles: 0.125< degrees\n"
                "<  Current overlap angular tol: 20< degrees< (2< triangles<)\n");
}

// Each outline has four points, the last on the first, and starts with a move that is not drawn.
TEST(ElementList, DrawsEightPointsForTwoTriangles) {
  BlockOf block({{{0, 0, 0}, {1.5, 0, 0}, {0, -2, 1e-7}, {1, 1, 1}}, {{0, 1, 2}, {3, 2, 1}}});
  TolProbe list(&block, 1.0);
  CommandFile file;
  const MarkingHook hook;
  CapturedOutput out;
  list.karn_picture(file.file());
  EXPECT_EQ(out.take(), "< Writing Karn command file ...\n");
  std::fclose(file.file());
  EXPECT_EQ(file.text(),
            "UNSET ECHO#EDIT PLEV -1\nDELETE PICTURE\n"
            "$$ element 1\nINPUT PIX 1 0.000000 0.000000 0.000000 $$ = NODE 1\nEDIT PIX 1 INV\n"
            "INPUT PIX 2 1.500000 0.000000 0.000000 $$ = NODE 2\nINPUT PIX 3 0.000000 -2.000000 0.000000 $$ = NODE 3\n"
            "INPUT PIX 4 0.000000 0.000000 0.000000 $$ = NODE 1\n"
            "$$ element 2\nINPUT PIX 5 1.000000 1.000000 1.000000 $$ = NODE 4\nEDIT PIX 5 INV\n"
            "INPUT PIX 6 0.000000 -2.000000 0.000000 $$ = NODE 3\nINPUT PIX 7 1.500000 0.000000 0.000000 $$ = NODE 2\n"
            "INPUT PIX 8 1.000000 1.000000 1.000000 $$ = NODE 4\n");
}

}  // namespace
