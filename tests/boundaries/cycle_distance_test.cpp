#include <gtest/gtest.h>

#include <cfloat>

#include "boundaries/boundary_shapes.h"
#include "oracles/boundaries_literal.h"
#include "support/interrupting_handler.h"

namespace {

// Distance from a line along z and depth along it are those of the coordinates.
struct Seen {
  double distance, depth;
};

Seen seen_along_z(const giPoint3& q, const giPoint3& line) {
  return {std::hypot(q.x - line.x, q.y - line.y), q.z - line.z};
}

bool better(const Seen& a, const Seen& best, double tol) {
  if (std::abs(a.distance - best.distance) <= tol) return a.depth < best.depth;
  return a.distance < best.distance;
}

void spread(Shape& shape, Random& random, double jitter) {
  for (giPoint3& p : shape.points) {
    p = giPoint3(p.x + random.between(-jitter, jitter), p.y + random.between(-jitter, jitter),
                 p.z + random.between(-jitter, jitter));
  }
}

}  // namespace

// On a coarse grid many nodes lie equally far from the line within the tolerance: of those the first along the line
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
        const Seen seen = seen_along_z(block.point(n), from);
        const bool first = best == -1;
        const Seen former = first ? seen : seen_along_z(block.point(best), from);
        ties += !first && std::abs(seen.distance - former.distance) <= tol && seen.depth < former.depth;
        if (first || better(seen, former, tol)) best = n;
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
    for (const auto& cycle : all_cycles(set)) {
      for (std::size_t k = 0; k < cycle.size(); ++k) {
        const giPoint3 a = block.point(cycle[k]);
        const giPoint3 b = block.point(cycle[(k + 1) % cycle.size()]);
        for (int step = 0; step <= 200; ++step) {
          least = std::min(least, seen_along_z(gi_interpolate(a, b, step / 200.0), from).distance);
        }
      }
    }
    const giPoint3 found = set.closest_edge_point(from, giUnitVec3(), 0.0);
    const double distance = seen_along_z(found, from).distance;
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
  int local = 0;
  int moved = 0;
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
          if (m != n && !block.node(m).a_edges.empty())
            least = std::min(least, block.point(n).distance(block.point(m)));
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
