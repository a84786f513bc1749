#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <ctime>

#include "oracles/triangulation_literal.h"
#include "support/plane_area.h"
#include "support/random.h"

namespace {

using Loop = std::vector<giPoint2>;

Loop rectangle(double x0, double y0, double x1, double y1) { return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}; }
Loop reversed(Loop loop) {
  std::reverse(loop.begin(), loop.end());
  return loop;
}

// The loops around a random set of cells of a grid: any number, nested any depth. Nodes stand 32 apart and are moved by
// whole numbers less than a quarter of that, or not at all, which makes many points of one line and of one circle; then
// all is turned.
class RandomArea {
 public:
  explicit RandomArea(Random& random)
      : random_(random), size_(random.between(1, 9)), cells_((size_ + 2) * (size_ + 2), 0) {
    const int out_of_ten = random.between(3, 9);
    for (int y = 1; y <= size_; ++y) {
      for (int x = 1; x <= size_; ++x) cell(x, y) = random.below(10) < out_of_ten ? 1 : 0;
    }
    cell(1, 1) = 1;
    for (bool again = true; again;) again = fill_corner_contacts();
    place_nodes();
  }

  void give(PlaneArea& area) {
    std::map<int, int> next;
    const auto edge = [&](int x0, int y0, int x1, int y1) { next[y0 * 100 + x0] = y1 * 100 + x1; };
    for (int y = 1; y <= size_; ++y) {
      for (int x = 1; x <= size_; ++x) {
        if (cell(x, y) == 0) continue;
        if (cell(x, y - 1) == 0) edge(x, y, x + 1, y);
        if (cell(x + 1, y) == 0) edge(x + 1, y, x + 1, y + 1);
        if (cell(x, y + 1) == 0) edge(x + 1, y + 1, x, y + 1);
        if (cell(x - 1, y) == 0) edge(x, y + 1, x, y);
      }
    }
    while (!next.empty()) {
      Loop loop;
      for (auto at = next.begin(); at != next.end(); at = next.find(loop_next_)) {
        loop.push_back(nodes_[at->first]);
        loop_next_ = at->second;
        next.erase(at);
      }
      area.add_loop(merge_straight_ ? without_straight_corners(loop) : loop);
    }
  }

 private:
  char& cell(int x, int y) { return cells_[static_cast<std::size_t>(y * (size_ + 2) + x)]; }

  bool fill_corner_contacts() {
    for (int y = 0; y <= size_; ++y) {
      for (int x = 0; x <= size_; ++x) {
        if (cell(x, y) != cell(x + 1, y + 1) || cell(x + 1, y) != cell(x, y + 1) || cell(x, y) == cell(x + 1, y))
          continue;
        cell(std::max(x, 1), y == 0 || cell(std::max(x, 1), y) != 0 ? y + 1 : y) = 1;
        cell(std::min(x + 1, size_), cell(std::min(x + 1, size_), y) != 0 || y == 0 ? y + 1 : y) = 1;
        return true;
      }
    }
    return false;
  }

  void place_nodes() {
    const int most = random_.one_in(2) ? 0 : random_.between(1, 7);
    merge_straight_ = most == 0 && random_.one_in(2);
    const int cosine = random_.between(0, 2), sine = cosine == 0 ? 1 : random_.between(-2, 2);
    for (int y = 1; y <= size_ + 1; ++y) {
      for (int x = 1; x <= size_ + 1; ++x) {
        const int px = 32 * x + random_.between(-most, most), py = 32 * y + random_.between(-most, most);
        nodes_[y * 100 + x] = giPoint2(cosine * px - sine * py, sine * px + cosine * py);
      }
    }
  }

  static Loop without_straight_corners(const Loop& loop) {
    Loop kept;
    for (std::size_t i = 0; i < loop.size(); ++i) {
      const giPoint2 &a = loop[(i + loop.size() - 1) % loop.size()], &b = loop[i], &c = loop[(i + 1) % loop.size()];
      if ((b.x - a.x) * (c.y - b.y) != (b.y - a.y) * (c.x - b.x)) kept.push_back(b);
    }
    return kept;
  }

  Random& random_;
  int size_;
  std::vector<char> cells_;
  std::map<int, giPoint2> nodes_;
  int loop_next_ = 0;
  bool merge_straight_ = false;
};

TEST(Triangulation, RandomAreasWithHolesAndIslandsAreCoveredByDelaunayTriangles) {
  Random random(1);
  int with_holes = 0;
  for (int round = 0; round < 3000; ++round) {
    PlaneArea area(1.0);
    RandomArea(random).give(area);
    ASSERT_EQ(area.triangulate(nullptr), at2_success) << round;
    ASSERT_EQ(triangulation_fault(area), "") << round;
    ASSERT_EQ(area.interior_count(), 0u);
    with_holes += area.triangles.size() + 2 != area.boundary_count() ? 1 : 0;
  }
  EXPECT_GT(with_holes, 1000);
}

TEST(Triangulation, InteriorNodesKeepTheSpacingInRandomAreas) {
  Random random(2);
  std::size_t nodes = 0;
  for (int round = 0; round < 200; ++round) {
    const double spacing = random.between(6.0, 80.0);
    PlaneArea area(spacing, spacing * random.between(0.1, 10.0));
    RandomArea(random).give(area);
    ASSERT_EQ(area.run(), at2_success) << round;
    ASSERT_EQ(triangulation_fault(area), "") << round;
    ASSERT_EQ(spacing_fault(area), "") << round;
    ASSERT_FALSE(area.percents_fall);
    ASSERT_EQ(area.seen_data, &area);
    nodes += area.interior_count();
  }
  EXPECT_GT(nodes, 5000u);
}

// Few points on a small grid make every kind of contact; what to expect is found by comparing all edges with each
// other.
TEST(Triangulation, ContactsCrossingsAndDirectionsAreFoundInRandomLoops) {
  Random random(3);
  std::map<int, int> met;
  for (int round = 0; round < 10000; ++round) {
    PlaneArea area(1.0);
    const int range = random.between(2, 12);
    for (int loop = random.between(1, 3); loop > 0; --loop) {
      Loop points;
      for (int n = random.between(3, 5); n > 0; --n)
        points.emplace_back(random.between(0, range), random.between(0, range));
      area.add_loop(points);
    }
    const ExpectedErrors expected = expected_errors(area);
    const at2PlaneError error = round % 2 == 0 ? area.triangulate(nullptr) : area.run();
    ASSERT_TRUE(error == expected.error || error == expected.or_else)
        << round << ": " << error << " for " << expected.error;
    ++met[error];
    if (error == at2_success) {
      ASSERT_EQ(triangulation_fault(area), "") << round;
    } else {
      ASSERT_TRUE(area.made_nothing());
    }
  }
  for (const int error :
       {at2_success, at2_zero_area, at2_coincident_nodes, at2_touching_loops, at2_crossing_loops, at2_wrong_direction})
    EXPECT_GT(met[error], 100) << error;
}

TEST(Triangulation, RoundHolesAtTheirEdgeLengthHaveNoSharpAngle) {
  for (int n = 3; n <= 800; n += n < 50 ? 1 : n) {
    const double edge = 2.0 * std::sin(3.141592653589793 / n);
    PlaneArea area(edge);
    area.add_loop(circle_loop(n));
    ASSERT_EQ(area.run(), at2_success) << n;
    EXPECT_EQ(triangulation_fault(area), "") << n;
    if (n < 60) {
      EXPECT_EQ(spacing_fault(area), "") << n;
    }
    EXPECT_GE(sharpest_angle(area), 25.0) << n;
    const double even = 0.5 * n * std::sin(6.283185307179586 / n) / (0.866 * edge * edge);  // nodes of a hexagonal grid
    EXPECT_LE(area.interior_count(), 1.2 * even) << n;
    EXPECT_GE(area.interior_count(), 0.9 * even - 0.7 * n) << n;
  }
}

// Whole numbers times any power of two give the same triangles; far from the origin only rounding may change them.
TEST(Triangulation, UnitAndPlaceDoNotMatter) {
  PlaneArea reference(0.1);
  reference.add_loop(circle_loop(60));
  reference.add_loop(reversed(circle_loop(30, 0.5)));
  ASSERT_EQ(reference.run(), at2_success);
  for (const int exponent : {-1000, -400, 0, 400, 1022}) {
    PlaneArea area(std::ldexp(0.1, exponent));
    area.add_loop(circle_loop(60, std::ldexp(1.0, exponent)));
    area.add_loop(reversed(circle_loop(30, std::ldexp(0.5, exponent))));
    ASSERT_EQ(area.run(), at2_success) << exponent;
    EXPECT_EQ(area.triangles, reference.triangles) << exponent;
    EXPECT_EQ(area.points.back().x, std::ldexp(reference.points.back().x, exponent));
  }
  PlaneArea far(0.1);
  Loop circle = circle_loop(60);
  for (giPoint2& p : circle) p = giPoint2(p.x + 1e9, p.y - 1e9);
  far.add_loop(circle);
  ASSERT_EQ(far.run(), at2_success);
  EXPECT_EQ(triangulation_fault(far), "");
  EXPECT_GT(sharpest_angle(far), 20.0);
}

struct Refusal {
  const char* what;
  at2PlaneError error;
  double spacing, grading;
  std::vector<Loop> loops;
};

TEST(Triangulation, EachFaultOfTheInputHasItsError) {
  const Loop square = rectangle(0, 0, 4, 4), inner = rectangle(1, 1, 2, 2);
  const double inf = INFINITY;
  const Refusal cases[] = {
      {"spacing 0", at2_bad_length, 0.0, 1.0, {square}},
      {"spacing below 0", at2_bad_length, -1.0, 1.0, {square}},
      {"spacing not a number", at2_bad_length, NAN, 1.0, {square}},
      {"grading not a number", at2_bad_length, 1.0, NAN, {square}},
      {"grading 0", at2_bad_length, 1.0, 0.0, {square}},
      {"length before the edges", at2_bad_length, 0.0, 1.0, {}},
      {"no edges", at2_open_loop, 1.0, 1.0, {}},
      {"infinite", at2_not_finite, 1.0, 1.0, {{{0, 0}, {inf, 0}, {0, 1}}}},
      {"not a number", at2_not_finite, 1.0, 1.0, {{{0, 0}, {1, 0}, {0, NAN}}}},
      {"an edge that ends where it starts", at2_repeated_node, 1.0, 1.0, {square, {{1, 1}}}},
      {"two nodes", at2_zero_area, 1.0, 1.0, {{{0, 0}, {1, 0}}}},
      {"one line", at2_zero_area, 1.0, 1.0, {{{0, 0}, {1, 3}, {2, 6}, {-1, -3}}}},
      {"one place", at2_zero_area, 1.0, 1.0, {{{5, 5}, {5, 5}, {5, 5}}}},
      {"two of one place", at2_coincident_nodes, 1.0, 1.0, {square, reversed({{2, 2}, {3, 2}, {4, 4}})}},
      {"too close to tell apart", at2_coincident_nodes, 1.0, 1.0, {{{0, 0}, {1e300, 0}, {1e300, 1e300}, {0, 1e-300}}}},
      {"a hole's corner on an edge", at2_touching_loops, 1.0, 1.0, {square, reversed({{1, 1}, {4, 2}, {1, 2}})}},
      {"a spike", at2_touching_loops, 1.0, 1.0, {{{0, 0}, {4, 0}, {2, 0}, {2, 2}}}},
      {"two edges on each other", at2_coincident_nodes, 1.0, 1.0, {square, rectangle(4, 0, 5, 4)}},
      {"figure of eight", at2_crossing_loops, 1.0, 1.0, {{{0, 0}, {4, 4}, {4, 0}, {0, 4}}}},
      {"hole half outside", at2_crossing_loops, 1.0, 1.0, {square, reversed(rectangle(3, 1, 5, 2))}},
      {"clockwise", at2_wrong_direction, 1.0, 1.0, {reversed(square)}},
      {"hole counter-clockwise", at2_wrong_direction, 1.0, 1.0, {square, inner}},
      {"hole outside", at2_wrong_direction, 1.0, 1.0, {square, reversed(rectangle(5, 5, 6, 6))}},
      {"more than 10^7 nodes", at2_too_many_nodes, 1e-3, 1.0, {square}},
      {"tiny spacing", at2_too_many_nodes, 1e-300, 1e-300, {square}},
      {"least spacing", at2_too_many_nodes, 5e-324, inf, {square}},
      {"huge coordinates", at2_too_many_nodes, 1.0, 1.0, {rectangle(-1e300, -1e300, 1e300, 1e300)}},
  };
  for (const Refusal& c : cases) {
    PlaneArea area(c.spacing, c.grading);
    for (const Loop& loop : c.loops) area.add_loop(loop);
    EXPECT_EQ(area.generate_interior_nodes(nullptr), c.error) << c.what;
    if (c.error != at2_too_many_nodes) {
      EXPECT_EQ(area.triangulate(nullptr), c.error) << c.what;
    }
    EXPECT_TRUE(area.made_nothing()) << c.what;
  }
}

TEST(Triangulation, GraphsOfEdgesThatAreNoLoopsAreRefused) {
  const struct {
    std::vector<std::pair<int, int>> edges;
    at2PlaneError error;
  } cases[] = {{{{0, 1}, {1, 2}}, at2_open_loop},
               {{{0, 1}, {1, 2}, {0, 2}}, at2_open_loop},
               {{{0, 1}, {1, 2}, {2, 0}, {2, 3}}, at2_open_loop},
               {{{0, 1}, {1, 2}, {2, 0}, {0, 1}}, at2_open_loop},
               {{{0, 1}, {1, 2}, {2, 0}, {0, 1}, {1, 2}, {2, 0}}, at2_repeated_node},
               {{{0, 1}, {1, 2}, {2, 0}, {0, 3}, {3, 4}, {4, 0}}, at2_repeated_node},
               {{{0, 1}, {1, 2}, {2, 0}, {3, 3}}, at2_repeated_node}};
  for (const auto& c : cases) {
    PlaneArea area(1.0);
    area.points = {{0, 0}, {2, 0}, {0, 2}, {-1, 0}, {0, -1}};
    for (const auto& [a, b] : c.edges) area.add_edge(a, b);
    EXPECT_EQ(area.run(), c.error) << c.edges.size();
    EXPECT_TRUE(area.triangles.empty());
  }
}

TEST(Triangulation, NodesOutsideTheBoxAreRefusedUntilTheBoxHoldsThem) {
  PlaneArea area(1.0);
  area.add_loop(rectangle(0, 0, 4, 4));
  area.set_box(giBox2(giPoint2(0, 0), giPoint2(4, 3)));
  EXPECT_EQ(area.run(), at2_outside_box);
  area.set_box(giBox2(giPoint2(0, 0), giPoint2(NAN, 4)));
  EXPECT_EQ(area.run(), at2_not_finite);
  area.set_box(giBox2());
  EXPECT_EQ(area.run(), at2_outside_box);
  EXPECT_TRUE(area.made_nothing());
  area.set_box(giBox2(giPoint2(0, 0), giPoint2(4, 4)));
  EXPECT_EQ(area.run(), at2_success);
  EXPECT_EQ(triangulation_fault(area), "");
}

TEST(Triangulation, InterruptionAtAnyPollMakesNothing) {
  int interrupted = 0;
  for (int poll = 1;; ++poll) {
    PlaneArea area(0.04);
    area.add_loop(circle_loop(150));
    area.stop_at = poll;
    const at2PlaneError error = area.run();
    if (error == at2_success) {
      EXPECT_EQ(triangulation_fault(area), "");  // asked too late: nodes were being made
      break;
    }
    ++interrupted;
    ASSERT_EQ(error, at2_interrupted);
    ASSERT_TRUE(area.made_nothing()) << poll;
    area.stop_at = 0;  // nothing of the interrupted work is left
    ASSERT_EQ(area.triangulate(nullptr), at2_success);
    ASSERT_EQ(area.interior_count(), 0u);
    ASSERT_LT(poll, 1000);
  }
  EXPECT_GT(interrupted, 12);
}

TEST(Triangulation, RefusedNodeEndsTheWorkBeforeAnyTriangle) {
  PlaneArea area(0.2);
  area.add_loop(circle_loop(40));
  area.refused_node = 45;
  EXPECT_EQ(area.run(), at2_node_refused);
  EXPECT_EQ(area.interior_count(), 5u);
  EXPECT_TRUE(area.triangles.empty());
}

double processor_time_of_run(PlaneArea& area) {
  const std::clock_t start = std::clock();
  EXPECT_EQ(area.run(), at2_success);
  return static_cast<double>(std::clock() - start);
}

// Shapes that turn an insertion, a walk or the laying of an edge into work for every node, beside a round hole of as many
// edges. With square growth the arc below a long edge takes over fifty times as long.
TEST(Triangulation, LongBoundariesOfAwkwardShapesTakeNoSquareTime) {
  constexpr int n = 20000;
  Loop comb, arc, spiral;
  for (int i = 0; i < n / 2; ++i) {  // teeth a million times as long as wide
    comb.emplace_back(1e-6 * i, 0.0);
    comb.emplace_back(1e-6 * (i + 0.5), 1.0);
  }
  comb.emplace_back(1e-6 * n, -1.0);
  comb.emplace_back(-1e-6 * n, -1.0);
  for (int i = 0; i <= n; ++i)
    arc.emplace_back(double(i) / n, 1e-3 * double(i) / n * (double(i) / n - 1.0));  // below a long edge
  for (int i = 0; i < n / 2; ++i)
    spiral.emplace_back((1.0 + 1e-3 * i) * std::cos(0.05 * i), (1.0 + 1e-3 * i) * std::sin(0.05 * i));
  for (int i = n / 2 - 1; i >= 0; --i)
    spiral.emplace_back((0.95 + 1e-3 * i) * std::cos(0.05 * i), (0.95 + 1e-3 * i) * std::sin(0.05 * i));
  PlaneArea round_hole(1e9);
  round_hole.add_loop(circle_loop(n));
  const double round_time = processor_time_of_run(round_hole);
  for (const Loop& loop : {reversed(comb), arc, spiral}) {
    PlaneArea area(1e9);
    area.add_loop(loop);
    EXPECT_LT(processor_time_of_run(area), 10.0 * round_time);
    EXPECT_EQ(triangulation_fault(area), "");
  }
}

}  // namespace
