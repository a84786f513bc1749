#include "platform/common/cc_math.h"

#include <algorithm>

double ccMath::tri_vol(const giPoint3& p, const giPoint3& q, const giPoint3& r, double z0) {
  const double doubled_area = (q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x);
  return ((p.z + q.z + r.z) / 3.0 - z0) * doubled_area / 2.0;
}

double ccMath::tri_aspect_ratio(const giPoint3& p, const giPoint3& q, const giPoint3& r) {
  const double longest_sq = std::max({p.distance_sq(q), q.distance_sq(r), r.distance_sq(p)});
  if (longest_sq == 0.0) return 0.0;
  return (q - p).cross(r - p).length() / longest_sq;
}
