#include "hole_surroundings.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>

namespace {

constexpr double long_rim = 1.9;        // diagonals
constexpr double wide_rim = 0.6;        // of the shell's area
constexpr double even = 0.02;           // of the size
constexpr double level_deg = 8.0;
constexpr double steep_deg = 65.0;
constexpr double degrees_in_radian = 57.29577951308232;

giVector3 unit(const giVector3& v) {
  const double length = v.length();
  return length > 0.0 ? giVector3(v.x() / length, v.y() / length, v.z() / length) : giVector3(0.0, 0.0, 0.0);
}

// Twice the area that the loop spans, in the direction of a patch over it, which runs against the loop.
giVector3 patch_normal(const trTriBlock& mesh, const std::vector<int>& nodes) {
  giVector3 sum(0.0, 0.0, 0.0);
  const giPoint3& origin = mesh.point(nodes.front());
  for (std::size_t k = 0; k < nodes.size(); ++k) {
    const giVector3 a = mesh.point(nodes[k]) - origin, b = mesh.point(nodes[(k + 1) % nodes.size()]) - origin;
    sum = sum + b.cross(a);
  }
  return sum;
}

double unevenness_of(const trTriBlock& mesh, const std::vector<int>& nodes, const giVector3& normal, double area) {
  double low = 0.0, high = 0.0;
  for (const int i : nodes) {
    const double height = normal.dot(mesh.point(i) - mesh.point(nodes.front()));
    low = std::min(low, height);
    high = std::max(high, height);
  }
  return area > 0.0 ? (high - low) / std::sqrt(area) : 0.0;
}

std::uint64_t key_of(int from, int to) {
  return static_cast<std::uint64_t>(static_cast<std::uint32_t>(from)) << 32 | static_cast<std::uint32_t>(to);
}

}  // namespace

HoleSurvey::HoleSurvey(const trTriBlock& mesh, const std::vector<FoundBoundary>& boundaries, const ShellSurvey& shells)
    : mesh_(mesh), shells_(shells), surroundings_(boundaries.size()) {
  if (boundaries.empty()) return;
  look_along_rims(boundaries);
  find_sheets(boundaries);
}

void HoleSurvey::look_along_rims(const std::vector<FoundBoundary>& boundaries) {
  std::vector<char> is_on_rim(static_cast<std::size_t>(mesh_.node_count()));
  std::unordered_map<std::uint64_t, std::size_t> rim_edges;
  std::vector<giVector3> normals;
  for (std::size_t h = 0; h < boundaries.size(); ++h) {
    const std::vector<int>& nodes = boundaries[h].nodes;
    for (std::size_t k = 0; k < nodes.size(); ++k) {
      is_on_rim[static_cast<std::size_t>(nodes[k])] = 1;
      rim_edges.emplace(key_of(nodes[k], nodes[(k + 1) % nodes.size()]), h);
    }
    const giVector3 spanned = patch_normal(mesh_, nodes);
    normals.push_back(unit(spanned));
    surroundings_[h].spanned_area = 0.5 * spanned.length();
    surroundings_[h].unevenness = unevenness_of(mesh_, nodes, normals[h], surroundings_[h].spanned_area);
  }
  std::vector<std::vector<double>> bends(boundaries.size());
  const auto is_rim = [&](int node) { return is_on_rim[static_cast<std::size_t>(node)] != 0; };
  for (int e = 1; e < mesh_.element_count(); ++e) {
    const trElement& t = mesh_.element(e);
    if (!t.valid() || is_rim(t[0]) + is_rim(t[1]) + is_rim(t[2]) < 2) continue;
    const giPoint3 &a = mesh_.point(t[0]), &b = mesh_.point(t[1]), &c = mesh_.point(t[2]);
    for (int k = 0; k < 3; ++k) {
      const auto edge = rim_edges.find(key_of(t[k], t[(k + 1) % 3]));
      if (edge == rim_edges.end()) continue;
      surroundings_[edge->second].shell = shells_.shell_of[static_cast<std::size_t>(e)];
      const double cosine = unit((b - a).cross(c - a)).dot(normals[edge->second]);
      bends[edge->second].push_back(std::acos(std::max(-1.0, std::min(1.0, cosine))) * degrees_in_radian);
    }
  }
  for (std::size_t h = 0; h < bends.size(); ++h) {
    if (bends[h].empty()) continue;
    const auto middle = bends[h].begin() + static_cast<std::ptrdiff_t>(bends[h].size() / 2);
    std::nth_element(bends[h].begin(), middle, bends[h].end());
    surroundings_[h].bend_deg = *middle;
  }
}

void HoleSurvey::find_sheets(const std::vector<FoundBoundary>& boundaries) {
  std::vector<std::size_t> longest(shells_.shells.size(), boundaries.size());
  for (std::size_t h = 0; h < boundaries.size(); ++h) {
    if (surroundings_[h].shell < 0) continue;
    std::size_t& first = longest[static_cast<std::size_t>(surroundings_[h].shell)];
    if (first == boundaries.size() || boundaries[h].length > boundaries[first].length) first = h;
  }
  for (std::size_t k = 0; k < longest.size(); ++k) {
    if (longest[k] == boundaries.size()) continue;
    const Shell& shell = shells_.shells[k];
    HoleSurroundings& rim = surroundings_[longest[k]];
    const double diagonal = (shell.box.max() - shell.box.min()).length();
    rim.is_sheet_rim = boundaries[longest[k]].length >= long_rim * diagonal && rim.spanned_area >= wide_rim * shell.area;
  }
}

HoleShape shape_of(const FoundBoundary& hole, const HoleSurroundings& around, int small_hole) {
  if (hole.edges() <= small_hole) return HoleShape::small;
  const bool is_flat = around.unevenness <= even && (around.bend_deg <= level_deg || around.bend_deg >= steep_deg);
  return is_flat ? HoleShape::flat : HoleShape::curved;
}
