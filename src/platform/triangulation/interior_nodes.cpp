#include "platform/triangulation/interior_nodes.h"

#include <cmath>
#include <utility>

#include "platform/triangulation/exact_predicates.h"
#include "platform/triangulation/insertion_order.h"

namespace {

constexpr double grid_clearance = 0.9;  // of the local spacing; leaves room for one row of well-shaped triangles
// Of the local spacing: the largest radius of a triangle. With edges not shorter than it, no angle is below 30 degrees;
// triangles that are equilateral at the local spacing have 0.58, squares cut in two 0.71.
constexpr double largest_radius = 0.75;
constexpr double centre_clearance = 0.55;  // of the local spacing; half of it is promised, and smoothing needs some

struct Circle {
  giPoint2 centre;
  double radius_sq;  // infinite or not a number for triangles without area
};

Circle circle_of(const PlanarMesh& mesh, int triangle) {
  const giPoint2& a = mesh.point(mesh.start(3 * triangle));
  const giPoint2& b = mesh.point(mesh.start(3 * triangle + 1));
  const giPoint2& c = mesh.point(mesh.start(3 * triangle + 2));
  const double ux = b.x - a.x, uy = b.y - a.y, vx = c.x - a.x, vy = c.y - a.y;
  const double u_sq = ux * ux + uy * uy, v_sq = vx * vx + vy * vy;
  const double scale = 0.5 / (ux * vy - uy * vx);
  const double x = (vy * u_sq - uy * v_sq) * scale, y = (ux * v_sq - vx * u_sq) * scale;
  return {snapped(giPoint2(a.x + x, a.y + y)), x * x + y * y};
}

// The triangles still to be looked at, each once, in rounds: those found in a round wait for the next.
class TriangleQueue {
 public:
  explicit TriangleQueue(const PlanarMesh& mesh) {
    for (int t = 0; t < mesh.triangle_count(); ++t) add(t);
  }
  void add(int triangle) {
    const auto index = static_cast<std::size_t>(triangle);
    if (index >= waiting_.size()) waiting_.resize(index + 1, 0);
    if (waiting_[index] != 0) return;
    waiting_[index] = 1;
    found_.push_back(triangle);
  }
  bool take(int& triangle) {
    if (position_ == round_.size()) {
      round_.clear();
      std::swap(round_, found_);
      position_ = 0;
      if (round_.empty()) return false;
    }
    triangle = round_[position_++];
    waiting_[static_cast<std::size_t>(triangle)] = 0;
    return true;
  }

 private:
  std::vector<char> waiting_;
  std::vector<int> round_, found_;
  std::size_t position_ = 0;
};

class Refiner {
 public:
  Refiner(PlanarMesh& mesh, const SpacingField& field) : mesh_(mesh), field_(field), queue_(mesh) {}

  at2PlaneError run(WorkMeter& meter) {
    const int first_count = mesh_.node_count();
    for (int t; queue_.take(t);) {
      if (!meter.step()) return at2_interrupted;
      if (mesh_.region(t) != PlanarMesh::Region::inside || !split(t)) continue;
      if (mesh_.node_count() - first_count > max_interior_nodes) return at2_too_many_nodes;
    }
    return at2_success;
  }

 private:
  bool split(int t) {
    const Circle circle = circle_of(mesh_, t);
    const double least_radius = largest_radius * field_.least();
    if (!(circle.radius_sq > least_radius * least_radius && circle.radius_sq < 64.0)) return false;
    const double spacing = field_.at(circle.centre);
    const double radius = largest_radius * spacing;
    if (circle.radius_sq <= radius * radius) return false;
    const PlanarMesh::Place place = mesh_.locate_straight(circle.centre, t);
    if (place.kind != PlanarMesh::PlaceKind::in_triangle && place.kind != PlanarMesh::PlaceKind::on_edge) return false;
    if (place.kind == PlanarMesh::PlaceKind::on_edge && mesh_.is_fixed(place.half)) return false;
    if (!field_.is_clear(circle.centre, centre_clearance * spacing) || !keeps_apart(circle.centre, place, radius))
      return false;
    add_star(mesh_.insert(circle.centre, place));
    return true;
  }

  // Guards against centres that rounding has displaced: those of very flat triangles.
  bool keeps_apart(const giPoint2& p, const PlanarMesh::Place& place, double distance) const {
    for (const int half : {place.half, PlanarMesh::next(place.half), PlanarMesh::previous(place.half)}) {
      const giPoint2& q = mesh_.point(mesh_.start(half));
      if (std::hypot(p.x - q.x, p.y - q.y) < 0.9 * distance) return false;
    }
    return true;
  }

  void add_star(int node) {
    const int first = mesh_.leaving(node);
    int half = first;
    do {
      queue_.add(PlanarMesh::triangle(half));
      half = mesh_.next_leaving(half);
    } while (half != first);
  }

  PlanarMesh& mesh_;
  const SpacingField& field_;
  TriangleQueue queue_;
};

}  // namespace

bool insert_grid_points(PlanarMesh& mesh, const SpacingField& field, const std::vector<giPoint2>& points,
                        WorkMeter& meter) {
  std::vector<giPoint2> chosen;
  chosen.reserve(points.size());
  for (const giPoint2& p : points) {
    if (!meter.step()) return false;
    if (field.at(p) == field.spacing() && field.is_clear(p, grid_clearance * field.spacing()))
      chosen.push_back(snapped(p));
  }
  mesh.reserve(mesh.node_count() + static_cast<int>(chosen.size() + chosen.size() / 4));
  int near = 0;
  for (const int i : insertion_order(chosen).order) {
    if (!meter.step()) return false;
    const giPoint2& p = chosen[static_cast<std::size_t>(i)];
    const PlanarMesh::Place place = mesh.locate(p, near);
    if (place.kind == PlanarMesh::PlaceKind::outside || place.kind == PlanarMesh::PlaceKind::on_node) continue;
    if (place.kind == PlanarMesh::PlaceKind::on_edge && mesh.is_fixed(place.half)) continue;
    near = PlanarMesh::triangle(place.half);
    if (mesh.region(near) == PlanarMesh::Region::inside) mesh.insert(p, place);
  }
  return true;
}

at2PlaneError refine_triangles(PlanarMesh& mesh, const SpacingField& field, WorkMeter& meter) {
  return Refiner(mesh, field).run(meter);
}
