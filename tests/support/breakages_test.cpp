// The broken models that repairs are tried on: that they are broken as they say, and only where they say.

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "support/breakages.h"

namespace {

constexpr int model_total = 28;  // each kind with each shape

using Place = std::array<double, 3>;
using Triangle = std::array<Place, 3>;
using Edges = std::map<std::pair<Place, Place>, int>;

std::vector<Triangle> triangles_of(const Shape& shape) {
  std::vector<Triangle> all;
  for (const auto& t : shape.triangles) {
    const auto place = [&](int k) -> Place {
      const giPoint3& p = shape.points[static_cast<std::size_t>(k)];
      return {p.x, p.y, p.z};
    };
    all.push_back({place(t[0]), place(t[1]), place(t[2])});
  }
  return all;
}

// How often each directed edge occurs, by places alone.
Edges edges_of(const std::vector<Triangle>& triangles) {
  Edges edges;
  for (const Triangle& c : triangles) {
    for (std::size_t k = 0; k < 3; ++k) ++edges[{c[k], c[(k + 1) % 3]}];
  }
  return edges;
}

int free_edges(const Edges& edges) {
  return static_cast<int>(std::count_if(edges.begin(), edges.end(), [&](const auto& edge) {
    return edges.count({edge.first.second, edge.first.first}) == 0;
  }));
}

// Edges that run more than once the same way.
int doubled_edges(const Edges& edges) {
  return static_cast<int>(std::count_if(edges.begin(), edges.end(), [](const auto& edge) {
    return edge.first.first != edge.first.second && edge.second > 1;
  }));
}

}  // namespace

TEST(Breakages, EachKindHasItsDefectsAndNothingElseIsTouched) {
  std::map<Breakage, int> places;
  double whole = 0.0;
  for (int number = 0; number < model_total; ++number) {
    const BrokenModel model = broken_model(number, 7);
    SCOPED_TRACE(model.name);
    const Edges original = edges_of(triangles_of(model.original));
    EXPECT_EQ(free_edges(original) + doubled_edges(original), 0);
    EXPECT_GT(model.volume, 0.0);
    const std::vector<Triangle> triangles = triangles_of(model.broken);
    const Edges edges = edges_of(triangles);
    const int more = static_cast<int>(triangles.size()) - static_cast<int>(model.original.triangles.size());
    places[model.kind] += model.defects;
    EXPECT_GE(model.defects, 1);
    switch (model.kind) {
      case Breakage::holes: EXPECT_GE(free_edges(edges), 3 * model.defects); break;
      case Breakage::patches: EXPECT_GE(free_edges(edges), 6 * model.defects); break;  // both sides of the cut
      case Breakage::flipped: EXPECT_EQ(doubled_edges(edges), 3 * model.defects); break;
      case Breakage::repeated: EXPECT_GE(more, model.defects); break;
      case Breakage::fins: EXPECT_GE(doubled_edges(edges), model.defects); break;
      case Breakage::degenerate: EXPECT_EQ(free_edges(edges), 0); break;
      case Breakage::several: EXPECT_GE(model.defects, 6);
    }
    for (const Corners& c : model.untouched) {
      for (std::size_t k = 0; k < 3; ++k) {
        const giPoint3 &p = c[k], &q = c[(k + 1) % 3];
        const auto found = edges.find({{p.x, p.y, p.z}, {q.x, q.y, q.z}});
        ASSERT_TRUE(found != edges.end() && found->second == 1);
      }
    }
    whole += static_cast<double>(model.untouched.size()) / static_cast<double>(model.original.triangles.size()) / model_total;
  }
  EXPECT_GT(whole, 0.6) << "of the triangles are untouched";
  for (const Breakage kind : all_breakages) EXPECT_GE(places[kind], 4) << name_of(kind);
}
