// A stop at every single poll of every operation: what is returned, which flags stay unset, and that the journal can
// take it back.

#include <gtest/gtest.h>

#include "support/interrupting_handler.h"
#include "support/journal_recorder.h"
#include "support/marking_hook.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

constexpr int no_result = 12345;

struct Operation {
  const char* name;
  std::function<int(trTriBlock&)> run;
  int interrupted_result;                           // no_result: it has none
  std::function<bool(const trTriBlock&)> promised;  // what must hold after an interruption at whatever poll
  Excuses excuses;
  int least_polls;
};

intcoPageArr& some_elements() {
  static intcoPageArr list{2, 5, 7, 11};
  return list;
}

template <class F>
std::function<int(trTriBlock&)> without_result(F run) {
  return [run](trTriBlock& block) {
    run(block);
    return no_result;
  };
}

// Six loose triangles, two of them copies, one opposite, with gaps in both numberings and a triangle that will
// collapse.
void fill(trTriBlock& block) {
  add_to(block, exploded(flat_sheet(2, 2)));
  block.generate(1, 2, 3);
  block.generate(3, 2, 1);
  block.generate(4, 5, 6);
  block.set_node(30, giPoint3(0, 0, 0));
  block.set_node(31, giPoint3(0, 1e-9, 0));
  block.set_element(14, 1, 30, 31);
  block.delete_element(12);
  block.force_changed_status(0);
}

int nodes() { return 31; }
int elements() { return 14; }

const std::vector<Operation>& operations() {
  const auto anything = [](const trTriBlock&) { return true; };
  const Excuses none;
  const Excuses dangling{false, true};
  static const std::vector<Operation> table = {
      {"valid_nodes", [](trTriBlock& b) { return b.valid_nodes(); }, 0, anything, none, nodes()},
      {"valid_elements", [](trTriBlock& b) { return b.valid_elements(); }, 0, anything, none, elements()},
      {"build_edges", without_result([](trTriBlock& b) { b.build_edges(); }), no_result,
       [](const trTriBlock& b) { return b.edges_built == 0; }, none, nodes() + elements()},
      {"reset_edges", without_result([](trTriBlock& b) { b.reset_edges(); }), no_result, anything, none, nodes()},
      {"reference_elements", without_result([](trTriBlock& b) {
         b.elements_referenced = 0;
         b.reference_elements();
       }),
       no_result, [](const trTriBlock& b) { return b.elements_referenced == 0; }, none, nodes() + elements()},
      {"compute_node_normals", without_result([](trTriBlock& b) { b.compute_node_normals(); }), no_result,
       [](const trTriBlock& b) { return b.normals_built == 0; }, none, nodes()},
      {"unduplicate_nodes", [](trTriBlock& b) { return b.unduplicate_nodes(1e-6); }, 0,
       [](const trTriBlock& b) { return b.undup_tol == 0.0; }, dangling, nodes() + 2 * elements()},
      {"slice", [](trTriBlock& b) { return b.slice(gi_x_axis, 0, 0.25, 1e-10); }, 0,
       [](const trTriBlock& b) { return b.changed == 0 || b.edges_built == 0; }, dangling, 2 * nodes() + elements()},
      {"repeating", [](trTriBlock& b) { return b.repeating(); }, 0, [](const trTriBlock& b) { return b.changed == 0; },
       none, elements()},
      {"cancelling both", [](trTriBlock& b) { return b.cancelling(1); }, 0, anything, none, elements()},
      {"renumber", without_result([](trTriBlock& b) { b.renumber(); }), no_result,
       [](const trTriBlock& b) {
         return b.node_count() == nodes() + 1 && b.element_count() == elements() + 1 && b.changed == 0;
       },
       dangling, 2 * nodes() + elements()},
      {"delete_elements", without_result([](trTriBlock& b) { b.delete_elements(some_elements()); }), no_result,
       [](const trTriBlock& b) { return b.changed == 1; }, none, 4},
      {"split_elements", without_result([](trTriBlock& b) { b.split_elements(some_elements()); }), no_result,
       [](const trTriBlock& b) { return b.changed == 1; }, none, 4},
      {"delete_collapsed_elements", without_result([](trTriBlock& b) { b.delete_collapsed_elements(); }), no_result,
       anything, none, elements()},
      {"reverse", without_result([](trTriBlock& b) { b.reverse(); }), no_result, anything, none, elements()},
      {"transform", without_result([](trTriBlock& b) {
         b.force_changed_status(1);
         b.transform(giXform3::half_turn_x());
       }),
       no_result, [](const trTriBlock& b) { return b.changed == 0; }, none, nodes()},
      {"box", without_result([](trTriBlock& b) {
         b.alter(1);
         b.box();
       }),
       no_result, anything, none, nodes()},
  };
  return table;
}

int polls_of(const Operation& operation) {
  trTriBlock block;
  fill(block);
  InterruptingHandler handler;
  operation.run(block);
  return handler.polls;
}

// An interrupted renumbering has renamed corners and not yet moved all nodes, with lists that nobody cleared: only the
// journal knows.
bool lists_are_lost(const Operation& operation) { return std::string(operation.name) == "renumber"; }

TEST(Interruption, AtEveryPollLeavesWhatIsPromised) {
  for (const Operation& operation : operations()) {
    const int polls = polls_of(operation);
    EXPECT_GE(polls, operation.least_polls) << operation.name << " polls too rarely";
    for (int k = 1; k <= polls; ++k) {
      trTriBlock block;
      fill(block);
      JournalRecorder journal(block);
      int result = no_result;
      {
        InterruptingHandler handler(k);
        result = operation.run(block);
        EXPECT_EQ(handler.polls, k) << operation.name;
      }
      EXPECT_EQ(result, operation.interrupted_result) << operation.name << " at poll " << k;
      EXPECT_TRUE(operation.promised(block)) << operation.name << " at poll " << k;
      EXPECT_TRUE(lists_are_lost(operation) || is_sound(block, operation.excuses))
          << operation.name << " at poll " << k;
      // An interruption lasts as long as its handler, so taking back what it cut short must not ask it.
      InterruptingHandler lasting(1);
      lasting.interrupted();
      EXPECT_TRUE(journal.restores_the_start()) << operation.name << " at poll " << k;
      EXPECT_EQ(lasting.polls, 1) << operation.name;
    }
  }
}

// What was not finished is made anew by the next call.
TEST(Interruption, OfABuildIsMadeGoodByTheNextCall) {
  for (const char* name : {"build_edges", "reference_elements", "compute_node_normals", "box"}) {
    for (const Operation& operation : operations()) {
      if (operation.name != std::string(name)) continue;
      for (int k = 1; k <= polls_of(operation); k += 3) {
        trTriBlock block;
        fill(block);
        {
          InterruptingHandler handler(k);
          operation.run(block);
        }
        block.build_edges();
        block.reference_elements();
        block.compute_node_normals();
        EXPECT_EQ(block.box().max(), giPoint3(1, 1, 0));
        EXPECT_TRUE(block.edges_built && block.elements_referenced && block.normals_built);
        EXPECT_TRUE(is_sound(block)) << name << " at poll " << k;
      }
    }
  }
}

double all_properties(const trTriBlock& block) {
  double area = 0, volume = 0, least = 0, mean = 0;
  giPoint3 centre;
  block.properties(area, volume, centre, least, mean);
  return area;
}

// Measures return what they have summed so far: before the k-th poll k - 1 of the box's triangles, each of area 1/2.
TEST(Interruption, OfAMeasureReturnsTheSumSoFar) {
  for (int k = 1; k <= 12; ++k) {
    BlockOf block(closed_box());
    {
      InterruptingHandler handler(k);
      EXPECT_DOUBLE_EQ(block.surface_area(), 0.5 * (k - 1));
    }
    {
      InterruptingHandler handler(k);
      EXPECT_DOUBLE_EQ(all_properties(block), 0.5 * (k - 1));
    }
    // Triangles 3 and 4 are the top, the only ones with a volume over the floor.
    InterruptingHandler handler(k);
    EXPECT_DOUBLE_EQ(block.volume(), 0.5 * std::min(std::max(k - 3, 0), 2));
  }
  BlockOf block(closed_box());
  InterruptingHandler handler(7);
  int count = 0;
  EXPECT_NEAR(block.min_dotp(0.5, count), 0, 1e-12);
  EXPECT_EQ(count, 12);
}

// Every text goes through the translation hook before it is formatted: counts first, then the current number.
TEST(Progress, TextsAreTranslatedAndExact) {
  const Shape soup = exploded(sphere(17));  // 1088 triangles, 3264 nodes
  const std::string triangles = "<Processing 1089 triangles:   1000";
  const struct {
    const char* name;
    std::function<void(trTriBlock&)> run;
    std::vector<std::string> messages;
    double last_percent;
  } cases[] = {
      {"reverse",
       [](trTriBlock& b) { b.reverse(); },
       {"<Reversing 1089 triangles:   0", "<Reversing 1089 triangles:   1000"},
       100000.0 / 1089},
      {"merge",
       [](trTriBlock& b) { b.unduplicate_nodes(1e-9); },
       {"<Unduplicating 3265 nodes:   1000", "<Unduplicating 3265 nodes:   2000", "<Unduplicating 3265 nodes:   3000"},
       300000.0 / 3265},
      {"repeating",
       [](trTriBlock& b) { b.repeating(); },
       {"<Processing 1089 triangles:     0", triangles},
       100000.0 / 1089},
      {"renumber",
       [](trTriBlock& b) { b.renumber(); },
       {"<3265 nodes:   1000", "<3265 nodes:   2000", "<3265 nodes:   3000", triangles},
       100000.0 / 1089},
      {"surface_area", [](trTriBlock& b) { b.surface_area(); }, {triangles}, 100000.0 / 1089},
      {"volume", [](trTriBlock& b) { b.volume(); }, {triangles}, 100000.0 / 1089},
      {"properties", [](trTriBlock& b) { all_properties(b); }, {triangles}, 100000.0 / 1089},
  };
  for (const auto& c : cases) {
    BlockOf block(soup);
    const MarkingHook hook;
    InterruptingHandler handler;
    c.run(block);
    EXPECT_EQ(handler.messages, c.messages) << c.name;
    ASSERT_FALSE(handler.percents.empty()) << c.name;
    EXPECT_NEAR(handler.percents.back(), c.last_percent, 1e-9) << c.name;
  }
}

}  // namespace
