#include "mesh/measures.h"

#include <algorithm>
#include <cmath>

#include "mesh/tri_block.h"
#include "platform/common/cc_math.h"
#include "progress/progress.h"

double tr_area_tri_sq(const giPoint3& a, const giPoint3& b, const giPoint3& c, giVector3& n) {
  const auto cross = [](const giPoint3& p, const giPoint3& q) {
    return giVector3(p.y * q.z - p.z * q.y, p.z * q.x - p.x * q.z, p.x * q.y - p.y * q.x);
  };
  n = cross(a, b) + cross(b, c) + cross(c, a);
  return n.length_sq();
}

double trTriBlock::area_element(int e) const {
  giVector3 normal;
  const trElement& t = element(e);
  return tr_area_tri_sq(point(t[0]), point(t[1]), point(t[2]), normal);
}

double trTriBlock::surface_area() const {
  double doubled = 0.0;
  for (int e = 1; e < element_count(); ++e) {
    if (tr_interrupt()) break;
    tr_report_triangles(e, element_count(), 0.0, 100.0);
    prefetch_corners(e + corners_ahead);
    const trElement& t = element(e);
    if (!t.valid()) continue;
    const giPoint3& a = point(t[0]);
    doubled += (point(t[1]) - a).cross(point(t[2]) - a).length();
  }
  return doubled / 2.0;
}

double trTriBlock::volume() const {
  double doubled = 0.0;
  for (int e = 1; e < element_count(); ++e) {
    if (tr_interrupt()) break;
    tr_report_triangles(e, element_count(), 0.0, 100.0);
    prefetch_corners(e + corners_ahead);
    const trElement& t = element(e);
    if (!t.valid()) continue;
    const giPoint3& a = point(t[0]);
    const giPoint3& b = point(t[1]);
    const giPoint3& c = point(t[2]);
    const double mean_z = (a.z + b.z + c.z) / 3.0;
    doubled += mean_z * ((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x));
  }
  return doubled / 2.0;
}

namespace {

// S1 is the volume as measured along each axis, S2 its first moment, by the divergence theorem, with the integral of a squared
// coordinate over a triangle taken at its centroid.
struct Moments {
  double s1[3] = {0.0, 0.0, 0.0};
  double s2[3] = {0.0, 0.0, 0.0};

  void add(const giPoint3& centroid, const giVector3& n) {
    const double c[3] = {centroid.x, centroid.y, centroid.z};
    const double normal[3] = {n.x(), n.y(), n.z()};
    for (int k = 0; k < 3; ++k) {
      const double term = c[k] * normal[k] / 2.0;
      s1[k] += term;
      s2[k] += c[k] * term / 2.0;
    }
  }

  // A coordinate is 0 where the volume along its axis vanishes; 1e-5 is in model units cubed.
  double centre(int k) const { return std::fabs(s1[k]) < 1e-5 ? 0.0 : s2[k] / s1[k]; }
};

}  // namespace

double trTriBlock::lowest_corner_z() const {
  double lowest = HUGE_VAL;
  for (int e = 1; e < element_count(); ++e) {
    prefetch_corners(e + corners_ahead);
    const trElement& t = element(e);
    if (!t.valid()) continue;
    for (int k = 0; k < 3; ++k) lowest = std::min(lowest, node_in_workplane(t[k]).z);
  }
  return lowest;
}

void trTriBlock::properties(double& area, double& vol, giPoint3& centre, double& min_aspect, double& mean_aspect) const {
  area = 0.0;
  vol = 0.0;
  min_aspect = 1.0;
  mean_aspect = 0.0;
  Moments moments;
  int counted = 0;
  const double lowest_z = lowest_corner_z();
  for (int e = 1; e < element_count(); ++e) {
    if (tr_interrupt()) break;
    tr_report_triangles(e, element_count(), 0.0, 100.0);
    prefetch_corners(e + corners_ahead);
    const trElement& t = element(e);
    if (!t.valid()) continue;
    const giPoint3 p = node_in_workplane(t[0]);
    const giPoint3 q = node_in_workplane(t[1]);
    const giPoint3 r = node_in_workplane(t[2]);
    const giVector3 n = (q - p).cross(r - p);
    area += n.length() / 2.0;
    moments.add(giPoint3((p.x + q.x + r.x) / 3.0, (p.y + q.y + r.y) / 3.0, (p.z + q.z + r.z) / 3.0), n);
    const double aspect = ccMath::tri_aspect_ratio(p, q, r);
    min_aspect = std::min(min_aspect, aspect);
    mean_aspect += aspect;
    vol += ccMath::tri_vol(p, q, r, lowest_z);
    ++counted;
  }
  centre = giPoint3(moments.centre(0), moments.centre(1), moments.centre(2));
  mean_aspect /= counted;
}

double trTriBlock::node_average_distance(const intcoPageArr& chain) const {
  const int steps = chain.count() - 1;
  if (steps < 1) return 0.0;
  double sum = 0.0;
  for (int k = 0; k < steps; ++k) sum += (point(chain[k + 1]) - point(chain[k])).length();
  return sum / steps;
}
