#include "tolerance_ladder.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "holes.h"

namespace {

constexpr double growth = 10.0;
constexpr double share_of_edge = 0.1;
constexpr double share_of_rim_edge = 0.5;

double largest_coordinate(const trTriBlock& mesh) {
  const giBox3& box = mesh.box();
  double largest = 0.0;
  for (int k = 0; k < 3 && !box.is_empty(); ++k) largest = std::max({largest, std::fabs(box.min()[k]), std::fabs(box.max()[k])});
  return largest;
}

// The length below which the shortest twentieth of all open edges lies.
double short_rim_edge(trControl& control) {
  std::vector<double> lengths;
  const trTriBlock& mesh = control.triblock();
  for (const FoundBoundary& rim : find_boundaries(control.cycles())) {
    for (std::size_t k = 0; k < rim.nodes.size(); ++k) {
      const double length = (mesh.point(rim.nodes[(k + 1) % rim.nodes.size()]) - mesh.point(rim.nodes[k])).length();
      if (length > 0.0) lengths.push_back(length);
    }
  }
  if (lengths.empty()) return 0.0;
  const auto place = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 20);
  std::nth_element(lengths.begin(), place, lengths.end());
  return *place;
}

}  // namespace

ToleranceLadder::ToleranceLadder(trControl& control, const RepairSettings& settings) {
  const trTriBlock& mesh = control.triblock();
  const double least = settings.least_tolerance ? settings.least_tolerance->resolve(mesh)
                                                : static_cast<double>(std::numeric_limits<float>::epsilon()) * largest_coordinate(mesh);
  const double most = settings.most_tolerance
                          ? settings.most_tolerance->resolve(mesh)
                          : std::min(share_of_edge * median_edge_of(mesh), share_of_rim_edge * short_rim_edge(control));
  if (!(most > 0.0) || !std::isfinite(most) || !std::isfinite(least)) return;
  for (double rung = least; rung > 0.0 && rung < most; rung *= growth) rungs_.push_back(rung);
  rungs_.push_back(most);
}
