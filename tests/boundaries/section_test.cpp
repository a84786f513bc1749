#include <gtest/gtest.h>

#include <cfloat>
#include <chrono>

#include "boundaries/boundary_shapes.h"
#include "boundaries/section.h"
#include "oracles/boundaries_literal.h"
#include "oracles/point_tree_literal.h"
#include "support/command_file.h"
#include "support/interrupting_handler.h"
#include "support/numbers.h"

namespace {

struct OpenedSection : trSection {
  using trSection::add_edge;
  using trSection::edge_cancelled;
  using trSection::trace_boundaries;
  using trSection::trSection;
  using trSection::unduplicate_nodes;
};

std::vector<std::vector<int>> chains_of(const trSection& section) {
  std::vector<std::vector<int>> chains;
  for (int b = 0; b < section.n_boundaries(); ++b) chains.push_back(numbers_in(*section.boundaries[b]));
  return chains;
}

double length_of(const trSection& section, int b) {
  double length = 0.0;
  for (int i = 1; i < section.n_boundary_points(b); ++i) {
    length += section.boundary_point(b, i - 1).distance(section.boundary_point(b, i));
  }
  return length;
}

}  // namespace

// Segments between few points on a grid, some of them nearly coincident: merged and chained as the rules say.
TEST(Section, MergesAndChainsAsTheRulesSay) {
  Random random(9);
  int open = 0, closed = 0;
  for (int round = 0; round < 1500; ++round) {
    OpenedSection section(nullptr);
    PointTreeLiteral tree(1e-5, true);
    std::vector<std::pair<int, int>> segments;
    std::vector<int> map;
    const int grid = random.between(2, 5);
    const auto place = [&] {
      const double near = random.one_in(3) ? 4e-6 * random.below(5) : 0.0;
      return giPoint3(random.below(grid) + near, random.below(grid), 0);
    };
    for (int n = random.between(1, 25); n > 0; --n) {
      const giPoint3 ends[2] = {place(), place()};
      section.add_edge(ends[0], ends[1]);
      for (const giPoint3& p : ends) {
        const int found = tree.add(p, static_cast<int>(map.size()));
        map.push_back(found < 0 ? static_cast<int>(map.size()) : found);
      }
      segments.emplace_back(map[map.size() - 2], map.back());
      if (segments.back().first == segments.back().second) segments.back() = {-1, -1};
    }
    section.unduplicate_nodes();
    for (int e = 0; e < section.edge_start.count(); ++e) {
      const std::pair<int, int> ends(section.edge_start[e], section.edge_end[e]);
      ASSERT_EQ(ends, segments[static_cast<std::size_t>(e)]) << "round " << round;
    }
    for (std::size_t i = 0; i < map.size(); ++i) {
      ASSERT_EQ(section.points[static_cast<int>(i)].invalid(), map[i] != static_cast<int>(i));
    }
    section.trace_boundaries();
    const auto expected = trace_literal(segments, section.points.count());
    ASSERT_EQ(chains_of(section), expected) << "round " << round;
    for (const auto& chain : expected) (chain.front() == chain.back() ? closed : open)++;
  }
  EXPECT_GE(open, 1000);
  EXPECT_GE(closed, 400);
}

// A torus is cut into two circles by a plane across its axis and, along the axis, into the two circles of its tube.
TEST(Section, OfAClosedMeshAreLoopsThatNameTheirFirstPointTwice) {
  const double pi = std::acos(-1.0), half = std::sqrt(1 - 0.01);
  BlockOf block(torus(64, 32));
  OpenedSection section(&block);
  for (const gi_Axis axis : {gi_z_axis, gi_x_axis}) {
    section.section(axis, 0.1);
    ASSERT_EQ(section.n_boundaries(), 2);
    double lengths[2] = {length_of(section, 0), length_of(section, 1)};
    std::sort(lengths, lengths + 2);
    EXPECT_NEAR(lengths[0], 2 * pi * (axis == gi_z_axis ? 2 - half : 1), 0.1);
    EXPECT_NEAR(lengths[1], 2 * pi * (axis == gi_z_axis ? 2 + half : 1), 0.1);
    for (int b = 0; b < 2; ++b) {
      const int points = section.n_boundary_points(b);
      if (axis == gi_z_axis) { EXPECT_EQ(points, 129) << "64 quadrilaterals of two triangles, closed"; }
      EXPECT_EQ(section.boundary_point(b, 0), section.boundary_point(b, points - 1));
      for (int i = 0; i < points; ++i) EXPECT_NEAR(section.boundary_point(b, i)[axis], 0.1, 1e-9);
      EXPECT_TRUE(section.boundary_point(b, points).invalid());
    }
    for (int e = 0; e < section.edge_start.count(); ++e) EXPECT_TRUE(section.edge_cancelled(e)) << "tracing uses segments up";
    EXPECT_TRUE(section.boundary_point(2, 0).invalid());
  }
  section.section(gi_z_axis, 3.0);
  EXPECT_EQ(section.n_boundaries(), 0) << "nothing is crossed";
  EXPECT_EQ(section.points.count(), 0);
}

// Very many separate teeth; very many pages of a book, all segments of which start at its spine; and one long zigzag, which
// is a single chain. A search along the segments for each chain, or for each step, would take minutes.
TEST(Section, OfVeryManySegments) {
  constexpr int many = 100000;
  const auto start = std::chrono::steady_clock::now();
  Shape comb, book{{{0, 0, -1}, {0, 0, 1}}, {}}, zigzag;
  for (int k = 0; k < many; ++k) {
    comb.points.insert(comb.points.end(), {giPoint3(k, 0, -1), giPoint3(k, 1, 1), giPoint3(k, 0, 1)});
    comb.triangles.push_back({3 * k, 3 * k + 1, 3 * k + 2});
    const double angle = 6.28 * k / many;
    book.points.emplace_back(1e4 * std::cos(angle), 1e4 * std::sin(angle), 1);
    book.triangles.push_back({0, 1, k + 2});
    zigzag.points.insert(zigzag.points.end(), {giPoint3(k, k % 2, -1), giPoint3(k, k % 2, 1)});
    if (k > 0) zigzag.triangles.insert(zigzag.triangles.end(), {{2 * k - 2, 2 * k, 2 * k - 1}, {2 * k - 1, 2 * k, 2 * k + 1}});
  }
  const struct {
    const Shape& shape;
    int chains;
    int points;
  } cases[] = {{comb, many, 2}, {book, many, 2}, {zigzag, 1, 2 * many - 1}};
  for (const auto& c : cases) {
    BlockOf block(shuffled(c.shape, 3));
    trSection section(&block);
    section.section(gi_z_axis, 0);
    ASSERT_EQ(section.n_boundaries(), c.chains);
    EXPECT_EQ(section.n_boundary_points(0), c.points);
    EXPECT_EQ(section.n_boundary_points(c.chains - 1), c.points);
  }
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 30.0);
}

// Within the tolerance a node in the plane counts as not below it.
TEST(Section, ATouchFromAboveAddsNothingAndOneFromBelowASegmentOfNoLength) {
  BlockOf block({{{0, 0, 0.99e-5}, {1, 0, 1}, {0, 1, 1}, {1, 1, -1}, {-1, 1, -1}}, {{0, 1, 2}}});
  trSection section(&block);
  section.section(gi_z_axis, 1.98e-5);
  EXPECT_EQ(section.points.count(), 0);
  section.section(gi_z_axis, 2.1e-5);
  EXPECT_EQ(section.points.count(), 2);
  block.delete_element(1);
  block.generate(1, 4, 5);
  section.section(gi_z_axis, 1.5e-5);
  EXPECT_EQ(section.points.count(), 2);
  EXPECT_EQ(section.n_boundaries(), 0) << "its ends are one point, which cancels it";
}

TEST(Section, InTheFrameOfAWorkplane) {
  BlockOf block(closed_box(giPoint3(), 1, 2, 3));
  trSection section(&block);
  section.section(gi_z_axis, 1.25);
  const double across_z = length_of(section, 0);
  EXPECT_NEAR(across_z, 6.0, 1e-9);
  // The workplane's z axis is the world's x, so the cut lies at x = 0.5 and runs round the sides of 2 and 3.
  ccWorkplane plane(giWorkplane3(giPoint3(0.25, 0, 0), giUnitVec3(gi_y_axis), giUnitVec3(gi_x_axis)));
  section.set_workplane(plane);
  section.section(gi_z_axis, 0.25);
  ASSERT_EQ(section.n_boundaries(), 1);
  EXPECT_NEAR(length_of(section, 0), 10.0, 1e-9);
  EXPECT_NEAR(section.boundary_point(0, 0).x, 0.5, 1e-12);
}

// A triangle cut halfway, the lone corner below: from the edge that leaves it to the edge that comes back.
TEST(Section, ThePictureNumbersPointsThroughoutAndEndsEachLineAtItsFirst) {
  BlockOf block({{{0, 0, 0}, {2, 0, 2}, {0, 2, 2}, {5, 0, 0}, {7, 0, 2}, {5, 2, 2}}, {{0, 1, 2}, {3, 5, 4}}});
  trSection section(&block);
  section.section(gi_z_axis, 1.0);
  CommandFile picture;
  section.write_pic(picture.file());
  EXPECT_EQ(picture.text(),
            "EDIT PLEV 0#UNSET ECHO\nDELETE PICTURE\n"
            "INPUT PIX 1 1.000000 0.000000 1.000000\nEDIT PIX 1 INV\nINPUT PIX 2 0.000000 1.000000 1.000000\n"
            "INPUT PIX 3 1.000000 0.000000 1.000000\n"
            "INPUT PIX 4 5.000000 1.000000 1.000000\nEDIT PIX 4 INV\nINPUT PIX 5 6.000000 0.000000 1.000000\n"
            "INPUT PIX 6 5.000000 1.000000 1.000000\n");
  InterruptingHandler handler(2);
  CommandFile first;
  section.write_pic(first.file());
  EXPECT_EQ(first.text(), picture.text().substr(0, picture.text().find("INPUT PIX 4")));
}
