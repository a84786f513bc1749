#include <gtest/gtest.h>

#include <optional>

#include "boundaries/array_it.h"
#include "boundaries/auto_mode.h"
#include "boundaries/boundary_shapes.h"
#include "boundaries/bowls.h"
#include "oracles/stitching_literal.h"
#include "support/block_snapshot.h"
#include "support/interrupting_handler.h"
#include "support/journal_recorder.h"
#include "support/marking_hook.h"
#include "support/numbers.h"
#include "support/validator.h"

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

using Pass = int (*)(trCycleArray&, double);

// Operations beside their literal rules.
struct Operation {
  const char* name;
  Pass run;
  Pass literal;
  int effective;  // of all rounds at least so many must change something
};

const Operation operations[] = {
    {"stitch", [](trCycleArray& set, double tol) { return set.stitch(tol); }, stitch_literal, 400},
    {"superstitch", [](trCycleArray& set, double tol) { return set.superstitch(tol); }, superstitch_literal, 250},
    {"unduplicate", [](trCycleArray& set, double tol) { return set.unduplicate_nodes(tol); }, unduplicate_literal, 400},
};

std::ostream& operator<<(std::ostream& out, const Operation& operation) { return out << operation.name; }

// A ring of n points about the z axis, each side divided into `parts`: its corners are those of the ring undivided.
void add_ring_wall(Shape& shape, int n, int parts, double z, double height) {
  const int first = static_cast<int>(shape.points.size());
  const auto corner = [n](int k) { return giPoint3(std::cos(6.283185307179586 * k / n), std::sin(6.283185307179586 * k / n), 0); };
  const int count = n * parts;
  for (int k = 0; k < count; ++k) {
    const giPoint3 p = gi_interpolate(corner(k / parts), corner(k / parts + 1), double(k % parts) / parts);
    shape.points.emplace_back(p.x, p.y, z);
    shape.points.emplace_back(p.x, p.y, z + height);
  }
  for (int k = 0; k < count; ++k) {
    const int a = first + 2 * k, b = first + 2 * ((k + 1) % count);
    shape.triangles.push_back({a, b, b + 1});
    shape.triangles.push_back({a, b + 1, a + 1});
  }
}

// Small boundaries of every kind: loose and connected triangles on a coarse grid, so that nodes coincide, lie on edges
// and in line with them; walls with sides divided in different ways; some coordinates moved a little, some not numbers.
Shape random_boundaries(Random& random) {
  const bool is_crowd = random.one_in(40);
  Shape shape = random_tangle(random, random.between(3, is_crowd ? 30 : 14), random.between(1, is_crowd ? 40 : 16), random.between(2, 5));
  if (random.one_in(2)) shape = exploded(shape);
  if (random.one_in(4)) {
    shape = Shape();
    const int n = random.between(3, 14);
    add_ring_wall(shape, n, random.between(1, 4), 0, 1);
    add_ring_wall(shape, n, random.between(1, 4), 1, 1);
    if (random.one_in(2)) shape = exploded(shuffled(shape, random.bits()));
  }
  const double jitter = random.one_in(2) ? 0.0 : std::pow(10.0, random.between(-9, -1));
  for (giPoint3& p : shape.points) {
    for (int k = 0; k < 3; ++k) p[k] += random.between(-jitter, jitter);
  }
  if (random.one_in(8)) {
    const double odd[] = {inf, -inf, not_a_number, 1e200, -1e300, 1e-170};
    for (int k = random.between(1, 3); k > 0; --k)
      shape.points[static_cast<std::size_t>(random.below(static_cast<int>(shape.points.size())))][random.below(3)] = odd[random.below(6)];
  }
  if (random.one_in(12)) {
    for (giPoint3& p : shape.points) p = giPoint3(p.x * 1e-9 + 1e6, p.y * 1e-9, p.z * 1e-9 - 1e5);
  }
  return shape;
}

double random_tolerance(Random& random) {
  const double odd[] = {0.0, -0.0, inf, not_a_number, 1e200, 1e-200, 1e308, -1.0};
  if (random.one_in(10)) return odd[random.below(8)];
  return std::pow(10.0, random.between(-10.0, 1.0));
}

// Marks of the cycles and of their nodes, as the operations leave them.
std::vector<int> marks_of(const trCycleArray& set) {
  std::vector<int> marks;
  for (int i = 0; i < set.cycles.count(); ++i) {
    for (trCycleIT it(&set.cycles[i]); ++it;) {
      marks.push_back(it.s_node());
      marks.push_back(it.edge_cancelled());
      marks.push_back(it.node_cancelled());
    }
  }
  return marks;
}

// One block and what watches it.
struct Subject {
  Subject(const Shape& shape, std::uint64_t seed) : block(shape), set(&block) {
    Random random(seed);
    if (random.one_in(2)) block.reference_elements();
    if (random.one_in(3)) give_attributes(random);
    for (int k = random.below(3); k > 0; --k) block.delete_element(random.between(1, block.element_count() - 1));
    block.force_changed_status(1);
    if (random.one_in(2) && set.num_boundaries() > 1) {
      set.cycles[random.below(set.cycles.count())].start = -1;
      trCycleIT it(&set.cycles[random.below(set.cycles.count())]);
      if (++it) {
        it.cancel_edge();
        it.cancel_node();
      }
    }
    journal.emplace(block);
  }

  void give_attributes(Random& random) {
    block.set_node_data_size(2);
    for (int i = 1; i < block.node_count(); ++i) {
      block.node_data(i).values[0] = random.below(9);
      block.node_data(i).weight = random.below(3);
    }
  }

  BlockOf block;
  trCycleArray set;
  std::optional<JournalRecorder> journal;
};

class StitchingAgainstItsRules : public testing::TestWithParam<Operation> {};

using Elements = std::vector<std::array<int, 3>>;

// A square of two triangles over nodes 1 to 4, its edge from 1 to 2 on the x axis, facing up.
struct Square : BlockOf {
  Square() : BlockOf({{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 3}}}) {}
  // A triangle below the edge, with its apex at (x, y).
  void add_flap(double x, double y) {
    add_to(*this, {{{x, y, 0}, {x - 0.1, y - 1, 0}, {x + 0.1, y - 1, 0}}, {{0, 1, 2}}});
  }
};

}  // namespace

// Elements, marks, lists and reports to the journal are those of the loops, for boundaries and tolerances of every kind,
// pass after pass.
TEST_P(StitchingAgainstItsRules, SameResultOnRandomBoundaries) {
  const Operation& operation = GetParam();
  Random random(31);
  int effective = 0;
  for (int round = 0; round < 1200; ++round) {
    const Shape shape = random_boundaries(random);
    const std::uint64_t seed = random.bits();
    double tol = random_tolerance(random);
    std::vector<int> marks[2], results[2];
    std::unique_ptr<Subject> subjects[2];
    for (int side = 0; side < 2; ++side) {  // one after the other: all sets share one array of entries
      subjects[side] = std::make_unique<Subject>(shape, seed);
      Subject& subject = *subjects[side];
      for (int pass = 0; pass < 3; ++pass) {
        results[side].push_back((side == 0 ? operation.run : operation.literal)(subject.set, tol * (pass + 1)));
        const std::vector<int> more = marks_of(subject.set);
        marks[side].insert(marks[side].end(), more.begin(), more.end());
        results[side].push_back(subject.block.changed);
        results[side].push_back(subject.set.edge_count);
      }
    }
    const auto where = [&] { return testing::Message() << "round " << round << " tol " << tol; };
    ASSERT_EQ(results[0], results[1]) << where();
    ASSERT_EQ(BlockSnapshot(subjects[0]->block).difference(BlockSnapshot(subjects[1]->block)), "") << where();
    ASSERT_EQ(marks[0], marks[1]) << where();
    for (int i = 1; i < subjects[0]->block.node_count(); ++i) {
      const trNode &node = subjects[0]->block.node(i), &expected = subjects[1]->block.node(i);
      ASSERT_EQ(entries(node.elements), entries(expected.elements)) << where() << " node " << i;
      ASSERT_EQ(entries(node.a_edges), entries(expected.a_edges)) << where() << " node " << i;
    }
    effective += results[0][0] != 0;
    ASSERT_TRUE(is_sound(subjects[0]->block)) << where();
    ASSERT_TRUE(subjects[0]->journal->restores_the_start()) << where();
    subjects[1]->journal.reset();
  }
  EXPECT_GE(effective, operation.effective);
}

INSTANTIATE_TEST_SUITE_P(All, StitchingAgainstItsRules, testing::ValuesIn(operations),
                         [](const auto& test) { return std::string(test.param.name); });

// Values that are not above 0 never come, and of equal values only that with the lowest index.
TEST(ArrayIT, AscendsOverPositiveValuesOnceEach) {
  doublecoPageArr values;
  const double given[] = {0.5, 0.25, 0.5, 0.0, -1.0, 0.25, 0.125, 9.0};
  for (int k = 0; k < 8; ++k) values[k] = given[k];
  std::vector<int> order;
  ArrayIT it(7, &values);
  while (++it) {
    order.push_back(it.index);
    EXPECT_EQ(it.last, values[it.index]);
  }
  EXPECT_EQ(order, (std::vector<int>{6, 1, 0}));
  EXPECT_FALSE(++it);
}

// The height is that of the triangle over its longest side, wherever along the line the node lies: superstitching, which
// looks for the foot within the edge, leaves such a node alone.
TEST(Stitching, ANodeInLineWithAnEdgeMatchesHoweverFarItLies) {
  for (const double x : {-40.0, 40.0}) {
    Square block;
    block.add_flap(x, 0);
    block.set_node(8, {0.5, 5, 0});  // cycles are compared only when their boxes cross
    block.generate(5, 7, 8);
    trCycleArray set(&block);
    EXPECT_EQ(set.superstitch(1e-9), 0);
    EXPECT_EQ(set.stitch(1e-9), 1);
    const Elements elements = elements_of(block);
    EXPECT_NE(std::find(elements.begin(), elements.end(), std::array<int, 3>{1, 5, 2}), elements.end());
  }
}

// Two slots for the same free edge: the first triple takes the edge, the second finds it gone and still counts.
TEST(Stitching, ATripleWhoseEdgeVanishedStillCounts) {
  trTriBlock block;
  block.set_node(1, {0, 0, 0});
  block.set_node(2, {1, 0, 0});
  block.set_node(3, {0.5, 0.001, 0});
  block.generate(1, 2, 3);
  trCycleArray set(&block);
  ASSERT_EQ(set.num_boundaries(), 1);
  block.delete_element(1);  // which by itself does not make the boundary stale
  EXPECT_EQ(set.stitch(0.01), 1);
  EXPECT_EQ(block.valid_elements(), 0);
  EXPECT_EQ(block.changed, 1);
}

// Of two nodes at the same parameter both are used up, but only that found first becomes a corner.
TEST(Superstitching, OfTwoNodesAtTheSamePlaceTheFirstBecomesACorner) {
  Square block;
  block.add_flap(0.5, 0);
  block.add_flap(0.5, 0);
  trCycleArray set(&block);
  EXPECT_EQ(set.superstitch(0.01), 1);
  EXPECT_EQ(elements_of(block), (Elements{{1, 3, 4}, {5, 6, 7}, {8, 9, 10}, {3, 1, 5}, {3, 5, 2}}));
  EXPECT_EQ(block.node(8).side, 0);
}

TEST(Superstitching, ReportsEveryHundredthEdge) {
  BlockOf block(loose_triangles(67));
  trCycleArray set(&block);
  InterruptingHandler handler;
  MarkingHook hook;
  set.superstitch(0.0625);
  const std::string text = "<Stitch tolerance 0.062    Boundary edges ";
  EXPECT_EQ(handler.messages, (std::vector<std::string>{text + "  0/201", text + "100/201", text + "200/201"}));
  ASSERT_EQ(handler.percents.size(), 3u);
  EXPECT_DOUBLE_EQ(handler.percents[1], 100 * 100 / 201.0);
}

// A tolerance of 309 digits makes a long message, and nothing worse.
TEST(Superstitching, ReportsAnyTolerance) {
  InterruptingHandler handler;
  for (const double tol : {1e308, inf}) {
    BlockOf block(loose_triangles(1));
    trCycleArray(&block).superstitch(tol);
  }
  ASSERT_EQ(handler.messages.size(), 2u);
  EXPECT_EQ(handler.messages[0].size(), std::string("Stitch tolerance .000    Boundary edges   0/3").size() + 309);
  EXPECT_EQ(handler.messages[1], "Stitch tolerance inf    Boundary edges   0/3");
}

// What was done by then can be taken back, and the next query finds the boundary anew.
TEST_P(StitchingAgainstItsRules, AnInterruptionAtAnyPollCanBeTakenBack) {
  const Operation& operation = GetParam();
  const bool is_merging = operation.literal == unduplicate_literal;
  Shape shape;
  add_ring_wall(shape, 4, 1, 0, 1);
  add_ring_wall(shape, 4, 3, 1, 1);
  int stop = 1;
  std::set<int> outcomes;
  for (bool is_stopped = true; is_stopped; ++stop) {
    BlockOf block(shape);
    trCycleArray set(&block);
    JournalRecorder journal(block);
    {
      InterruptingHandler handler(stop);
      const int result = operation.run(set, 1e-3);
      is_stopped = handler.interrupted_flag;
      if (is_stopped && is_merging) { EXPECT_EQ(result, 0); }
    }
    ASSERT_LT(stop, 5000);
    outcomes.insert(block.valid_elements());
    if (!is_merging) {  // which stopped half-way leaves corners without nodes, to be taken back
      ASSERT_TRUE(is_sound(block)) << "stopped at " << stop;
      set.num_boundaries();
      EXPECT_EQ(set.detected(), 1);
    }
    ASSERT_TRUE(journal.restores_the_start()) << "stopped at " << stop;
  }
  EXPECT_GE(stop, 20);
  if (!is_merging) { EXPECT_GE(outcomes.size(), 3u) << "stopped half-way at least once"; }
}

// A stop between two slivers leaves those that were made, a stop before leaves out all that were found: the pass counts, and the
// boundary is stale.
TEST(Stitching, StoppedBetweenSliversItKeepsThoseItMade) {
  Shape shape;
  for (const double x : {0.0, 5.0, 10.0}) {
    append(shape, {{{x, 0, 0}, {x + 1, 0, 0}, {x + 0.5, 1, 0}, {x + 0.5, -0.01, 0}, {x, -1, 0}, {x + 1, -1, 0}}, {{0, 1, 2}, {3, 4, 5}}});
  }
  std::set<int> made;
  int found_only = 0;
  bool is_stopped = true;
  for (int stop = 1; is_stopped; ++stop) {
    BlockOf block(shape);
    trCycleArray set(&block);
    ASSERT_EQ(set.num_boundaries(), 6);
    ASSERT_EQ(block.changed, 0);
    int result = 0;
    {
      const InterruptingHandler handler(stop);
      result = set.stitch(0.02);
      is_stopped = handler.interrupted_flag;
    }
    const int slivers = block.valid_elements() - 6;
    made.insert(slivers);
    found_only += slivers == 0 && result == 1;
    if (slivers == 0 && result == 0) continue;
    EXPECT_EQ(result, 1) << "stopped at " << stop;
    EXPECT_EQ(block.changed, 1);
    EXPECT_EQ(set.edge_count, -1);
  }
  EXPECT_EQ(made, (std::set<int>{0, 1, 2, 3}));
  EXPECT_GE(found_only, 1);
}

// A stop when the nodes on an edge are found, and used up, but its element is not yet deleted: nothing is, and still the mesh counts
// as changed.
TEST(Superstitching, StoppedBeforeTheElementIsDeletedItDeletesNothing) {
  int stopped_between = 0;
  bool is_stopped = true;
  for (int stop = 1; is_stopped; ++stop) {
    Square block;
    block.add_flap(0.5, 0);
    trCycleArray set(&block);
    ASSERT_EQ(set.num_boundaries(), 2);
    int result = 1;
    {
      const InterruptingHandler handler(stop);
      result = set.superstitch(0.01);
      is_stopped = handler.interrupted_flag;
    }
    if (!is_stopped || block.node(5).side != 0 || block.valid_elements() != 3) continue;
    ++stopped_between;
    EXPECT_EQ(result, 0);
    EXPECT_EQ(block.changed, 1);
    EXPECT_EQ(elements_of(block), (Elements{{1, 2, 3}, {1, 3, 4}, {5, 6, 7}}));
    EXPECT_EQ(set.edge_count, 7);
  }
  EXPECT_GE(stopped_between, 1);
}

// Loose triangles in one place, with a tolerance that reaches everything: nodes and edges are used up at once, and no
// pair of cycles is looked at twice.
TEST(Stitching, TolerancesThatReachEverythingCostNoMore) {
  Random random(3);
  for (const double tol : {1.0, 1e3, 1e200, inf}) {
    for (const auto& operation : operations) {
      BlockOf block(exploded(sphere(40)));
      trCycleArray set(&block);
      operation.run(set, tol);
      EXPECT_TRUE(is_sound(block)) << operation << " " << tol;
    }
  }
}

TEST(AutoMode, NamesOfTheModes) {
  EXPECT_STREQ(tr_automode_string(Single), "Single");
  EXPECT_STREQ(tr_automode_string(Repeat), "Repeat");
  EXPECT_STREQ(tr_automode_string(Multi), "Multi");
  EXPECT_EQ(tr_automode_string(static_cast<trAutoMode>(0)), nullptr);
  EXPECT_EQ(tr_automode_string(static_cast<trAutoMode>(3 + 1)), nullptr);
}
