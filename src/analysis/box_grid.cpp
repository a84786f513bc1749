#include "analysis/box_grid.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr int most_divisions = 1000;

bool is_divided(double length) { return length > 0.0 && std::isfinite(length); }

// Edge of the cubes, squares or pieces that a box of those edge lengths falls into.
double piece_edge(const giVector3& lengths, double pieces) {
  double content = 1.0;
  int dimension = 0;
  for (int k = 0; k < 3; ++k) {
    if (!is_divided(lengths[k])) continue;
    content *= lengths[k];
    ++dimension;
  }
  const double share = content / pieces;
  if (dimension == 3) return std::cbrt(share);
  return dimension == 2 ? std::sqrt(share) : share;
}

int divisions(double length, double edge) {
  if (!is_divided(length)) return 1;
  const double wanted = 0.5 + length / edge;
  return wanted < most_divisions - 1 ? static_cast<int>(wanted) + 1 : most_divisions;
}

// Cuts the largest factors down until the product is at most `limit`.
void bound_product(int factors[3], std::int64_t limit) {
  for (int pass = 0; pass < 3; ++pass) {
    const std::int64_t product = std::int64_t{factors[0]} * factors[1] * factors[2];
    if (product <= limit) return;
    int& largest = *std::max_element(factors, factors + 3);
    largest = static_cast<int>(std::max<std::int64_t>(limit / (product / largest), 1));
  }
}

}  // namespace

trBoxGrid::trBoxGrid(const giBox3& box, int count, int per_box) : box_(box) {
  const giVector3 lengths = box.lengths();
  const double edge = piece_edge(lengths, static_cast<double>(count) / std::max(per_box, 1));
  int div[3];
  for (int k = 0; k < 3; ++k) div[k] = divisions(lengths[k], edge);
  bound_product(div, 4 * std::int64_t{std::max(count, 0)} + 64);
  x_div_ = div[0];
  y_div_ = div[1];
  z_div_ = div[2];
}

giBox3 trBoxGrid::sub_box(int i, int j, int k) const {
  const double nx = x_div_, ny = y_div_, nz = z_div_;
  return giBox3(box_.point_at((i - 1) / nx, (j - 1) / ny, (k - 1) / nz), box_.point_at(i / nx, j / ny, k / nz));
}
