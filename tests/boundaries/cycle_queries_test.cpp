// What is asked of a set of cycles: what lies nearest to a line, the gap between boundaries, reports and pictures.

#include <gtest/gtest.h>

#include <cfloat>

#include "boundaries/boundary_shapes.h"
#include "oracles/boundaries_literal.h"
#include "support/captured_output.h"
#include "support/command_file.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/validator.h"

namespace {

double from_line(const giPoint3& q, const giPoint3& line) { return std::hypot(q.x - line.x, q.y - line.y); }

void spread(Shape& shape, Random& random, double jitter) {
  for (giPoint3& p : shape.points) {
    for (int k = 0; k < 3; ++k) p[k] += random.between(-jitter, jitter);
  }
}

struct Texts {
  std::string screen;
  std::string file;
};

Texts report(const trCycleArray& set, int detailed) {
  const MarkingHook hook;
  CapturedOutput out;
  CommandFile commands;
  set.info(commands.file(), detailed);
  std::fclose(commands.file());
  return {out.take(), commands.text()};
}

std::string picture_of(const trCycleArray& set) {
  CommandFile picture;
  set.write(picture.file());
  return picture.text();
}

// 22 loose triangles and a square of two.
Shape loose_and_square() {
  Shape shape = loose_triangles(22);
  const int n = static_cast<int>(shape.points.size());
  for (int k = 0; k < 4; ++k) shape.points.emplace_back(k % 2, k / 2, 9);
  shape.triangles.push_back({n, n + 1, n + 2});
  shape.triangles.push_back({n + 1, n + 3, n + 2});
  return shape;
}

}  // namespace

// On a coarse grid many nodes lie equally far from the line, which runs along z, within the tolerance: of those the first along the line
// wins, in the order of the walk. The filter by boxes must not change the answer.
TEST(CyclePickQueries, TheNearestNodeAndOfTiesTheFirstAlongTheLine) {
  Random random(5);
  int ties = 0;
  for (int round = 0; round < 700; ++round) {
    BlockOf block(exploded(random_tangle(random, 12, random.between(1, 12), 4)));
    trCycleArray set(&block);
    const giPoint3 from(random.below(5) - 0.5, random.below(5) - 0.25, -random.below(9));
    const double tol = random.one_in(2) ? 0.3 : 0.0;
    int best = -1;
    for (const auto& cycle : all_cycles(set)) {
      for (int n : cycle) {
        const double nearer = best == -1 ? DBL_MAX : from_line(block.point(best), from) - from_line(block.point(n), from);
        const bool is_tie = std::abs(nearer) <= tol, comes_first = best == -1 || block.point(n).z < block.point(best).z;
        ties += is_tie && comes_first;
        if (is_tie ? comes_first : nearer > 0) best = n;
      }
    }
    ASSERT_EQ(set.closest_node(from, giUnitVec3(), tol), best) << "round " << round;
  }
  EXPECT_GE(ties, 200);
}

TEST(CyclePickQueries, TheNearestPointOfAnyEdge) {
  Random random(6);
  int inner = 0;
  for (int round = 0; round < 300; ++round) {
    Shape shape = exploded(random_tangle(random, 12, random.between(1, 12), 4));
    spread(shape, random, 0.2);
    BlockOf block(shape);
    trCycleArray set(&block);
    const giPoint3 from(random.between(-1.0, 4.0), random.between(-1.0, 4.0), -5);
    double least = DBL_MAX;
    for (const auto& [a, b] : expected_free_edges(block)) {
      for (int step = 0; step <= 200; ++step) {
        least = std::min(least, from_line(gi_interpolate(block.point(a), block.point(b), step / 200.0), from));
      }
    }
    const double distance = from_line(set.closest_edge_point(from, giUnitVec3(), 0.0), from);
    ASSERT_LE(distance, least + 1e-9);
    ASSERT_GE(distance, least - 0.05) << "and it lies on an edge";
    inner += distance < least;
  }
  EXPECT_GE(inner, 100);
}

TEST(CyclePickQueries, EdgesAlongTheLineAndPlacesThatAreNotNumbers) {
  Shape shape = loose_triangles(2);
  shape.points[0] = giPoint3(std::nan(""), 0, 0);
  shape.points[3] = giPoint3(0, 0, 9);
  shape.points[4] = giPoint3(0, 0, 4);
  BlockOf block(shape);
  trCycleArray set(&block);
  EXPECT_EQ(set.closest_node(giPoint3(0, 0, 0), giUnitVec3(), 0.0), 5) << "the end that comes first";
  EXPECT_EQ(set.closest_edge_point(giPoint3(0, 0, 0), giUnitVec3(), 0.0), giPoint3(0, 0, 4));

  BlockOf closed(closed_box());
  trCycleArray none(&closed);
  EXPECT_EQ(none.closest_node(giPoint3(), giUnitVec3(), 1.0), -1);
  EXPECT_EQ(none.closest_edge_point(giPoint3(), giUnitVec3(), 1.0), giPoint3());
}

// The rule looks only at what lies near the `from` of the least distance so far, so its result depends on its order,
// which the search through a tree must follow to the last bit.
TEST(CycleDistance, IsThatOfComparingEveryNodeWithEveryEdge) {
  Random random(7);
  int local = 0, moved = 0;
  for (int round = 0; round < 1500; ++round) {
    const int grid = random.between(2, 40);
    Shape shape = random_tangle(random, random.between(4, 30), random.between(1, 15), grid);
    if (random.one_in(2)) shape = exploded(shape);
    if (random.one_in(3)) spread(shape, random, 1e-5 * random.below(3));
    if (random.one_in(4)) spread(shape, random, 0.5);
    const double scale = random.one_in(8) ? 1e160 : (random.one_in(8) ? 1e-7 : 1.0);
    for (giPoint3& p : shape.points) p = giPoint3(p.x * scale, p.y * scale, p.z * scale);
    if (random.one_in(10)) shape.points[0].y = random.one_in(2) ? std::nan("") : HUGE_VAL;
    BlockOf block(shape);
    trCycleArray set(&block);
    const auto cycles = all_cycles(set);
    const GapLiteral expected = measure_distance_literal(block, cycles);
    giPoint3 from, to;
    const giLength found = set.measure_distance(from, to);
    ASSERT_EQ(found.value(), expected.distance) << "round " << round;
    ASSERT_EQ(from, expected.from) << "round " << round;
    ASSERT_EQ(to, expected.to) << "round " << round;
    moved += found.is_set() && found.value() > 0;
    double least = DBL_MAX;
    for (const auto& cycle : cycles) {
      for (int n : cycle) {
        for (int m = 1; m < block.node_count(); ++m) {
          if (m != n && !block.node(m).a_edges.empty()) least = std::min(least, block.point(n).distance(block.point(m)));
        }
      }
    }
    local += found.is_set() && found.value() > 1.001 * least;
  }
  EXPECT_GE(moved, 200);
  EXPECT_GE(local, 20) << "cases in which the rule misses the least gap of all";
}

TEST(CycleDistance, ReportsEveryBoundary) {
  BlockOf block(loose_triangles(3));
  trCycleArray set(&block);
  set.num_boundaries();
  set.cycles[1].start = -1;
  InterruptingHandler handler;
  giPoint3 from, to;
  set.measure_distance(from, to);
  EXPECT_EQ(handler.messages, (std::vector<std::string>{"  3 boundaries:    0", "  3 boundaries:    2"}));
  EXPECT_EQ(handler.percents, (std::vector<double>{0, 66}));
}

// Ten values a line, each with a blank before it: so two after the name. A closed mesh has no distribution.
TEST(CycleReport, TellsHowManyBoundariesHaveHowManyEdges) {
  BlockOf block(loose_and_square());
  const trCycleArray set(&block);
  const std::string summary = "<Boundary info...\n< Boundary count: 23\n< Boundary edge count: 70\n";
  const std::string registers = "INPUT REGISTER @NUMBOU 23\nINPUT REGISTER @NUMEDGE 70\n";
  const Texts brief = report(set, 0), full = report(set, 1);
  EXPECT_EQ(brief.screen, summary);
  EXPECT_EQ(brief.file, registers);
  EXPECT_EQ(full.screen, summary + "<  Boundary edge distribution:- \n<   3 sided: 22\n<   4 sided: 1\n");
  EXPECT_EQ(full.file, registers + "INPUT LIST @BOU  3 3 3 3 3 3 3 3 3 3\nAPPEND LIST @BOU  3 3 3 3 3 3 3 3 3 3\n"
                                   "APPEND LIST @BOU  3 3 4\n");
  block.verbose = 1;
  EXPECT_EQ(report(set, 0).screen, full.screen);
  CapturedOutput out;
  set.info(nullptr, 0);
  EXPECT_EQ(out.take().substr(0, 17), "Boundary info...\n");

  BlockOf closed(closed_box());
  const Texts texts = report(trCycleArray(&closed), 1);
  EXPECT_EQ(texts.screen, "<Boundary info...\n< Boundary count: 0\n< Boundary edge count: 0\n");
  EXPECT_EQ(texts.file, "INPUT REGISTER @NUMBOU 0\nINPUT REGISTER @NUMEDGE 0\n");
}

TEST(CycleReport, AnInterruptionAtAnyPollEndsItWhereItIs) {
  const Shape shape = loose_and_square();
  BlockOf whole(shape);
  const Texts full = report(trCycleArray(&whole), 1);
  int cut = 0;
  bool stopped = true;
  for (int stop = 1; stopped; ++stop) {
    BlockOf block(shape);
    const trCycleArray set(&block);
    InterruptingHandler handler(stop);
    const Texts texts = report(set, 1);
    stopped = handler.interrupted_flag;
    ASSERT_EQ(texts.screen, full.screen.substr(0, texts.screen.size()));
    ASSERT_EQ(texts.file, full.file.substr(0, texts.file.size()));
    ASSERT_TRUE(stopped || texts.file == full.file);
    cut += stopped && texts.file.size() > 60;
  }
  EXPECT_GE(cut, 20);
}

// Each polyline has a point more than edges; the message counts edges.
TEST(CycleReport, ThePictureDrawsEachBoundaryAsAClosedPolyline) {
  BlockOf block(loose_triangles(2));
  block.set_node(6, giPoint3(3, 1.5, -2));
  trCycleArray set(&block);
  const std::string start = "EDIT PLEV 0#UNSET ECHO\nDELETE PICTURE\n";
  const MarkingHook hook;
  CapturedOutput out;
  EXPECT_EQ(picture_of(set),
            start +
                "INPUT PIX 1 0.000000 0.000000 0.000000\nEDIT PIX 1 INV\n"
                "INPUT PIX 2 1.000000 0.000000 0.000000 $$ = NODE 2\nINPUT PIX 3 0.000000 1.000000 0.000000 $$ = NODE 3\n"
                "INPUT PIX 4 0.000000 0.000000 0.000000 $$ = NODE 1\n"
                "INPUT PIX 5 3.000000 0.000000 0.000000\nEDIT PIX 5 INV\n"
                "INPUT PIX 6 4.000000 0.000000 0.000000 $$ = NODE 5\nINPUT PIX 7 3.000000 1.500000 -2.000000 $$ = NODE 6\n"
                "INPUT PIX 8 3.000000 0.000000 0.000000 $$ = NODE 4\n");
  EXPECT_EQ(out.take(), "<Writing picture file ...\n<... 6 boundary edges written.\n");
  set.cycles[0].start = -1;
  EXPECT_EQ(picture_of(set).substr(0, 77), start + "INPUT PIX 1 3.000000 0.000000 0.000000\n");
  InterruptingHandler handler(1);
  EXPECT_EQ(picture_of(set), start) << "and the file is closed";
}
