#include "platform/common/cc_math.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace {

// Squared edges in this range keep every product of the ratio, which is of their square, clear of overflow and underflow.
constexpr double least_safe_sq = 1e-100;
constexpr double greatest_safe_sq = 1e100;

double longest_edge_sq(const giPoint3& p, const giPoint3& q, const giPoint3& r) {
  return std::max({p.distance_sq(q), q.distance_sq(r), r.distance_sq(p)});
}

double height_over_edge(const giPoint3& p, const giPoint3& q, const giPoint3& r) {
  const double longest_sq = longest_edge_sq(p, q, r);
  return longest_sq == 0.0 ? 0.0 : (q - p).cross(r - p).length() / longest_sq;
}

// The two edges from p, brought by a power of two to a length of about 1. Large coordinates are first halved thrice, so that
// differences and their sum stay finite; small ones are not, since that could cost them bits.
double scaled_height_over_edge(const giPoint3& p, const giPoint3& q, const giPoint3& r) {
  const double first_step = longest_edge_sq(p, q, r) < least_safe_sq * 2.0 ? 1.0 : 0.125;
  double edge[6];
  double size = 0.0;
  for (int k = 0; k < 3; ++k) {
    edge[k] = q[k] * first_step - p[k] * first_step;
    edge[k + 3] = r[k] * first_step - p[k] * first_step;
    size += std::fabs(edge[k]) + std::fabs(edge[k + 3]);
  }
  if (size == 0.0) return 0.0;
  if (!std::isfinite(size)) return NAN;
  const int exponent = -std::ilogb(size);
  for (double& component : edge) component = std::scalbn(component, exponent);
  return height_over_edge(giPoint3(), giPoint3(edge[0], edge[1], edge[2]), giPoint3(edge[3], edge[4], edge[5]));
}

}  // namespace

double ccMath::tri_vol(const giPoint3& p, const giPoint3& q, const giPoint3& r, double z0) {
  const double doubled_area = (q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x);
  return ((p.z + q.z + r.z) / 3.0 - z0) * doubled_area / 2.0;
}

double ccMath::tri_aspect_ratio(const giPoint3& p, const giPoint3& q, const giPoint3& r) {
  const double longest_sq = longest_edge_sq(p, q, r);
  if (longest_sq > least_safe_sq && longest_sq < greatest_safe_sq) return (q - p).cross(r - p).length() / longest_sq;
  return scaled_height_over_edge(p, q, r);
}
