#include "analysis/octants.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int deepest_split = 48;  // halving as often takes 1e9 below 1e-5

}  // namespace

Octants::Octants(const giBox3& whole) {
  for (int o = 0; o < count; ++o) {
    const double x = o & 1 ? 0.5 : 0.0;
    const double y = o & 2 ? 0.5 : 0.0;
    const double z = o & 4 ? 0.5 : 0.0;
    boxes_[o] = giBox3(whole.point_at(x, y, z), whole.point_at(x + 0.5, y + 0.5, z + 0.5));
  }
}

bool Octants::may_split(const giBox3& box, int n, int limit, int depth, double tol) {
  if (n <= std::max(limit, 2) || depth >= deepest_split) return false;
  const giVector3 lengths = box.lengths();
  double longest = 0.0;
  for (int k = 0; k < 3; ++k) {
    if (!std::isfinite(lengths[k])) return false;
    longest = std::max(longest, lengths[k]);
  }
  return longest > 2.0 * tol;
}

bool Octants::pays(const int sizes[count], int n) {
  double pairs = 0.0;
  for (int o = 0; o < count; ++o) pairs += static_cast<double>(sizes[o]) * sizes[o];
  return pairs < 2.0 * n * n;
}
