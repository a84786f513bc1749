// What a host finds under its cursor: the boundary node or edge point nearest to a line.

#include <cmath>

#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"

namespace {

// A point seen along the pick line.
struct Sight {
  double distance = 0.0;  // from the line
  double depth = 0.0;     // along it
};

class PickLine {
 public:
  PickLine(const giPoint3& point, const giUnitVec3& direction) : point_(point), direction_(direction.vector()) {}

  Sight sight(const giPoint3& q) const {
    const double depth = (q - point_).dot(direction_);
    return {q.distance(point_ + direction_ * depth), depth};
  }

  // The point of the segment nearest to the line: both are projected along the line, where the line is a point. Of a
  // segment that lies along the line, the end that comes first.
  giPoint3 nearest_on_segment(const giPoint3& a, const giPoint3& b) const {
    const giVector3 to_a = across(a - point_);
    const giVector3 edge = across(b - a);
    const double length_sq = edge.length_sq();
    if (!(length_sq > parallel_sq * (b - a).length_sq())) return sight(b).depth < sight(a).depth ? b : a;
    const double t = -to_a.dot(edge) / length_sq;
    if (t <= 0.0) return a;
    return t >= 1.0 ? b : gi_interpolate(a, b, t);
  }

  bool crosses(giBox3 box, double reach) const {
    box.grow(reach);
    return box.crosses_line(point_, direction_);
  }

 private:
  static constexpr double parallel_sq = 1e-24;  // of an angle of 1e-12, below which the projection is noise
  giVector3 across(const giVector3& v) const { return v - direction_ * v.dot(direction_); }

  giPoint3 point_;
  giVector3 direction_;
};

// The best candidate so far. Of those equally near within the tolerance the one that lies first along the line wins.
class BestPick {
 public:
  BestPick(const PickLine& line, double tol) : line_(line), tol_(tol) {}

  bool may_hold_better(const giBox3& box) const { return !found_ || line_.crosses(box, best_.distance + tol_); }

  // Whether the point is better than the best, which it then becomes.
  bool offer(const giPoint3& q) {
    const Sight seen = line_.sight(q);
    if (std::isnan(seen.distance) || (found_ && !is_better(seen))) return false;
    best_ = seen;
    found_ = true;
    return true;
  }

 private:
  bool is_better(const Sight& seen) const {
    const giLength best = giLength::from_length(best_.distance);
    if (giLength::from_length(seen.distance).same(best, tol_)) return seen.depth < best_.depth;
    return seen.distance < best_.distance;
  }

  const PickLine& line_;
  double tol_;
  Sight best_;
  bool found_ = false;
};

}  // namespace

int trCycleArray::closest_node(const giPoint3& point, const giUnitVec3& direction, double tol) const {
  detect();
  const PickLine line(point, direction);
  BestPick best(line, tol);
  int node = -1;
  for (int i = 0; i < cycles.count(); ++i) {
    const trCycle& cycle = cycles.at(i);
    if (cycle.start == -1 || !best.may_hold_better(cycle.box())) continue;
    trCycleIT it(&cycle);
    while (++it) {
      if (best.offer(cycle.position(it.s_node()))) node = it.s_node();
    }
  }
  return node;
}

giPoint3 trCycleArray::closest_edge_point(const giPoint3& point, const giUnitVec3& direction, double tol) {
  detect();
  const PickLine line(point, direction);
  BestPick best(line, tol);
  giPoint3 nearest;
  for (int i = 0; i < cycles.count(); ++i) {
    const trCycle& cycle = cycles.at(i);
    if (cycle.start == -1 || !best.may_hold_better(cycle.box())) continue;
    trCycleIT it(&cycle);
    while (++it) {
      const giPoint3 a = cycle.position(it.s_node());
      const giPoint3 b = cycle.position(it.e_node());
      giBox3 box(a, a);
      box.merge(b);
      if (!best.may_hold_better(box)) continue;
      const giPoint3 q = line.nearest_on_segment(a, b);
      if (best.offer(q)) nearest = q;
    }
  }
  return nearest;
}
