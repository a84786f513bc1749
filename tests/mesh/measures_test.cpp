// Areas, volumes, mass properties, shapes of triangles, normals and angles between neighbours.

#include <gtest/gtest.h>

#include <cfloat>

#include "mesh/aspect_utils.h"
#include "mesh/measures.h"
#include "oracles/measures_literal.h"
#include "support/block_snapshot.h"
#include "support/random.h"
#include "support/shapes.h"

namespace {

struct Properties {
  double area, volume;
  giPoint3 centre;
  double min_aspect, mean_aspect;
};

Properties properties_of(const trTriBlock& block) {
  Properties p;
  block.properties(p.area, p.volume, p.centre, p.min_aspect, p.mean_aspect);
  return p;
}

void expect_near(const giPoint3& p, const giPoint3& q, double tol) {
  EXPECT_LE(p.distance(q), tol) << p.x << ' ' << p.y << ' ' << p.z;
}

// Four times the squared area.
TEST(Triangle, MeasuresOfARightTriangle) {
  BlockOf block(Shape{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}}});
  EXPECT_EQ(block.area_element(1), 1.0);
  giVector3 n;
  EXPECT_EQ(tr_area_tri_sq(giPoint3(0, 0, 0), giPoint3(3, 0, 0), giPoint3(0, 2, 0), n), 36.0);
  EXPECT_EQ(n, giVector3(0, 0, 6));
}

// The tolerance is on the length of the cross vector, and must be exceeded.
TEST(Triangle, NormalIsAUnitVectorOrTheRawCrossVector) {
  giVector3 n;
  EXPECT_EQ(tr_compute_normal(giPoint3(0, 0, 0), giPoint3(2, 0, 0), giPoint3(0, 2, 0), 3.9, n), 1);
  EXPECT_EQ(n, giVector3(0, 0, 1));
  EXPECT_EQ(tr_compute_normal(giPoint3(0, 0, 0), giPoint3(2, 0, 0), giPoint3(0, 2, 0), 4.0, n), 0);
  EXPECT_EQ(n, giVector3(0, 0, 4));
  EXPECT_EQ(tr_compute_normal(giPoint3(0, 0, 0), giPoint3(1, 1, 1), giPoint3(3, 3, 3), 0.0, n), 0);
}

// Ties go to the lower-numbered edge, so an equilateral triangle stands on edge 0; edge 2 must be strictly longer.
TEST(TriangleHeight, BreaksTiesByEdgeNumber) {
  const struct {
    giPoint3 p0, p1, p2;
    int side;
  } cases[] = {
      {{0, 0, 0}, {1, 1, 0}, {1, 0, 1}, 2},   // all equal
      {{2, 0, 0}, {0, 0, 0}, {0, 0, 2}, 1},   // edge 2 is the longest
      {{0, 3, 0}, {1, 0, 0}, {-1, 0, 0}, 2},  // edges 0 and 2 tie: 0
      {{1, 0, 0}, {0, 3, 0}, {-1, 0, 0}, 2},  // edges 0 and 1 tie: 0
      {{1, 0, 0}, {-1, 0, 0}, {0, 3, 0}, 0},  // edges 1 and 2 tie: 1
  };
  for (const auto& t : cases) {
    int side = -1;
    trAspectUtils::triangle_height(t.p0, t.p1, t.p2, side, nullptr);
    EXPECT_EQ(side, t.side);
  }
}

TEST(TriangleAspect, IsKeptSquaredAndHasNoValueForAPoint) {
  const giLength equilateral =
      trAspectUtils::triangle_aspect(giPoint3(0, 0, 0), giPoint3(1, 0, 0), giPoint3(0.5, std::sqrt(0.75), 0));
  EXPECT_NEAR(equilateral.value(), std::sqrt(0.75), 1e-12);
  EXPECT_NEAR(equilateral.squared(), 0.75, 1e-12);
  const giPoint3 p(4, 5, 6);
  int side = 0;
  EXPECT_FALSE(trAspectUtils::triangle_aspect(p, p, p, side).is_set());
  EXPECT_EQ(trAspectUtils::triangle_aspect(p, p, p).value(), DBL_MAX);
  EXPECT_EQ(trAspectUtils::triangle_aspect(giPoint3(0, 0, 0), giPoint3(1, 1, 1), giPoint3(3, 3, 3)).value() < 1e-7,
            true);
}

// Nothing guards the division by the number of elements; no triangle scores above 1, so the least aspect stays there.
TEST(Measures, OfAnEmptyBlock) {
  const Properties p = properties_of(trTriBlock());
  EXPECT_EQ(p.area, 0);
  EXPECT_EQ(p.volume, 0);
  EXPECT_EQ(p.centre, giPoint3());
  EXPECT_EQ(p.min_aspect, 1);
  EXPECT_TRUE(std::isnan(p.mean_aspect));
}

// A coordinate of the centre is 0 when the volume as measured along that axis is below 1e-5, however small the body is.
TEST(Measures, CentreOfATinyBodyIsTheOrigin) {
  BlockOf tiny(closed_box(giPoint3(5, 5, 5), 0.02, 0.02, 0.02));
  EXPECT_EQ(properties_of(tiny).centre, giPoint3());
  BlockOf small(closed_box(giPoint3(5, 5, 5), 0.03, 0.03, 0.03));
  expect_near(properties_of(small).centre, giPoint3(5.015, 5.015, 5.015), 1e-5);
  // A sheet in the plane z = 0 has a volume along no axis.
  EXPECT_EQ(properties_of(BlockOf(flat_sheet(3, 3))).centre, giPoint3());
}

TEST(Measures, MatchTheFormulasInHigherPrecision) {
  Random random(51);
  for (int round = 0; round < 40; ++round) {
    BlockOf block(clustered_soup(random, 40, 0.3));
    for (int e = 1; e <= 40; e += 5) block.delete_element(e);
    if (round % 2) {
      block.set_workplane(
          ccWorkplane(giWorkplane3(giPoint3(1, 2, 3), giUnitVec3(giVector3(1, 1, 0)), giUnitVec3(giVector3(0, 0, 1)))));
      block.enable_workplane(1);
    }
    const MassLiteral expected = mass_literal(block);
    const Properties p = properties_of(block);
    EXPECT_NEAR(p.area, expected.area, 1e-10);
    EXPECT_NEAR(p.volume, expected.volume, 1e-9);
    EXPECT_NEAR(p.min_aspect, expected.min_aspect, 1e-10);
    EXPECT_NEAR(p.mean_aspect, expected.mean_aspect, 1e-10);
    for (int k = 0; k < 3; ++k)
      EXPECT_NEAR(p.centre[k], expected.centre[k], 1e-7 * (1 + std::fabs(expected.centre[k])));
    // Area and volume by themselves are in world coordinates.
    EXPECT_NEAR(block.volume(), flux_of_z_literal(block), 1e-9);
    EXPECT_NEAR(block.surface_area(), expected.area, 1e-10);
  }
}

TEST(Measures, MeanSpacingOfAChain) {
  trTriBlock block;
  for (const double x : {0.0, 1.0, 3.0}) block.set_node(block.node_count(), giPoint3(x, 0, 0));
  EXPECT_EQ(block.node_average_distance({}), 0.0);
  EXPECT_EQ(block.node_average_distance({2}), 0.0);
  EXPECT_EQ(block.node_average_distance({1, 2, 3}), 1.5);
  EXPECT_EQ(block.node_average_distance({1, 3, 1}), 3.0);
}

TEST(NodeNormals, AreTheMeanOfTheUnitNormalsAround) {
  BlockOf block(closed_box());
  block.compute_node_normals();
  // Corner 8 = (1, 1, 1) has two triangles on each side in z and y, one in x.
  const giVector3 n = block.node_normal(8);
  EXPECT_NEAR(n.length(), 1, 1e-12);
  for (int k = 0; k < 3; ++k) EXPECT_GT(n[k], 0.3);
  EXPECT_EQ(block.node_normal(0), giVector3(0, 0, 1));
  BlockOf ball(sphere(24));
  ball.compute_node_normals();
  for (int i = 1; i < ball.node_count(); ++i) {
    const giPoint3& p = ball.point(i);
    EXPECT_GT(ball.node_normal(i).dot(giVector3(p.x, p.y, p.z)), 0.99) << i;
  }
}

TEST(NodeNormals, FallBackToTheZAxis) {
  BlockOf block(Shape{{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {7, 7, 7}, {8, 8, 8}}, {{0, 1, 2}}});
  block.delete_node(5);
  block.compute_node_normals();
  for (int i = 0; i < block.node_count(); ++i) EXPECT_EQ(block.node_normal(i), giVector3(0, 0, 1)) << i;
}

// Three or more attribute values hold a normal, which is taken as given, not made a unit vector; all zero means none.
TEST(NodeNormals, TakeAttributesAsTheyAre) {
  BlockOf block(flat_sheet(1, 1));
  block.set_node_data_size(3);
  block.node_data(1).values[0] = 5;
  block.node_data(2).values[3] = 5;
  block.compute_node_normals();
  EXPECT_EQ(block.node_normal(1), giVector3(5, 0, 0));
  EXPECT_EQ(block.node_normal(2), giVector3(0, 0, 1));
  block.set_node_data_size(2);
  block.compute_node_normals();
  EXPECT_EQ(block.node_normal(1), giVector3(0, 0, 1));
}

TEST(MinDotp, MatchesTheSearchOfAllPairs) {
  Random random(61);
  int below = 0;
  for (int round = 0; round < 300; ++round) {
    trTriBlock block;
    for (int i = 1; i <= 9; ++i) block.set_node(i, giPoint3(random.below(3), random.below(3), random.below(3)));
    for (int k = 0; k < 20; ++k) block.generate(random.between(1, 9), random.between(1, 9), random.between(1, 9));
    for (int k = 0; k < 3; ++k) block.delete_element(random.between(1, block.element_count() - 1));
    if (random.one_in(2)) block.elements_referenced = 0;
    int count = 0;
    int expected_count = 0;
    const double least = block.min_dotp(0.3, count);
    EXPECT_EQ(least, min_dotp_literal(block, 0.3, expected_count));
    EXPECT_EQ(count, expected_count);
    below += count;
  }
  EXPECT_GT(below, 1000);
}

}  // namespace
