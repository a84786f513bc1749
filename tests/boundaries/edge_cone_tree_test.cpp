// What a tree of edges passes over makes no low triangle: against trying every edge.

#include "boundaries/edge_cone_tree.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <vector>

#include "mesh/aspect_utils.h"
#include "support/random.h"

namespace {

giVector3 any_vector(Random& random, double size) {
  return size * giVector3(random.between(-1.0, 1.0), random.between(-1.0, 1.0), random.between(-1.0, 1.0));
}

double any_scale(Random& random, int least, int most) { return std::pow(10.0, random.between(least, most)); }

// A line that bends little or much, near the origin or far from it, with edges of like or very different lengths.
std::vector<giPoint3> any_line(Random& random) {
  const double bend = any_scale(random, -9, 0), spread = any_scale(random, 0, 4);
  giPoint3 p = giPoint3() + any_vector(random, any_scale(random, -3, 4));
  giVector3 along = any_vector(random, 1.0);
  std::vector<giPoint3> points;
  for (int n = random.between(2, 300); n > 0; --n) {
    points.push_back(p);
    p = p + std::pow(spread, random.unit()) * along;
    along = along + any_vector(random, bend);
  }
  return points;
}

struct Line {
  std::vector<giPoint3> points;
  EdgeConeTree tree;

  explicit Line(const std::vector<giPoint3>& all) : points(all), tree(edges_of(all), [&](int k) { return all[static_cast<std::size_t>(k)]; }) {}

  static std::vector<EdgeConeTree::Edge> edges_of(const std::vector<giPoint3>& all) {
    std::vector<EdgeConeTree::Edge> edges;
    for (int k = 0; k + 1 < static_cast<int>(all.size()); ++k) edges.push_back({k, k + 1, k});
    return edges;
  }
  const giPoint3& point(int k) const { return points[static_cast<std::size_t>(k)]; }
  int count() const { return tree.count(); }
};

bool is_low(const giPoint3& a, const giPoint3& b, const giPoint3& p, double tol) { return trAspectUtils::triangle_height(a, b, p).value() < tol; }

// Beside an edge, in line with it or anywhere.
giPoint3 any_point(Random& random, const Line& line) {
  const int k = random.below(line.count());
  const giVector3 along = line.point(k + 1) - line.point(k);
  const double reach = random.one_in(2) ? 0.5 : any_scale(random, 0, 5);
  return line.point(k) + reach * along + any_vector(random, any_scale(random, -12, 1));
}

TEST(EdgeConeTree, PassesOverNothingThatMakesALowTriangle) {
  Random random(11);
  long long hits = 0, tried = 0, all = 0;
  for (int round = 0; round < 1500; ++round) {
    Line line(any_line(random));
    std::vector<char> is_active(static_cast<std::size_t>(line.count()), 1);
    for (int query = 0; query < 20; ++query) {
      const giPoint3 p = any_point(random, line);
      const double tol = any_scale(random, -12, -2);
      int expected = -1;
      for (int k = line.count() - 1; k >= 0; --k) {
        if (is_active[static_cast<std::size_t>(k)] && is_low(line.point(k), line.point(k + 1), p, tol)) expected = k;
      }
      const int k = line.tree.first(p, tol, [&](const EdgeConeTree::Edge& edge) {
        ++tried;
        return is_low(line.point(edge.start), line.point(edge.end), p, tol);
      });
      ASSERT_EQ(k, expected) << "round " << round << ", query " << query;
      all += expected < 0 ? line.count() : expected + 1;
      if (k < 0) continue;
      ++hits;
      line.tree.deactivate(k);
      is_active[static_cast<std::size_t>(k)] = 0;
    }
    const giPoint3 a = any_point(random, line), b = any_point(random, line);
    const double tol = any_scale(random, -12, -2);
    std::set<int> visited;
    line.tree.visit_starts(a, b, tol, [&](int k) { visited.insert(k); });
    for (int k = 0; k < line.count(); ++k) {
      ASSERT_TRUE(!is_low(a, b, line.point(k), tol) || visited.count(k) == 1) << "round " << round << ", edge " << k;
    }
  }
  EXPECT_GT(hits, 3000);
  EXPECT_LT(tried, 4 * all / 5);
}

}  // namespace
