#include "platform/triangulation/hex_grid.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "platform/geometry/box2.h"
#include "platform/spatial/hash_mix.h"

namespace {

constexpr double row_height = 0.8660254037844386;  // of a spacing: half the root of 3
constexpr double displacement = 1e-4;              // of a spacing, corner to corner

struct Crossing {
  int row;
  double x;
  bool operator<(const Crossing& other) const { return row < other.row || (row == other.row && x < other.x); }
};

class HexGrid {
 public:
  HexGrid(const giPoint2& centre, double spacing) : centre_(centre), spacing_(spacing), height_(spacing * row_height) {}

  // The first row not below y, as a number with a fraction of 0.
  double row_from(double y) const { return std::ceil((y - centre_.y) / height_); }

  void add_crossings(const giPoint2& a, const giPoint2& b, std::vector<Crossing>& crossings) const {
    const giPoint2 &low = a.y < b.y ? a : b, &high = a.y < b.y ? b : a;
    const int end = static_cast<int>(row_from(high.y));
    for (int row = static_cast<int>(row_from(low.y)); row < end; ++row) {
      const double along = (centre_.y + row * height_ - low.y) / (high.y - low.y);
      crossings.push_back({row, low.x + along * (high.x - low.x)});
    }
  }

  void add_points(int row, double from_x, double to_x, std::vector<giPoint2>& points) const {
    const double row_start = centre_.x + ((row & 1) != 0 ? 0.5 * spacing_ : 0.0);
    const double end = (to_x - row_start) / spacing_;
    for (double column = std::ceil((from_x - row_start) / spacing_); column < end; ++column) {
      const auto place = static_cast<std::uint64_t>(points.size());
      points.emplace_back(row_start + spacing_ * (column + displaced(2 * place)),
                          centre_.y + row * height_ + spacing_ * displaced(2 * place + 1));
    }
  }

 private:
  static double displaced(std::uint64_t seed) {
    return (static_cast<double>(mix_hash(seed) >> 11) * 0x1p-53 - 0.5) * displacement;
  }

  giPoint2 centre_;
  double spacing_;
  double height_;
};

}  // namespace

std::vector<giPoint2> hex_grid_points(const std::vector<giPoint2>& points, const std::vector<int>& next, double spacing,
                                      double expected) {
  giBox2 box;
  for (const giPoint2& p : points) box.merge(p);
  const HexGrid grid(giPoint2(0.5 * (box.min().x + box.max().x), 0.5 * (box.min().y + box.max().y)), spacing);
  const double most_crossings = 1e5 + 2.0 * expected + 2.0 * static_cast<double>(points.size());
  double crossing_count = 0.0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const giPoint2& end = points[static_cast<std::size_t>(next[i])];
    crossing_count += std::fabs(grid.row_from(points[i].y) - grid.row_from(end.y));
  }
  if (!(crossing_count <= most_crossings)) return {};

  std::vector<Crossing> crossings;
  for (std::size_t i = 0; i < points.size(); ++i)
    grid.add_crossings(points[i], points[static_cast<std::size_t>(next[i])], crossings);
  std::sort(crossings.begin(), crossings.end());
  std::vector<giPoint2> inside;
  for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
    if (crossings[i].row == crossings[i + 1].row)
      grid.add_points(crossings[i].row, crossings[i].x, crossings[i + 1].x, inside);
  }
  return inside;
}
