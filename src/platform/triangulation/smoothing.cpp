#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/triangulation/exact_predicates.h"
#include "platform/triangulation/interior_nodes.h"

namespace {

constexpr int rounds = 6;
constexpr double good_enough = 0.5868;  // squared sine of 50 degrees: nothing to be gained by moving a node
constexpr double worth_while = 1.001;   // the least gain that counts, as a factor

// The squared sine of the sharpest angle of a triangle; 0 when it does not turn counter-clockwise.
double shape(const giPoint2& a, const giPoint2& b, const giPoint2& c) {
  const double doubled_area = orientation(a, b, c);
  if (doubled_area <= 0.0) return 0.0;
  double sides[3];
  const giPoint2* corner[4] = {&a, &b, &c, &a};
  for (int k = 0; k < 3; ++k) {
    const double dx = corner[k + 1]->x - corner[k]->x, dy = corner[k + 1]->y - corner[k]->y;
    sides[k] = dx * dx + dy * dy;
  }
  const double shortest = std::min({sides[0], sides[1], sides[2]});
  // Opposite the shortest side; scaled first, as areas of small triangles must not be squared.
  const double product = (sides[0] / shortest) * (sides[1] / shortest) * (sides[2] / shortest);
  const double scaled_area = doubled_area / shortest;
  return scaled_area * scaled_area / product;
}

class Smoother {
 public:
  Smoother(PlanarMesh& mesh, const SpacingField& field, int first)
      : mesh_(mesh), field_(field), first_(first), active_(static_cast<std::size_t>(mesh.node_count()), 1) {}

  bool run(WorkMeter& meter) {
    for (int round = 0; round < rounds; ++round) {
      for (int node = first_; node < mesh_.node_count(); ++node) {
        if (!meter.step()) return false;
        char& active = active_[static_cast<std::size_t>(node)];
        if (active == 0) continue;
        active = 0;
        improve(node);
      }
    }
    return true;
  }

 private:
  void improve(int node) {
    collect_ring(node);
    const giPoint2 old = mesh_.point(node);
    const double old_shape = worst_shape(old, good_enough);
    if (old_shape >= good_enough) return;
    giPoint2 middle;
    for (const int neighbour : ring_) {
      middle.x += mesh_.point(neighbour).x / static_cast<double>(ring_.size());
      middle.y += mesh_.point(neighbour).y / static_cast<double>(ring_.size());
    }
    for (const double step : {1.0, 0.5, 0.2}) {
      const giPoint2 p = snapped(giPoint2(old.x + step * (middle.x - old.x), old.y + step * (middle.y - old.y)));
      if (worst_shape(p, good_enough) <= worth_while * old_shape || !keeps_distance(old, p)) continue;
      mesh_.move(node, p);
      mesh_.restore_around(node);
      active_[static_cast<std::size_t>(node)] = 1;
      for (const int neighbour : ring_) active_[static_cast<std::size_t>(neighbour)] = 1;
      return;
    }
  }

  // From the boundary always, from neighbours unless they are as near already.
  bool keeps_distance(const giPoint2& old, const giPoint2& p) const {
    const double least = 0.5 * field_.at(p);
    if (!field_.is_clear(p, least)) return false;
    return nearest_neighbour_sq(p) >= std::min(least * least, nearest_neighbour_sq(old));
  }

  double nearest_neighbour_sq(const giPoint2& p) const {
    double nearest_sq = HUGE_VAL;
    for (const int neighbour : ring_) {
      const double dx = mesh_.point(neighbour).x - p.x, dy = mesh_.point(neighbour).y - p.y;
      nearest_sq = std::min(nearest_sq, dx * dx + dy * dy);
    }
    return nearest_sq;
  }

  void collect_ring(int node) {
    ring_.clear();
    const int first = mesh_.leaving(node);
    int half = first;
    do {
      ring_.push_back(mesh_.end(half));
      half = mesh_.next_leaving(half);
    } while (half != first);
  }

  // Of the triangles around the node if it were at p; at most `limit`.
  double worst_shape(const giPoint2& p, double limit) const {
    double worst = limit;
    for (std::size_t i = 0; i < ring_.size(); ++i) {
      const int following = ring_[i + 1 < ring_.size() ? i + 1 : 0];
      worst = std::min(worst, shape(p, mesh_.point(ring_[i]), mesh_.point(following)));
    }
    return worst;
  }

  PlanarMesh& mesh_;
  const SpacingField& field_;
  int first_;
  std::vector<char> active_;  // by node: it or a neighbour has moved since it was last looked at
  std::vector<int> ring_;     // neighbours, counter-clockwise
};

}  // namespace

bool smooth_nodes(PlanarMesh& mesh, const SpacingField& field, int first, WorkMeter& meter) {
  return Smoother(mesh, field, first).run(meter);
}
