// Nodes on the line that closes an arc, and the ladder beside it.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "boundaries/boundary_shapes.h"
#include "boundaries/filling_support.h"
#include "support/interrupting_handler.h"
#include "support/validator.h"

namespace {

struct OpenedSet : trCycleArray {
  using trCycleArray::cap_hole_progress_init;
  using trCycleArray::create_hole_subdivision_nodes;
  using trCycleArray::disable_curvature_adjust;
  using trCycleArray::enable_curvature_adjust;
  using trCycleArray::trCycleArray;
};

// Two lines of the lengths 4 and 3, one above the other: nodes 1 to 2, and 3 to 4.
struct Lines : trTriBlock {
  Lines() {
    const giPoint3 ends[] = {{0, 0, 0}, {4, 0, 0}, {0, 1, 0}, {3, 1, 0}};
    for (int k = 0; k < 4; ++k) set_node(k + 1, ends[k]);
  }
};

constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

}  // namespace

TEST(HoleSubdivision, TheLongerLineDecidesTheNumberOfSegments) {
  struct Case {
    double max_length;
    int segments;
  };
  const Case cases[] = {{5.0, 1}, {4.0, 1}, {3.9, 1}, {2.6, 2}, {1.0, 4}, {0.9, 4}, {0.8, 5},
                        {0.0, 1}, {-1.0, 1}, {nan_value, 1}, {infinity, 1}};
  for (const Case& c : cases) {
    Lines block;
    intcoPageArr a{7, 7}, b{7};  // are emptied
    EXPECT_EQ(block.create_hole_subdivision(1, 2, 3, 4, c.max_length, a, b, tr_no_direction(), 1), 1);
    EXPECT_EQ(a.count(), c.segments - 1) << c.max_length;
    EXPECT_EQ(b.count(), c.segments - 1);
    EXPECT_EQ(block.node_count(), 5 + 2 * (c.segments - 1));
    EXPECT_EQ(block.element_count(), 1);
    for (int k = 0; k < a.count(); ++k) {
      EXPECT_EQ(block.point(a[k]), gi_interpolate(block.point(1), block.point(2), (k + 1.0) / c.segments));
      EXPECT_EQ(block.point(b[k]), gi_interpolate(block.point(3), block.point(4), (k + 1.0) / c.segments));
    }
  }
  Lines block;
  intcoPageArr a, b;
  EXPECT_EQ(block.create_hole_subdivision(1, 2, 3, 4, 1e-300, a, b, tr_no_direction(), 1), 1);
  EXPECT_EQ(a.count(), 999999) << "no more than a million segments";
  EXPECT_EQ(block.create_hole_subdivision(1, 2, 3, 99999999, 1.0, a, b, tr_no_direction(), 0), 0);
  EXPECT_EQ(a.count(), 0);
  EXPECT_EQ(block.element_count(), 1);
}

TEST(HoleSubdivision, TheLadderIsOneStripThatFacesOneWay) {
  Lines block;
  block.set_node_data_size(1);
  for (int n = 1; n <= 4; ++n) block.node_data(n).values[0] = block.point(n).x;
  intcoPageArr a, b;
  block.create_hole_subdivision(1, 2, 3, 4, 1.0, a, b, tr_no_direction(), 0);
  EXPECT_EQ(block.valid_elements(), 8);
  EXPECT_EQ(expected_free_edges(block).size(), 10u);
  EXPECT_NEAR(block.surface_area(), 3.5, 1e-14);
  for (int e = 1; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    EXPECT_GT((block.point(t[1]) - block.point(t[0])).cross(block.point(t[2]) - block.point(t[0])).z(), 0.0);
  }
  EXPECT_EQ(block.node_data_size(), 1) << "attributes are interpolated, not dropped";
  EXPECT_EQ(block.node_data(a[1]).values[0], 2.0);
}

// The line runs from the first pick to the second. The arc is closed by the same nodes whichever side is filled, and the two parts
// close the hole together. The second row belongs to no element.
TEST(HoleSubdivision, ItsNodesCloseTheArcOnBothSides) {
  BlockOf block(cone_fan(24));
  OpenedSet set(&block);
  set.num_boundaries();
  trCycle& cycle = set.cycles[0];
  const std::vector<int> rim = nodes_of(cycle);
  Picks{{rim[3], rim[15], rim[3]}, 0}.set_on(cycle);
  int ends[4];
  cycle.enable_holefilling(1, ends[0], ends[1], ends[2], ends[3]);
  const int before = block.node_count();
  EXPECT_EQ(set.create_hole_subdivision_nodes(cycle, ends, 0.25, tr_no_direction()), 1);
  const int made = cycle.subrange_nodes.count();
  EXPECT_GE(made, 6);
  EXPECT_EQ(block.node_count(), before + 2 * made);
  const std::vector<int> forward = nodes_of(cycle);
  ASSERT_EQ(forward.size(), 13u + static_cast<std::size_t>(made));
  EXPECT_EQ(forward[12], rim[15]);
  EXPECT_LT(block.point(forward[13]).distance(block.point(rim[15])), 0.3) << "on from the second pick";
  EXPECT_LT(block.point(forward.back()).distance(block.point(rim[3])), 0.3) << "back to the first";

  intcoPageArr from_first;
  for (int k = made - 1; k >= 0; --k) from_first[from_first.count()] = cycle.subrange_nodes[k];
  cycle.arc_forward = 0;
  cycle.set_subrange_nodes(from_first);
  const std::vector<int> rest = nodes_of(cycle);
  EXPECT_LT(block.point(rest[4]).distance(block.point(rim[3])), 0.3);

  block.generate_node(giPoint3(0, 0, -1), giVector3(), 0);
  const int below = block.node_count() - 1;
  for (const std::vector<int>& loop : {forward, rest}) {
    for (std::size_t k = 0; k < loop.size(); ++k) block.generate(loop[(k + 1) % loop.size()], loop[k], below);
  }
  EXPECT_TRUE(expected_free_edges(block).empty());
  int loose = 0;
  for (int n = before; n < below; ++n) loose += block.node(n).elements.empty();
  EXPECT_EQ(loose, made);
}

TEST(HoleSubdivision, WithoutAnArcNothingIsMade) {
  BlockOf block(cone_fan(6));
  OpenedSet set(&block);
  set.num_boundaries();
  const int nodes = block.node_count();
  for (int missing = 0; missing < 4; ++missing) {
    int ends[4] = {2, 3, 4, 5};
    ends[missing] = missing == 3 ? 0 : -1;
    EXPECT_EQ(set.create_hole_subdivision_nodes(set.cycles[0], ends, 0.1, tr_no_direction()), 0);
  }
  EXPECT_EQ(block.node_count(), nodes);
  EXPECT_EQ(set.cycles[0].subrange_nodes.count(), 0);
}

TEST(HoleProgress, EachHoleTakesItsShare) {
  BlockOf block(loose_triangles(4));
  OpenedSet set(&block);
  InterruptingHandler handler;
  handler.set_percent_range(5.0, 95.0);
  double low = 0.0, high = 0.0;
  set.cap_hole_progress_init(0, low, high);
  EXPECT_EQ(low, 5.0);
  EXPECT_EQ(high, 95.0);
  EXPECT_EQ(handler.percent_sup_range(), 100.0) << "none selected: the whole";
  set.selection = {0, 1, 2, 3};
  set.cap_hole_progress_init(2, low, high);
  EXPECT_EQ(low, 0.0);
  EXPECT_EQ(handler.percent_inf_range(), 50.0);
  EXPECT_EQ(handler.percent_sup_range(), 75.0);
  EXPECT_EQ(handler.default_feedback_message, utString("Filling Holes"));
}

// A fifth for the surface, and the rest stays set, also when there is none.
TEST(HoleProgress, TheSurfaceTakesAFifthOfTheRest) {
  for (bool is_star : {false, true}) {
    BlockOf block(is_star ? sphere(8) : loose_triangles(1));
    if (is_star) open_star(block, 50);
    OpenedSet set(&block);
    set.num_boundaries();
    InterruptingHandler handler;
    EXPECT_EQ(set.enable_curvature_adjust(set.cycles[0], 40.0, 90.0), is_star);
    EXPECT_EQ(handler.percent_inf_range(), 50.0);
    EXPECT_EQ(handler.percent_sup_range(), 90.0);
    EXPECT_LE(handler.last_percent_reported(), 50.0);
    EXPECT_EQ(block.curvature_adjust, is_star);
    set.disable_curvature_adjust();
    EXPECT_EQ(block.curvature_adjust, 0);
    EXPECT_EQ(block.surface, nullptr);
  }
}
