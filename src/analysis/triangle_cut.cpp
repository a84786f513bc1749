#include "analysis/triangle_cut.h"

#include <cmath>

bool crossing_in_triangle(const giPoint3& p, const giPoint3& q, double dp, double dq, const giPoint3* tri,
                          const giVector3& n, double tol) {
  dp = std::fabs(dp);
  dq = std::fabs(dq);
  giPoint3 x;
  if (dp < tol && dq < tol) {
    x = giPoint3((p.x + q.x) / 2.0, (p.y + q.y) / 2.0, (p.z + q.z) / 2.0);
  } else if (dp < tol) {
    x = p;
  } else if (dq < tol) {
    x = q;
  } else {
    x = gi_interpolate(p, q, dp / (dp + dq));
  }
  const giVector3 v[3] = {tri[0] - x, tri[1] - x, tri[2] - x};
  int above = 0;
  int below = 0;
  for (int i = 0; i < 3; ++i) {
    const giVector3& from = v[i];
    const giVector3& to = v[(i + 1) % 3];
    const double c = n.dot(from.cross(to));
    if (std::fabs(c) < tol) {
      // x lies on the line of this side: at a corner, between the corners, or beyond them.
      const double d = from.dot(to);
      if (d < tol && (from.length() < tol || to.length() < tol)) return true;
      if (d < 0.0) return true;
      continue;
    }
    above += c > 0.0;
    below += c < 0.0;
  }
  return above == 3 || below == 3;
}
