// Cutting a mesh with a plane.

#include <gtest/gtest.h>

#include "boundaries/boundary_shapes.h"
#include "oracles/literal_mesh.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

constexpr double tolerance = 1e-10;

Shape moved(Shape shape, double scale, const giVector3& by) {
  for (giPoint3& p : shape.points) p = giPoint3(scale * p.x, scale * p.y, scale * p.z) + by;
  return shape;
}

// Of one piece with one closed boundary, a disc, all nodes of which lie in the plane.
testing::AssertionResult is_disc_on_plane(trTriBlock& block, gi_Axis axis, double value) {
  trCycleArray cycles(&block);
  const auto loops = all_cycles(cycles);
  if (loops.size() != 1) return testing::AssertionFailure() << loops.size() << " boundaries";
  const double slack = tolerance + 4e-15 * std::fabs(value);  // edges nearly in the plane are cut in their middle
  for (const int i : loops[0]) {
    if (std::fabs(block.point(i)[axis] - value) > slack) return testing::AssertionFailure() << "node " << i << " is off the plane";
  }
  const int faces = block.valid_elements(), rim = static_cast<int>(loops[0].size());
  const int euler = block.valid_nodes() - (3 * faces + rim) / 2 + faces;
  if (euler != 1) return testing::AssertionFailure() << "Euler characteristic " << euler;
  return is_sound(block);
}

}  // namespace

// Tangles on a coarse grid, cut through nodes, beside them and between, edges and attributes there or not, in a turned
// workplane or none.
TEST(Slice, AgreesWithTheRulesStepByStep) {
  Random random(61);
  int cut = 0, merged = 0;
  for (int round = 0; round < 600 && !HasFailure(); ++round) {
    BlockOf block(random_tangle(random, random.between(4, 12), random.between(1, 25), random.between(2, 4)));
    const gi_Axis axis = static_cast<gi_Axis>(random.below(3));
    if (random.one_in(3)) {
      block.set_workplane(ccWorkplane(giWorkplane3(giPoint3(1, 0, 2), giUnitVec3(giVector3(2, -1, 0)), giUnitVec3(giVector3(0, 0, 1)))));
      block.enable_workplane(1);
    }
    if (random.one_in(2)) block.reference_elements();
    LiteralMesh literal = literal_of(block);
    if (random.one_in(2)) {
      block.build_edges();
      literal.build_edges();
    }
    literal.workplane = block.workplane.workplane();
    literal.use_workplane = block.use_workplane;
    literal.undup_tol = block.undup_tol = random.one_in(2) ? 0.25 : 0.0;
    const int through = random.between(1, block.node_count() - 1);
    const double beside[] = {0, 0, 0.5, -0.5, 3e-11};
    const double value = block.check_use_workplane(block.point(through))[axis] + beside[random.below(5)];
    const double tol = random.one_in(4) ? 0.6 : tolerance;
    const int side = random.below(3) - 1;
    const int nodes = block.node_count();
    const int result = block.slice(axis, side, value, tol);
    ASSERT_EQ(result, literal.slice(axis, side, value, tol)) << "round " << round;
    ASSERT_EQ(difference(block, literal), "") << "round " << round;
    ASSERT_TRUE(is_sound(block)) << "round " << round;
    cut += block.node_count() > nodes;
    for (int i = nodes; i < block.node_count(); ++i) merged += block.node(i).invalid;
  }
  EXPECT_GE(cut, 200);
  EXPECT_GE(merged, 300);
}

// 0 keeps what lies above, whatever else what lies below; any axis but x and y is z.
TEST(Slice, SidesAndAxes) {
  for (const int side : {0, 1, -1, 7}) {
    BlockOf block(Shape{{{1, 0, 1}, {0, 1, -1}, {0, -1, -1}}, {{0, 1, 2}}});
    EXPECT_EQ(block.slice(static_cast<gi_Axis>(5), side, 0, tolerance), 1);
    EXPECT_EQ(block.valid_elements(), side == 0 ? 1 : 2);
    EXPECT_EQ(block.node(1).invalid != 0, side != 0);
    EXPECT_EQ(block.node_count(), 6);
    for (int i = 4; i <= 5; ++i) EXPECT_EQ(block.point(i).z, 0.0);
  }
}

// Far from the origin neighbouring doubles lie farther apart than the tolerance of merging; near it the whole model is hardly
// larger. Cuts through nodes and beside them stay one closed loop.
TEST(Slice, LeavesAClosedCutAtAnyScale) {
  const double scales[][2] = {{1, 0}, {1, 1e6 + 1.0 / 3}, {100, 1e6 / 7}, {1e-6, 0}, {1e-6, 1.0 / 3}, {1e6, 1e6 / 3}};
  for (const auto& [scale, offset] : scales) {
    const Shape shape = moved(sphere(12), scale, giVector3(offset, -offset, offset));
    for (const gi_Axis axis : {gi_x_axis, gi_y_axis, gi_z_axis}) {
      for (const double height : {0.3, -0.41, 0.0, 0.5}) {
        for (const int side : {0, 1}) {
          BlockOf block(shape);
          const double value = height == 0.5 ? block.point(40)[axis] : (axis == gi_y_axis ? -offset : offset) + scale * height;
          ASSERT_EQ(block.slice(axis, side, value, tolerance), 1);
          ASSERT_TRUE(is_disc_on_plane(block, axis, value)) << scale << " + " << offset << ", axis " << axis << " at " << height << ", side " << side;
        }
      }
    }
  }
}

// Where every cut element has the same apex, none is looked for along its list.
TEST(Slice, OfAFanOfVeryManyTriangles) {
  constexpr int many = 100000;
  Shape fan = cone_fan(many);
  const double apex_z = fan.points[0].z, rim_z = fan.points[1].z;
  ASSERT_NE(apex_z, rim_z);
  BlockOf block(fan);
  ASSERT_EQ(block.slice(gi_z_axis, 0, 0.5 * (apex_z + rim_z), tolerance), 1);
  EXPECT_GE(block.valid_elements(), many);
  EXPECT_TRUE(is_sound(block));
}
