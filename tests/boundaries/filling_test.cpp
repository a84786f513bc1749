// Filling: what the new triangles are; and what it is made of: the ring of nodes round a boundary, the surface fitted to it, nodes that are
// moved onto that, and nodes on the line that closes an arc.

#include <gtest/gtest.h>

#include "boundaries/boundary_shapes.h"
#include "oracles/literal_mesh.h"
#include "platform/geometry/point_average3.h"
#include "support/interrupting_handler.h"
#include "support/journal_recorder.h"
#include "support/marking_hook.h"
#include "support/numbers.h"
#include "support/validator.h"

namespace {

using Numbers = std::vector<int>;

// Three random attributes for each node.
void give_attributes(trTriBlock& block, Random& random) {
  block.set_node_data_size(3);
  for (int i = 1; i < block.node_count(); ++i) {
    block.node_data(i).weight = random.between(0, 3);
    for (int k = 0; k < 3; ++k) block.node_data(i).values[k] = random.between(-1.0, 1.0);
  }
}

void open_star(trTriBlock& block, int centre) {
  for (int e : entries(block.node(centre).elements)) block.delete_element(e);
}

// A level plane, up to a distance of 100; along directions within it there is no point.
struct FloorSurface : zrkSurf {
  explicit FloorSurface(double at) : z(at) {}
  int closest_point(const giPoint3& p, giPoint3& q) const override {
    if (std::abs(p.z - z) > 100.0) return -1;
    q = giPoint3(p.x, p.y, z);
    return 0;
  }
  int project(const giPoint3& p, const giVector3& direction, giPoint3& q) const override {
    if (direction.z() == 0.0) return -2;
    q = p + direction * ((z - p.z) / direction.z());
    return 0;
  }
  double z;
};

// Picks on a cycle.
struct Picks {
  Numbers nodes;
  int mode = 2;

  void set_on(trCycle& cycle) const {
    std::copy(nodes.begin(), nodes.end(), cycle.picks);
    cycle.pick_mode = mode;
  }

  // The nodes of the arc as their rule is worded; the loop must pass each node once.
  Numbers arc_of(const Numbers& loop, const trTriBlock& block) const {
    if (nodes.empty()) return loop;
    const auto place = [&](std::size_t k) { return std::find(loop.begin(), loop.end(), nodes[k]) - loop.begin(); };
    const auto from = std::min(place(0), place(1)), to = std::max(place(0), place(1)), third = place(2);
    const Numbers forward(loop.begin() + from, loop.begin() + to + 1);
    Numbers rest(loop.begin(), loop.begin() + from + 1);
    rest.insert(rest.end(), loop.begin() + to, loop.end());
    if (mode != 2) return mode == 0 ? forward : rest;
    if (third != place(0) && third != place(1)) return third > from && third < to ? forward : rest;
    double total = 0.0, inside = 0.0;
    for (std::size_t k = 0; k < loop.size(); ++k) {
      const double length = block.point(loop[k]).distance(block.point(loop[(k + 1) % loop.size()]));
      total += length;
      if (static_cast<std::ptrdiff_t>(k) >= from && static_cast<std::ptrdiff_t>(k) < to) inside += length;
    }
    return inside > total - inside ? rest : forward;
  }
};

// None, or two or three nodes of the loop; none where it passes a node twice.
Picks random_picks(const Numbers& loop, Random& random) {
  const std::set<int> distinct(loop.begin(), loop.end());
  if (distinct.size() != loop.size() || random.one_in(2)) return {};
  const auto some = [&] { return loop[static_cast<std::size_t>(random.below(static_cast<int>(loop.size())))]; };
  const int a = some(), b = some(), c = some();
  if (a == b) return {};
  return {{a, b, random.one_in(2) ? a : c}, random.one_in(2) ? 2 : random.below(2)};
}

// Filling as its rules are worded.
struct LiteralFilling {
  // A block whose cycles are detected.
  explicit LiteralFilling(trTriBlock& block) {
    for (int i = 1; i < block.node_count(); ++i) mesh.set_node(i, block.point(i));
    for (int e = 1; e < block.element_count(); ++e) {
      mesh.set_element(e, block.element(e)[0], block.element(e)[1], block.element(e)[2]);
    }
    mesh.data_size = block.node_data_size();
    for (int i = 1; i < block.node_count() && mesh.data_size > 0; ++i) {
      LiteralMesh::Tuple tuple{block.node_data(i).weight, {}};
      std::copy_n(block.node_data(i).values, 5, tuple.values.begin());
      mesh.set_node_data(i, tuple);
    }
    mesh.build_edges();
  }

  void close(const Numbers& v) {
    ++closed;
    const std::size_t n = v.size();
    if (n == 3) {
      mesh.generate3(v[2], v[1], v[0]);
    } else if (n == 4) {
      mesh.generate4(v[3], v[2], v[1], v[0]);
    } else if (n > 1) {
      giPoint3 sum;
      LiteralMesh::Tuple data{1, {}};
      for (int i : v) {
        const giPoint3& p = LiteralMesh::at(mesh.nodes, i).p;
        sum = giPoint3(sum.x + p.x, sum.y + p.y, sum.z + p.z);
        for (std::size_t k = 0; k < 5 && mesh.data_size > 0; ++k) data.values[k] += LiteralMesh::at(mesh.tuples, i).values[k];
      }
      const double count = static_cast<double>(n);
      const int c = mesh.node_count;
      mesh.set_node(c, giPoint3(sum.x / count, sum.y / count, sum.z / count));
      for (std::size_t i = 0; i < n; ++i) mesh.generate(v[(i + 1) % n], v[i], c);
      if (mesh.data_size > 0) mesh.set_node_data(c, data);
    }
  }

  LiteralMesh mesh;
  int closed = 0;
};

// A sphere with a round hole of 16 edges about its north pole, and the nodes of the rim.
struct CurvatureAdjust : testing::Test {
  CurvatureAdjust() : block(sphere(16)) {
    for (int e = 1; e < block.element_count(); ++e) {
      const trElement& t = block.element(e);
      if (std::min({block.point(t[0]).z, block.point(t[1]).z, block.point(t[2]).z}) > 0.75) block.delete_element(e);
    }
    trCycleArray set(&block);
    set.num_boundaries();
    for (int n : nodes_of(set.cycles[0])) rim[rim.count()] = n;
  }

  BlockOf block;
  intcoPageArr rim;
};

// Two lines of the lengths 4 and 3, one above the other: nodes 1 to 2, and 3 to 4.
struct Lines : trTriBlock {
  Lines() {
    const giPoint3 ends[] = {{0, 0, 0}, {4, 0, 0}, {0, 1, 0}, {3, 1, 0}};
    for (int k = 0; k < 4; ++k) set_node(k + 1, ends[k]);
  }
};

}  // namespace

// Random picks and selections on random meshes, against the rules written down on plain vectors.
TEST(Filling, MakesTheTrianglesOfTheRules) {
  Random random(5);
  std::map<int, int> sizes;
  int arcs = 0;
  for (int round = 0; round < 1500; ++round) {
    BlockOf block(random_tangle(random, 12, 14, 4));
    if (random.one_in(2)) give_attributes(block, random);
    trCycleArray set(&block);
    set.num_boundaries();
    LiteralFilling literal(block);
    for (int id = 0; id < set.cycles.count(); ++id) {
      if (random.one_in(3)) continue;
      const Numbers loop = nodes_of(set.cycles[id]);
      const Picks picks = random_picks(loop, random);
      picks.set_on(set.cycles[id]);
      const Numbers closed = picks.arc_of(loop, block);
      set.selection.add(id);
      literal.close(closed);
      ++sizes[static_cast<int>(closed.size())];
      arcs += !picks.nodes.empty();
    }
    ASSERT_EQ(set.fill_holes(0), literal.closed > 0);
    literal.mesh.changed = 1;
    ASSERT_EQ(difference(block, literal.mesh), "") << "round " << round;
    ASSERT_TRUE(is_sound(block));
  }
  for (int n : {2, 3, 4, 5, 6, 7}) EXPECT_GE(sizes[n], 50) << n;
  EXPECT_GE(arcs, 500);
}

// Neighbouring picks enclose one edge: two triangles back to back through a node at its middle. A pick that is no node of the cycle
// gives a loop of no nodes, one node picked twice a loop of one: nothing is made, and the cycle counts as filled.
TEST(Filling, LoopsOfTwoOneAndNoNodes) {
  for (const int second : {6, 5, 999}) {
    BlockOf block(cone_fan(9));
    trCycleArray set(&block);
    set.num_boundaries();
    Picks{{5, second, 5}, 0}.set_on(set.cycles[0]);
    set.selection = {0};
    const int nodes = block.node_count(), elements = block.element_count();
    EXPECT_EQ(set.fill_holes(0), 1);
    EXPECT_EQ(block.node_count(), nodes + (second == 6));
    EXPECT_EQ(block.element_count(), elements + 2 * (second == 6));
    EXPECT_EQ(set.cycles[0].start, -1);
    EXPECT_EQ(set.cycles[0].arc_start, -1) << "the arc is reset, the picks stay";
    EXPECT_EQ(set.cycles[0].picks[0], 5);
    EXPECT_TRUE(is_sound(block));
    if (second == 6) { EXPECT_EQ(block.point(nodes), gi_interpolate(block.point(5), block.point(6), 0.5)); }
  }
}

// The attributes of the centre are sums, its weight is 1.
TEST(Filling, TheCentreHasTheSumOfTheAttributes) {
  Random random(3);
  BlockOf block(cone_fan(7));
  give_attributes(block, random);
  JournalRecorder journal(block);
  trCycleArray set(&block);
  select_all(set);
  double sum = 0.0;
  for (int n : nodes_of(set.cycles[0])) sum += block.node_data(n).values[1];
  EXPECT_EQ(set.fill_holes(0), 1);
  EXPECT_EQ(block.node_data(block.node_count() - 1).values[1], sum);
  EXPECT_EQ(block.node_data(block.node_count() - 1).weight, 1);
  EXPECT_TRUE(journal.restores_the_start());
}

// A pentagon has no row of nodes round it: no surface can be fitted, and it stays open, but is removed from the set and counts as filled;
// later detection finds it again.
TEST(Filling, AHoleThatCannotBeFittedCountsAsFilled) {
  Shape pentagon = cone_fan(5);
  pentagon.triangles = {{1, 2, 3}, {1, 3, 4}, {1, 4, 5}};
  BlockOf block(pentagon);
  trCycleArray set(&block);
  select_all(set);
  EXPECT_EQ(set.fill_holes(1), 1);
  EXPECT_EQ(set.cycles[0].start, -1);
  EXPECT_EQ(block.node_count(), 7);
  EXPECT_EQ(block.element_count(), 4);
  EXPECT_EQ(set.num_boundaries(), 1);
  EXPECT_EQ(set.fill_holes(0), 0) << "the selection is empty";
}

// A surface is fitted, and freed without having moved the centre.
TEST(Filling, WithCurvatureTheCentreLiesAtThePlainMean) {
  for (int curvature : {0, 1}) {
    BlockOf block(sphere(8));
    open_star(block, 50);
    trCycleArray set(&block);
    select_all(set);
    giPointAverage3 mean;
    for (int n : nodes_of(set.cycles[0])) mean.add(block.point(n));
    EXPECT_EQ(set.fill_holes(curvature), 1);
    EXPECT_EQ(block.point(block.node_count() - 1), mean.average());
    EXPECT_EQ(block.surface, nullptr);
    EXPECT_EQ(block.curvature_adjust, 0);
    EXPECT_EQ(set.num_edges(), 0);
  }
}

// Adjustment that the host switched on is off after a fan, its surface freed, also where no curvature was asked for.
TEST(Filling, AFanEndsTheAdjustmentOfTheHost) {
  BlockOf block(cone_fan(6));
  block.surface = std::make_shared<FloorSurface>(5.0);
  block.enable_curvature_adjust(nullptr, 0);
  trCycleArray set(&block);
  select_all(set);
  EXPECT_EQ(set.fill_holes(0), 1);
  EXPECT_EQ(block.point(block.node_count() - 1).z, 0.0);
  EXPECT_EQ(block.surface, nullptr);
  EXPECT_EQ(block.curvature_adjust, 0);
}

TEST(Filling, NumbersOfNoLiveCycleArePassedOver) {
  BlockOf block(loose_triangles(3));
  trCycleArray set(&block);
  EXPECT_EQ(set.fill_holes(0), 0) << "nothing selected";
  EXPECT_EQ(block.changed, 1);
  EXPECT_EQ(set.num_boundaries(), 3);
  set.selection = {-4, 1, 3, 2000000000};
  set.cycles[1].start = -1;
  EXPECT_EQ(set.fill_holes(0), 0);
  EXPECT_EQ(set.selection.count(), 0);
  EXPECT_EQ(set.cycles.count(), 3);
  EXPECT_EQ(block.valid_elements(), 3);
  EXPECT_EQ(trCycleArray(nullptr).fill_holes(0), 0);
}

// Whenever it is stopped, what was filled stays and the mesh is sound; the progress range is the one that was set before.
TEST(Filling, CanBeStoppedAtEveryPoll) {
  int stops = 0;
  std::set<int> open_counts;
  for (int stop = 1;; ++stop) {
    BlockOf block(sphere(8));
    for (int centre : {20, 60}) open_star(block, centre);
    block.delete_element(entries(block.node(106).elements).front());
    JournalRecorder journal(block);
    trCycleArray set(&block);
    select_all(set);
    ASSERT_EQ(set.selection.count(), 3);
    int open = 0;
    {
      InterruptingHandler handler(stop);
      handler.set_percent_range(20.0, 70.0);
      const int filled = set.fill_holes(1);
      EXPECT_EQ(handler.percent_inf_range(), 20.0);
      EXPECT_EQ(handler.percent_sup_range(), 70.0);
      for (double p : handler.percents) EXPECT_TRUE(p >= 20.0 && p <= 70.0) << p;
      for (int i = 0; i < set.cycles.count(); ++i) open += set.cycles[i].start != -1;
      EXPECT_EQ(filled, open < 3);
      if (handler.polls < stop) break;
    }
    ++stops;
    open_counts.insert(open);
    ASSERT_TRUE(is_sound(block)) << "poll " << stop;
    ASSERT_TRUE(journal.restores_the_start()) << "poll " << stop;
  }
  EXPECT_GE(stops, 25);
  EXPECT_EQ(open_counts, (std::set<int>{1, 2, 3})) << "the last hole, of three edges, is closed without a poll";
}

// Each once, as a search through the elements of each node finds them.
TEST(SurroundingNodes, ComeInTheOrderOfTheElementLists) {
  const auto literal = [](const trTriBlock& block, int node, Numbers& out, const Numbers& exclude) {
    for (int e : entries(block.node(node).elements)) {
      for (int k = 0; block.element(e).valid() && k < 3; ++k) {
        const int n = block.element(e)[k];
        if (std::count(out.begin(), out.end(), n) + std::count(exclude.begin(), exclude.end(), n) == 0) out.push_back(n);
      }
    }
  };
  Random random(17);
  std::size_t collected = 0;
  for (int round = 0; round < 400; ++round) {
    BlockOf block(random_tangle(random, 30, 40, 9));
    for (int k = 0; k < 5; ++k) block.delete_element(random.between(1, 40));
    intcoPageArr nodes, out{random.between(1, 30)}, single;  // what is listed already is not listed again
    for (int k = random.between(1, 6); k > 0; --k) nodes[nodes.count()] = random.between(1, 30);
    Numbers expected = numbers_in(out), expected_single;
    for (int k = 0; k < nodes.count(); ++k) literal(block, nodes[k], expected, numbers_in(nodes));
    literal(block, nodes[0], expected_single, {});
    block.elements_referenced = 1;
    EXPECT_EQ(block.get_surrounding_nodes(nodes, out), 0);
    ASSERT_EQ(numbers_in(out), expected);
    collected += expected.size();
    EXPECT_EQ(block.get_surrounding_nodes(nodes[0], single, nullptr), 0);
    ASSERT_EQ(numbers_in(single), expected_single) << "without exclusion the node itself is among them";
  }
  EXPECT_GE(collected, 2000u);
}

// Elements may name nodes that are not there, and a node's list elements that no longer name it. Lists are built where there are none.
TEST(SurroundingNodes, PassOverWhatIsNotThere) {
  BlockOf block(cone_fan(5));
  block.generate(2, 3, 500);
  block.set_element(1, 3, 4, 5);
  intcoPageArr nodes{-3, 2, 77}, out;
  EXPECT_EQ(block.get_surrounding_nodes(nodes, out), 0);
  EXPECT_EQ(numbers_in(out), (Numbers{3, 1, 6}));
  out.clear(0);
  block.elements_referenced = 0;
  EXPECT_EQ(block.get_surrounding_nodes(nodes, out), 0);
  EXPECT_EQ(out.count(), 3);
}

TEST_F(CurvatureAdjust, NewNodesComeToLieOnTheFittedSurface) {
  EXPECT_EQ(block.enable_curvature_adjust(&rim, 0), 0);
  EXPECT_EQ(block.curvature_adjust, 1);
  const giVector3 up(0, 0, 1);
  giPoint3 q;
  EXPECT_EQ(block.apply_curvature_adjust_on_coords(giPoint3(0.1, 0.2, 0.7), up, q), 0);
  EXPECT_NEAR(q.distance(giPoint3()), 1.0, 0.01);
  EXPECT_NEAR(q.x, 0.1, 1e-9) << "along the direction";
  EXPECT_EQ(block.apply_curvature_adjust_on_coords(giPoint3(0.3, 0.0, 0.9), tr_no_direction(), q), 0);
  EXPECT_NEAR(q.distance(giPoint3()), 1.0, 0.01);
  EXPECT_GT(q.x, 0.3) << "to the closest point, outward";
  const int made = block.interpolate_node(rim[0], rim[rim.count() / 2], 0.5, up);
  EXPECT_NEAR(block.point(made).z, 1.0, 0.01) << "half-way across the hole, on the pole";

  block.disable_curvature_adjust(0);
  EXPECT_EQ(block.apply_curvature_adjust_on_coords(giPoint3(1, 2, 3), up, q), -1);
  EXPECT_EQ(q, giPoint3(1, 2, 3));
  EXPECT_EQ(block.enable_curvature_adjust(nullptr, 0), 0) << "switches on with the surface there is";
  EXPECT_EQ(block.apply_curvature_adjust_on_coords(giPoint3(), up, q), 0);
  block.disable_curvature_adjust(1);
  EXPECT_EQ(block.surface, nullptr);
  const intcoPageArr few{rim[0], rim[1]};
  block.clear();
  EXPECT_EQ(block.enable_curvature_adjust(&few, 0), -2) << "no surface can be fitted";
  EXPECT_EQ(block.curvature_adjust, 0);
  EXPECT_EQ(block.surface, nullptr);
}

TEST(CurvatureAdjustNode, MovesANodeAndReportsIt) {
  BlockOf block(cone_fan(6));
  block.delete_node(4);
  const giVector3 up(0, 0, 1);
  EXPECT_EQ(block.apply_curvature_adjust_on_node(1, up), 0) << "off";
  block.surface = std::make_shared<FloorSurface>(3.0);
  block.enable_curvature_adjust(nullptr, 0);
  JournalRecorder journal(block);
  EXPECT_EQ(block.apply_curvature_adjust_on_node(2, up), 0);
  EXPECT_EQ(block.point(2), giPoint3(1, 0, 3));
  EXPECT_EQ(block.apply_curvature_adjust_on_node(block.node_count(), up), -1);
  EXPECT_EQ(block.apply_curvature_adjust_on_node(-1, up), -1);
  EXPECT_EQ(block.apply_curvature_adjust_on_node(3, giVector3(1, 0, 0)), -2);
  EXPECT_EQ(block.apply_curvature_adjust_on_node(4, up), -3);
  EXPECT_EQ(journal.reports().nodes, Numbers{2});
  EXPECT_TRUE(is_sound(block, {false, true}));
  EXPECT_TRUE(journal.restores_the_start());
}

// 30 % of the range for the ring, the rest for the surface; the range is brought back, wherever it is stopped.
TEST_F(CurvatureAdjust, ReportsItsProgressAndCanBeStoppedAtEveryPoll) {
  std::set<int> results;
  for (int stop = 1;; ++stop) {
    MarkingHook hook;
    InterruptingHandler handler(stop);
    handler.set_percent_range(50.0, 70.0);
    const int result = block.enable_curvature_adjust(&rim, 0);
    results.insert(result);
    EXPECT_EQ(handler.percent_inf_range(), 50.0);
    EXPECT_EQ(handler.percent_sup_range(), 70.0);
    EXPECT_EQ(block.curvature_adjust, result == 0);
    ASSERT_FALSE(handler.messages.empty());
    EXPECT_EQ(handler.percents.front(), 50.0);
    for (std::size_t k = 0; k < handler.messages.size(); ++k) {
      const bool is_ring = handler.messages[k] == "<Filling Holes - Preparing data...";
      ASSERT_TRUE(is_ring || handler.messages[k] == "<Filling Holes - Calculating Curvature...");
      EXPECT_GE(handler.percents[k], is_ring ? 50.0 : 56.0);
      EXPECT_LE(handler.percents[k], is_ring ? 56.0 : 70.0);
    }
    if (handler.polls < stop) break;
    ASSERT_LT(stop, 10000);
  }
  EXPECT_EQ(results, (std::set<int>{-2, -1, 0}));
}

TEST(HoleSubdivision, TheLongerLineDecidesTheNumberOfSegments) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::pair<double, int> cases[] = {{5.0, 1}, {4.0, 1}, {3.9, 1}, {2.6, 2}, {1.0, 4}, {0.9, 4}, {0.8, 5},
                                          {0.0, 1}, {-1.0, 1}, {std::nan(""), 1}, {infinity, 1}};
  for (const auto& [max_length, segments] : cases) {
    Lines block;
    intcoPageArr a{7, 7}, b{7};  // are emptied
    EXPECT_EQ(block.create_hole_subdivision(1, 2, 3, 4, max_length, a, b, tr_no_direction(), 1), 1);
    EXPECT_EQ(a.count(), segments - 1) << max_length;
    EXPECT_EQ(b.count(), segments - 1);
    EXPECT_EQ(block.node_count(), 5 + 2 * (segments - 1));
    EXPECT_EQ(block.element_count(), 1);
    for (int k = 0; k < a.count(); ++k) {
      EXPECT_EQ(block.point(a[k]), gi_interpolate(block.point(1), block.point(2), (k + 1.0) / segments));
      EXPECT_EQ(block.point(b[k]), gi_interpolate(block.point(3), block.point(4), (k + 1.0) / segments));
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

TEST(HoleSubdivision, WithoutAnArcNothingIsMade) {
  struct OpenedSet : trCycleArray {
    using trCycleArray::create_hole_subdivision_nodes;
    using trCycleArray::trCycleArray;
  };
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

// A fifth of what is left of a hole's progress for the surface, and the rest stays set, also when there is none.
TEST(HoleProgress, TheSurfaceTakesAFifth) {
  struct OpenedSet : trCycleArray {
    using trCycleArray::disable_curvature_adjust;
    using trCycleArray::enable_curvature_adjust;
    using trCycleArray::trCycleArray;
  };
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
