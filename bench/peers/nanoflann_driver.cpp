// Merging by a k-d tree, with nanoflann's.
#include <cstdint>
#include <cstdlib>
#include <nanoflann.hpp>
#include <utility>
#include <vector>

#include "peers/driver.h"
#include "support/floors.h"

namespace {

struct Corners {
  std::vector<FlatPoint> points;

  std::size_t kdtree_get_point_count() const { return points.size(); }
  double kdtree_get_pt(std::size_t i, std::size_t axis) const { return (&points[i].x)[axis]; }
  template <class Box>
  bool kdtree_get_bbox(Box&) const {
    return false;
  }
};

using Tree = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Corners>, Corners, 3, std::uint32_t>;

// The first point that has no number yet gives one to all near it that have none.
Report merge(const char* input, const char* tol_text) {
  const FlatSoup soup = parse_flat(input);
  Corners corners;
  for (std::size_t i = 0; i < 3 * soup.facets; ++i) {
    corners.points.push_back({soup.corners[3 * i], soup.corners[3 * i + 1], soup.corners[3 * i + 2]});
  }
  const double tol = std::strtod(tol_text, nullptr);
  constexpr std::uint32_t none = 0xffffffffu;
  std::uint32_t count = 0;
  const Cost cost = cost_of([&] {
    const Tree tree(3, corners, nanoflann::KDTreeSingleIndexAdaptorParams(10));
    std::vector<std::uint32_t> numbers(corners.points.size(), none);
    std::vector<std::pair<std::uint32_t, double>> near;
    nanoflann::SearchParams unsorted;
    unsorted.sorted = false;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      if (numbers[i] != none) continue;
      tree.radiusSearch(&corners.points[i].x, tol * tol, near, unsorted);
      for (const auto& found : near) {
        if (numbers[found.first] == none) numbers[found.first] = count;
      }
      ++count;
    }
  });
  return {cost, {double(count)}};
}

}  // namespace

int main(int argc, char** argv) { return run_driver(argc, argv, {{"merge", merge}}); }
