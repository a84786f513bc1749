#include "platform/surface/fit_samples.h"

#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>

namespace {

constexpr int least_places = 6;          // a quadratic surface has six free numbers
constexpr double same_place = 1e-6;      // of the extent: places nearer than this count once
constexpr double line_width = 1e-6;      // of the length: a narrower set is a line
constexpr int most_probes = 256;         // points that are compared with all others, which bounds the work by their number
constexpr double ring_reach = 4.0;       // of half the boundary's extent: a ring point is not used from farther away
constexpr double least_facing = 0.5;     // cosine of the angle between the best-fit plane and the hole

double largest_coordinate(const giVector3& v) { return std::max({std::fabs(v.x()), std::fabs(v.y()), std::fabs(v.z())}); }

// The columns: the axes, greatest extent first; the sign such that the largest component is positive, the first of equals.
Eigen::Matrix3d principal_axes(const std::vector<giVector3>& points, Eigen::Vector3d& extents_sq) {
  Eigen::Matrix3d moments = Eigen::Matrix3d::Zero();
  for (const giVector3& p : points) {
    const Eigen::Vector3d v(p.x(), p.y(), p.z());
    moments += v * v.transpose();
  }
  const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(moments);
  extents_sq = solver.eigenvalues().reverse();
  Eigen::Matrix3d axes = solver.eigenvectors().rowwise().reverse();
  for (int k = 0; k < 3; ++k) {
    int largest = 0;
    axes.col(k).cwiseAbs().maxCoeff(&largest);
    if (axes(largest, k) < 0.0) axes.col(k) *= -1.0;
  }
  return axes;
}

giUnitVec3 column(const Eigen::Matrix3d& axes, int k) { return giUnitVec3(giVector3(axes(0, k), axes(1, k), axes(2, k))); }

// The most that the points from `first` on are away from the middle of their box, along an axis; and the middle.
double half_extent(const std::vector<giVector3>& points, std::size_t first, giVector3& middle) {
  giVector3 low = points[first];
  giVector3 high = low;
  for (std::size_t k = first; k < points.size(); ++k) {
    const giVector3& p = points[k];
    low.set(std::min(low.x(), p.x()), std::min(low.y(), p.y()), std::min(low.z(), p.z()));
    high.set(std::max(high.x(), p.x()), std::max(high.y(), p.y()), std::max(high.z(), p.z()));
  }
  middle = low + (high - low) * 0.5;
  return 0.5 * largest_coordinate(high - low);
}

// Replaces ring points that are far away from a small hole by points in their direction from the boundary: of a long triangle only
// the near end counts, else the hole would be a speck among the knots.
void draw_ring_near(std::vector<giVector3>& points, std::size_t boundary_start) {
  if (boundary_start == 0 || boundary_start == points.size()) return;
  giVector3 middle;
  const double reach = ring_reach * half_extent(points, boundary_start, middle);
  if (!(reach > 0.0 && std::isfinite(reach))) return;
  const std::size_t boundary_count = points.size() - boundary_start;
  const std::size_t stride = 1 + (boundary_count - 1) / most_probes;
  for (std::size_t k = 0; k < boundary_start; ++k) {
    const double away = largest_coordinate(points[k] - middle);
    if (!(away > reach && std::isfinite(away))) continue;
    giVector3 near;
    giVector3 step;
    double least = DBL_MAX;
    for (std::size_t b = boundary_start; b < points.size(); b += stride) {
      const giVector3 to = points[k] - points[b];
      const giVector3 share(to.x() / away, to.y() / away, to.z() / away);
      if (share.length_sq() >= least) continue;
      least = share.length_sq();
      step = share;
      near = points[b];
    }
    points[k] = near + step * (reach / (ring_reach * std::sqrt(least)));
  }
}

// Moves the points to their mean and scales them so that the largest coordinate is 1. Returns the scale; 0 when all points are one,
// -1 when a number leaves the range.
double normalise(std::vector<giVector3>& points, giVector3& mean) {
  const double n = static_cast<double>(points.size());
  double extent = 0.0;
  mean = giVector3();
  for (const giVector3& p : points) {
    if (!std::isfinite(p.x()) || !std::isfinite(p.y()) || !std::isfinite(p.z())) return -1.0;
    mean += p * (1.0 / n);
  }
  for (giVector3& p : points) {
    p -= mean;
    extent = std::max(extent, largest_coordinate(p));
  }
  if (!std::isfinite(extent)) return -1.0;
  if (extent < DBL_MIN) return 0.0;
  for (giVector3& p : points) p.set(p.x() / extent, p.y() / extent, p.z() / extent);
  return extent;
}

bool has_enough_places(const std::vector<FitSample>& points) {
  std::vector<FitSample> places;
  for (const FitSample& p : points) {
    const bool known = std::any_of(places.begin(), places.end(), [&](const FitSample& q) {
      return std::fabs(p.u - q.u) <= same_place && std::fabs(p.v - q.v) <= same_place;
    });
    if (!known) places.push_back(p);
    if (places.size() == least_places) return true;
  }
  return false;
}

// Twice the signed area of the triangle (a, b, (u, v)).
double turn(const FitSample& a, const FitSample& b, double u, double v) {
  return (b.u - a.u) * (v - a.v) - (b.v - a.v) * (u - a.u);
}

// Whether the ray from p along u crosses the segment from a to b.
bool crosses_ray(const FitSample& a, const FitSample& b, const FitSample& p) {
  return (a.v > p.v) != (b.v > p.v) && (turn(a, b, p.u, p.v) > 0.0) == (b.v > a.v);
}

struct Offset {
  double distance_sq;  // in the plane
  double height;
};

// From the place of the segment that is nearest to p in the plane.
Offset offset_from(const FitSample& a, const FitSample& b, const FitSample& p) {
  const double du = b.u - a.u;
  const double dv = b.v - a.v;
  const double length_sq = du * du + dv * dv;
  const double along = length_sq > 0.0 ? ((p.u - a.u) * du + (p.v - a.v) * dv) / length_sq : 0.0;
  const double t = std::min(std::max(along, 0.0), 1.0);
  const double u = p.u - (a.u + t * du);
  const double v = p.v - (a.v + t * dv);
  return {u * u + v * v, p.z - (a.z + t * (b.z - a.z))};
}

bool stands_steep(const FitSamples& samples, const FitSample& p, double slope) {
  bool inside = false;
  Offset nearest{DBL_MAX, 0.0};
  const FitSample* last = &samples.points.back();
  for (int k = samples.boundary_start; k < samples.count(); ++k) {
    const FitSample& next = samples.points[static_cast<std::size_t>(k)];
    if (crosses_ray(*last, next, p)) inside = !inside;
    const Offset offset = offset_from(*last, next, p);
    if (offset.distance_sq < nearest.distance_sq) nearest = offset;
    last = &next;
  }
  return inside || nearest.height * nearest.height > slope * slope * nearest.distance_sq;
}

// A strip along a curve has its best-fit plane through the curve, and the hole is seen from the edge. Then the plane is chosen across
// the boundary's vector area, from where the hole looks widest.
void face_the_hole(FitSamples& samples) {
  giVector3 area;
  giVector3 last(samples.points.back().u, samples.points.back().v, samples.points.back().z);
  for (int k = samples.boundary_start; k < samples.count(); ++k) {
    const FitSample& p = samples.points[static_cast<std::size_t>(k)];
    const giVector3 next(p.u, p.v, p.z);
    area += last.cross(next);
    last = next;
  }
  const double size = area.length();
  if (size <= line_width || std::fabs(area.z()) >= least_facing * size) return;
  const giWorkplane3 turned{giPoint3(), giUnitVec3(gi_x_axis), giUnitVec3(area)};
  for (FitSample& p : samples.points) {
    const giVector3 q = turned.to_work(giVector3(p.u, p.v, p.z));
    p = {q.x(), q.y(), q.z()};
  }
  const giWorkplane3& plane = samples.plane;
  samples.plane = giWorkplane3(plane.origin(), giUnitVec3(plane.to_world(turned.x_axis().vector())),
                               giUnitVec3(plane.to_world(turned.z_axis().vector())));
}

}  // namespace

FitSamples make_fit_samples(const giPoint3coPageArr& ring, const giPoint3coPageArr& boundary) {
  FitSamples samples;
  std::vector<giVector3> points;
  points.reserve(static_cast<std::size_t>(ring.count()) + static_cast<std::size_t>(boundary.count()));
  const giPoint3 origin = boundary.count() > 0 ? boundary.at(0) : (ring.count() > 0 ? ring.at(0) : giPoint3());
  for (int k = 0; k < ring.count(); ++k) points.push_back(ring.at(k) - origin);
  for (int k = 0; k < boundary.count(); ++k) points.push_back(boundary.at(k) - origin);
  samples.boundary_start = boundary.count() > 0 ? ring.count() : 0;

  draw_ring_near(points, static_cast<std::size_t>(samples.boundary_start));
  giVector3 mean;
  samples.scale = normalise(points, mean);
  if (samples.scale < 0.0) samples.state = FitSamples::State::not_finite;
  if (samples.scale <= 0.0) return samples;

  Eigen::Vector3d extents_sq;
  const Eigen::Matrix3d axes = principal_axes(points, extents_sq);
  if (!(extents_sq[1] > line_width * line_width * extents_sq[0])) return samples;
  const giUnitVec3 x = column(axes, 0);
  const giUnitVec3 z = column(axes, 2);
  samples.plane = giWorkplane3(origin + mean, x, z);
  for (const giVector3& p : points) samples.points.push_back({x.dot(p), samples.plane.y_axis().dot(p), z.dot(p)});
  face_the_hole(samples);
  if (has_enough_places(samples.points)) samples.state = FitSamples::State::ready;
  return samples;
}

// A. M. Andrew, "Another efficient algorithm for convex hulls in two dimensions", 1979.
std::vector<FitSample> convex_hull(std::vector<FitSample> points) {
  std::sort(points.begin(), points.end(),
            [](const FitSample& a, const FitSample& b) { return a.u < b.u || (a.u == b.u && a.v < b.v); });
  std::vector<FitSample> hull;
  const auto append = [&hull](const FitSample& p, std::size_t kept) {
    while (hull.size() >= kept + 2 && turn(hull[hull.size() - 2], hull.back(), p.u, p.v) <= 0.0) hull.pop_back();
    hull.push_back(p);
  };
  for (const FitSample& p : points) append(p, 0);
  const std::size_t lower = hull.size() - 1;
  for (std::size_t k = points.size() - 1; k-- > 0;) append(points[k], lower);
  hull.pop_back();
  return hull;
}

HullRow hull_row(const std::vector<FitSample>& hull, double v) {
  HullRow row{DBL_MAX, -DBL_MAX};
  const FitSample* last = &hull.back();
  for (const FitSample& next : hull) {
    if ((last->v > v) != (next.v > v)) {
      const double u = last->u + (next.u - last->u) * ((v - last->v) / (next.v - last->v));
      row.low = std::min(row.low, u);
      row.high = std::max(row.high, u);
    }
    last = &next;
  }
  return row;
}

bool turns_away(const FitSamples& samples, double slope) {
  const int ring = samples.boundary_start;
  if (samples.count() - ring < 3) return false;
  const int probes = std::min(ring, most_probes);
  int steep = 0;
  for (int k = 0; k < probes; ++k) {
    const auto index = static_cast<std::size_t>(static_cast<long long>(ring) * k / probes);
    if (stands_steep(samples, samples.points[index], slope)) ++steep;
  }
  return 4 * steep > probes;
}
