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

// The triangles of 1, 2 and 3 whose corners lie above the plane z = 0 (K), on it (P) or below it (D).
Shape triangle_of(const char* corners) {
  Shape shape{{}, {{0, 1, 2}}};
  const double angle = 2 * std::acos(-1.0) / 3;
  for (int k = 0; k < 3; ++k) {
    const double z = corners[k] == 'K' ? 1 : corners[k] == 'D' ? -1 : 0;
    shape.points.emplace_back(std::cos(k * angle), std::sin(k * angle), z);
  }
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

// Corners on the plane count by their place: one that comes first counts as discarded, later ones tell nothing. Elements that
// have none below are not cut, yet those with a first corner on the plane count as such. Where a corner on the plane stays with
// one that does not, the quadrilateral of the kept side has shrunk to a triangle.
TEST(Slice, CornersOnThePlaneCountByTheirPlace) {
  const struct {
    const char* corners;
    int elements;
    int result;
  } cases[] = {{"KKK", 1, 0}, {"KKP", 1, 0}, {"KPK", 1, 0}, {"KPP", 1, 0}, {"PKK", 1, 1}, {"PKP", 1, 1}, {"PPK", 1, 1},
               {"PPP", 0, 1}, {"PPD", 0, 1}, {"PDP", 0, 1}, {"DPP", 0, 1}, {"PDD", 0, 1}, {"DPD", 0, 1}, {"DDD", 0, 1},
               {"KDD", 1, 1}, {"DKD", 1, 1}, {"DDK", 1, 1}, {"KKD", 2, 1}, {"KDK", 2, 1}, {"DKK", 2, 1}, {"KPD", 1, 1},
               {"KDP", 1, 1}, {"PKD", 1, 1}, {"PDK", 1, 1}, {"DKP", 1, 1}, {"DPK", 1, 1}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.corners);
    BlockOf block(triangle_of(c.corners));
    block.force_changed_status(0);
    EXPECT_EQ(block.slice(gi_z_axis, 0, 0, tolerance), c.result);
    EXPECT_EQ(block.valid_elements(), c.elements);
    EXPECT_EQ(block.changed, c.result);
    const std::string corners = c.corners;
    const bool is_uncut = corners.find('D') == std::string::npos && c.elements == 1;
    EXPECT_EQ(block.element(1).valid(), is_uncut);
    for (int i = 1; i <= 3; ++i) {
      EXPECT_EQ(block.node(i).invalid != 0, corners[static_cast<std::size_t>(i - 1)] == 'D') << "nodes on the plane stay";
    }
  }
}

// 0 keeps what lies above, whatever else what lies below; any axis but x and y is z.
TEST(Slice, SidesAndAxes) {
  for (const int side : {0, 1, -1, 7}) {
    BlockOf block(triangle_of("KDD"));
    EXPECT_EQ(block.slice(static_cast<gi_Axis>(5), side, 0, tolerance), 1);
    EXPECT_EQ(block.valid_elements(), side == 0 ? 1 : 2);
    EXPECT_EQ(block.node(1).invalid != 0, side != 0);
    EXPECT_EQ(block.node_count(), 6);
    for (int i = 4; i <= 5; ++i) EXPECT_EQ(block.point(i).z, 0.0);
  }
}

// An edge whose ends are nearer to each other than the tolerance, along the axis, is cut in its middle.
TEST(Slice, CutsNearlyLevelEdgesInTheMiddle) {
  BlockOf block(Shape{{{0, 0, 3e-11}, {4, 0, -1e-11}, {0, 4, 1}}, {{0, 1, 2}}});
  ASSERT_EQ(block.slice(gi_z_axis, 0, 0, tolerance), 1);
  std::vector<double> xs;
  for (int i = 4; i < block.node_count(); ++i) {
    if (block.point(i).y == 0) xs.push_back(block.point(i).x);
  }
  EXPECT_EQ(xs, std::vector<double>{2.0});
}

// Merging the nodes on the plane is no merge of the mesh: its tolerance stays known until something was cut.
TEST(Slice, KeepsTheToleranceOfTheLastMergeUnlessSomethingWasCut) {
  BlockOf block(exploded(Shape{{{0, 0, 1}, {0, 0, 0}, {1, 0, 0}, {0, 1, 1}}, {{0, 1, 2}, {3, 2, 1}}}));
  block.undup_tol = 1e-12;
  block.force_changed_status(0);
  EXPECT_EQ(block.slice(gi_z_axis, 0, 0, tolerance), 0);
  EXPECT_EQ(block.valid_nodes(), 4);
  EXPECT_EQ(block.undup_tol, 1e-12);
  EXPECT_EQ(block.changed, 1);
  EXPECT_EQ(block.slice(gi_z_axis, 0, 0.5, tolerance), 1);
  EXPECT_EQ(block.undup_tol, 0.0);
}

TEST(Slice, OfAMeshOnOneSideOnly) {
  BlockOf block(sphere(6));
  block.force_changed_status(0);
  EXPECT_EQ(block.slice(gi_x_axis, 0, -2, tolerance), 0);
  EXPECT_EQ(block.valid_elements(), 4 * 6 * 5);
  EXPECT_EQ(block.changed, 0);
  EXPECT_EQ(block.slice(gi_x_axis, 1, -2, tolerance), 1);
  EXPECT_EQ(block.valid_elements(), 0);
  EXPECT_EQ(block.valid_nodes(), 0);
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

// The frame's z axis is the mesh's direction (1, 2, 2).
TEST(Slice, InAWorkplaneEqualsTurningCuttingAndTurningBack) {
  const giWorkplane3 frame(giPoint3(0.1, -0.2, 0.05), giUnitVec3(giVector3(2, 1, -2)), giUnitVec3(giVector3(-2, 2, -1)));
  for (const int side : {0, 1}) {
    BlockOf block(bumpy_sphere(500));
    Shape turned = bumpy_sphere(500);
    for (giPoint3& p : turned.points) p = frame.to_work(p);
    BlockOf plain(turned);
    block.set_workplane(ccWorkplane(frame));
    block.enable_workplane(1);
    ASSERT_EQ(block.slice(gi_z_axis, side, 0.15, tolerance), 1);
    ASSERT_EQ(plain.slice(gi_z_axis, side, 0.15, tolerance), 1);
    ASSERT_EQ(block.node_count(), plain.node_count());
    ASSERT_EQ(block.valid_elements(), plain.valid_elements());
    for (int i = 1; i < block.node_count(); ++i) {
      ASSERT_EQ(block.node(i).invalid, plain.node(i).invalid);
      if (block.node(i).invalid) continue;
      ASSERT_LT(block.point(i).distance(frame.to_world(plain.point(i))), 1e-12);
    }
  }
}

// The attributes of a new node lie between those of its edge's ends; merging its two copies averages them.
TEST(Slice, InterpolatesAttributes) {
  BlockOf block(Shape{{{0, 0, 3}, {0, 0, -1}, {1, 0, -1}, {-1, 0, -1}}, {{0, 1, 2}, {0, 3, 1}}});
  block.set_node_data_size(1);
  for (int i = 1; i <= 4; ++i) {
    block.node_data(i).weight = 1;
    block.node_data(i).values[0] = i == 1 ? 8 : 4;
  }
  ASSERT_EQ(block.slice(gi_z_axis, 0, 0, tolerance), 1);
  ASSERT_EQ(block.valid_nodes(), 4);
  int shared = 0;
  for (int i = 5; i < block.node_count(); ++i) {
    if (block.node(i).invalid) continue;
    EXPECT_DOUBLE_EQ(block.node_data(i).values[0], 5);
    shared += block.node_data(i).weight == 2;
  }
  EXPECT_EQ(shared, 1);
}

// Where every cut element has the same apex, none is looked for along its list.
TEST(Slice, OfAFanOfVeryManyTriangles) {
  constexpr int many = 100000;
  Shape fan = cone_fan(many);
  const double apex_z = fan.points[0].z, rim_z = fan.points[1].z;
  ASSERT_NE(apex_z, rim_z);
  for (const int side : {0, 1}) {
    BlockOf block(fan);
    ASSERT_EQ(block.slice(gi_z_axis, side, 0.5 * (apex_z + rim_z), tolerance), 1);
    EXPECT_GE(block.valid_elements(), many);
    EXPECT_TRUE(is_sound(block));
  }
}
