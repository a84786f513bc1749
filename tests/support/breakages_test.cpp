// The broken models that repairs are tried on: that they are broken as they say, and only where they say.

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "mesh/tri_block.h"
#include "support/breakages.h"

namespace {

constexpr int model_total = 56;  // each kind with each shape twice
constexpr std::uint64_t seed = 7;

using Place = std::array<double, 3>;
using Edge = std::pair<Place, Place>;

Place place_of(const giPoint3& p) { return {p.x, p.y, p.z}; }

std::vector<Corners> triangles_of(const Shape& shape) {
  std::vector<Corners> all;
  for (const auto& t : shape.triangles) {
    Corners corners;
    for (std::size_t k = 0; k < 3; ++k) corners[k] = shape.points[static_cast<std::size_t>(t[k])];
    all.push_back(corners);
  }
  return all;
}

// How often each directed edge occurs, by places alone.
std::map<Edge, int> edges_of(const std::vector<Corners>& triangles) {
  std::map<Edge, int> edges;
  for (const Corners& c : triangles) {
    for (std::size_t k = 0; k < 3; ++k) ++edges[{place_of(c[k]), place_of(c[(k + 1) % 3])}];
  }
  return edges;
}

bool is_closed(const std::map<Edge, int>& edges) {
  return std::all_of(edges.begin(), edges.end(), [&](const auto& entry) {
    const auto opposite = edges.find({entry.first.second, entry.first.first});
    return entry.second == 1 && opposite != edges.end() && opposite->second == 1;
  });
}

// What a broken model has of each defect, counted without the library.
struct Census {
  int free_edges = 0;      // directed edges without an opposite one
  int doubled_edges = 0;   // that occur more than once the same way
  int copies = 0;          // of triangles with the same corners and orientation
  int collapsed = 0;
  int flat = 0;            // of no area though the corners differ
  int more_triangles = 0;  // than in the original
};

Census census_of(const BrokenModel& model) {
  Census census;
  const std::vector<Corners> triangles = triangles_of(model.broken);
  const std::map<Edge, int> edges = edges_of(triangles);
  for (const auto& [edge, count] : edges) {
    census.free_edges += edges.count({edge.second, edge.first}) == 0;
    census.doubled_edges += edge.first != edge.second && count > 1;
  }
  std::set<std::array<Place, 3>> seen;
  for (const Corners& c : triangles) {
    std::array<Place, 3> key = {place_of(c[0]), place_of(c[1]), place_of(c[2])};
    std::rotate(key.begin(), std::min_element(key.begin(), key.end()), key.end());
    const bool is_collapsed = key[0] == key[1] || key[1] == key[2] || key[0] == key[2];
    census.collapsed += is_collapsed;
    census.copies += !is_collapsed && !seen.insert(key).second;
    const double longest = std::max({(c[1] - c[0]).length(), (c[2] - c[1]).length(), (c[0] - c[2]).length()});
    census.flat += !is_collapsed && (c[1] - c[0]).cross(c[2] - c[0]).length() < 1e-4 * longest * longest;
  }
  census.more_triangles = static_cast<int>(triangles.size() - model.original.triangles.size());
  return census;
}

}  // namespace

TEST(Breakages, OriginalsAreClosedAndFaceOutward) {
  for (int number = 0; number < model_total; ++number) {
    const BrokenModel model = broken_model(number, seed);
    EXPECT_TRUE(is_closed(edges_of(triangles_of(model.original)))) << model.name;
    EXPECT_GT(model.volume, 0.0) << model.name;
    double area, volume, least, mean;
    giPoint3 centre;
    BlockOf(model.original).properties(area, volume, centre, least, mean);
    EXPECT_NEAR(model.volume, volume, 1e-6 * volume) << model.name;
    EXPECT_GE(model.original.triangles.size(), 200u) << model.name;
  }
}

TEST(Breakages, EachKindHasItsDefects) {
  std::map<Breakage, int> places;
  for (int number = 0; number < model_total; ++number) {
    const BrokenModel model = broken_model(number, seed);
    const Census census = census_of(model);
    places[model.kind] += model.defects;
    EXPECT_GE(model.defects, 1) << model.name;
    switch (model.kind) {
      case Breakage::holes:
        EXPECT_LE(census.more_triangles, -model.defects) << model.name;
        EXPECT_GE(census.more_triangles, -static_cast<int>(model.original.triangles.size()) / 25 - 1) << model.name;
        EXPECT_GE(census.free_edges, 3 * model.defects) << model.name;
        break;
      case Breakage::patches:
        EXPECT_GE(census.free_edges, 6 * model.defects) << model.name;  // both sides of the cut
        EXPECT_GT(model.gap, 0.0) << model.name;
        break;
      case Breakage::flipped:
        EXPECT_EQ(census.doubled_edges, 3 * model.defects) << model.name;
        EXPECT_EQ(census.more_triangles, 0) << model.name;
        break;
      case Breakage::repeated:
        EXPECT_EQ(census.copies, census.more_triangles) << model.name;
        EXPECT_GE(census.copies, model.defects) << model.name;
        break;
      case Breakage::fins:
        EXPECT_GE(census.doubled_edges, model.defects) << model.name;
        EXPECT_EQ(census.copies, 0) << model.name;
        break;
      case Breakage::degenerate:
        EXPECT_GE(census.collapsed + census.flat, model.defects) << model.name;
        EXPECT_EQ(census.free_edges, 0) << model.name;
        break;
      case Breakage::several:
        EXPECT_GE(model.defects, 6) << model.name;
        EXPECT_GT(census.free_edges, 0) << model.name;
        break;
    }
  }
  for (const Breakage kind : all_breakages) EXPECT_GE(places[kind], 10) << name_of(kind);
}

// Away from the defects a triangle is there just once, and so is the other side of each of its edges; and these are most of the model.
TEST(Breakages, UntouchedTrianglesAreWhole) {
  double share = 0.0;
  for (int number = 0; number < model_total; ++number) {
    const BrokenModel model = broken_model(number, seed);
    const std::map<Edge, int> edges = edges_of(triangles_of(model.broken));
    for (const Corners& c : model.untouched) {
      for (std::size_t k = 0; k < 3; ++k) {
        const Place a = place_of(c[k]), b = place_of(c[(k + 1) % 3]);
        ASSERT_EQ(edges.count({a, b}) ? edges.at({a, b}) : 0, 1) << model.name;
        ASSERT_EQ(edges.count({b, a}) ? edges.at({b, a}) : 0, 1) << model.name;
      }
    }
    EXPECT_FALSE(model.untouched.empty()) << model.name;
    share += static_cast<double>(model.untouched.size()) / static_cast<double>(model.original.triangles.size()) / model_total;
  }
  EXPECT_GT(share, 0.6);
}

TEST(Breakages, DependOnSeedAndNumberAlone) {
  const auto points = [](int number, std::uint64_t s) {
    std::vector<Place> places;
    for (const giPoint3& p : broken_model(number, s).broken.points) places.push_back(place_of(p));
    return places;
  };
  EXPECT_EQ(points(6, 1), points(6, 1));
  EXPECT_NE(points(6, 1), points(6, 2));
  EXPECT_NE(points(6, 1), points(13, 1));
}
