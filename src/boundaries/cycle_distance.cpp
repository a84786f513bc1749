// The gap between a boundary node and a boundary edge.
//
// The rule walks, for every node, all edges in their order, and compares those whose box, grown by the least distance
// so far, holds the node of that distance. Between two improvements these are always the same edges: a tree finds them
// once, and every node in between looks at them alone.

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <vector>

#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "mesh/memory_guard.h"
#include "platform/spatial/box_tree.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

constexpr double containment_tol = 1e-5;
constexpr double shortest_edge = 1e-6;  // shorter ones are met at their middle
constexpr double end_zone = 1e-6;       // of an edge's parameter
// A coordinate that differs by more has no distance: its square overflows.
constexpr double farthest = 1.4e154;
// Bounds of what rounding can do, relative to the numbers involved; generous, since they only decide what is looked at
// closely.
constexpr double rounding = 1e-12;

bool is_finite(const giPoint3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

giPoint3 nearest_on_edge(const giPoint3& n, const giPoint3& a, const giPoint3& b) {
  const giVector3 edge = b - a;
  double t = 0.5;
  if (!(edge.length() < shortest_edge)) {
    t = (n - a).dot(edge) / edge.length_sq();
    if (t < end_zone) t = 0.0;
    if (t > 1.0 - end_zone) t = 1.0;
  }
  return gi_interpolate(a, b, t);
}

struct Edge {
  int start, end;
};

// What lies within reach of a point, with room for rounding: no exact test is true outside.
giBox3 surroundings(const giPoint3& p, double reach) {
  giBox3 box(p, p);
  double size = reach;
  for (int k = 0; k < 3; ++k) size = std::max(size, std::fabs(p[k]));
  box.grow(reach + containment_tol + rounding * size);
  return box;
}

// The free edges of all live cycles, in the order of the cycles and along them.
std::vector<Edge> edges_of(const trTriBlock& block, const trCyclecoPageArr& cycles) {
  std::vector<Edge> edges;
  const auto known = [&block](int node) { return node > 0 && node < block.node_count(); };
  for (int i = 0; i < cycles.count(); ++i) {
    trCycleIT it(&cycles.at(i));
    while (++it) {
      const Edge edge{it.s_node(), it.e_node()};
      if (known(edge.start) && known(edge.end)) edges.push_back(edge);
    }
  }
  return edges;
}

// Edges without a finite place are near to nothing: their boxes are empty.
std::vector<giBox3> boxes_of(const trTriBlock& block, const std::vector<Edge>& edges) {
  std::vector<giBox3> boxes(edges.size());
  for (std::size_t e = 0; e < edges.size(); ++e) {
    const giPoint3& a = block.point(edges[e].start);
    const giPoint3& b = block.point(edges[e].end);
    if (!is_finite(a) || !is_finite(b)) continue;
    boxes[e].merge(a);
    boxes[e].merge(b);
  }
  return boxes;
}

class GapMeter {
 public:
  GapMeter(const trTriBlock& block, const trCyclecoPageArr& cycles)
      : block_(block), edges_(edges_of(block, cycles)), tree_(boxes_of(block, edges_)) {}

  /// Whether the rule admits what lies in the box.
  bool admits(giBox3 box) const {
    if (!found()) return true;
    box.grow(best_);
    return box.contains(from_, containment_tol);
  }

  void measure_node(int node, const giPoint3& p) {
    if (!is_finite(p) || (found() && beyond_reach(p))) return;
    if (!found()) gather(p, farthest);
    bool improved = false;
    for (std::size_t k = 0; k < candidates_.size();) {
      const int e = candidates_[k++];
      if (!improve(e, node, p) || improved) continue;  // a further improvement admits nothing more
      improved = true;
      gather(p, best_);
      k = static_cast<std::size_t>(std::upper_bound(candidates_.begin(), candidates_.end(), e) - candidates_.begin());
    }
    if (improved) gather(p, best_);
  }

  bool found() const { return best_ < DBL_MAX; }
  double best() const { return best_; }
  const giPoint3& from() const { return from_; }
  const giPoint3& to() const { return to_; }

 private:
  bool improve(int e, int node, const giPoint3& p) {
    const Edge& edge = edges_[static_cast<std::size_t>(e)];
    if (edge.start == node || edge.end == node || !admits(tree_.box(e))) return false;
    const giPoint3 q = nearest_on_edge(p, block_.point(edge.start), block_.point(edge.end));
    const double distance = p.distance(q);
    if (!(distance < best_)) return false;
    best_ = distance;
    from_ = p;
    to_ = q;
    return true;
  }

  // Makes all edges near p the candidates.
  void gather(const giPoint3& p, double reach) {
    candidates_.clear();
    reach_box_.reset();
    tree_.visit_crossing(surroundings(p, reach), [this](int e) {
      candidates_.push_back(e);
      reach_box_.merge(tree_.box(e));
    });
    std::sort(candidates_.begin(), candidates_.end());
  }

  // Whether p is surely farther from every candidate than the least distance.
  bool beyond_reach(const giPoint3& p) const {
    if (reach_box_.is_empty()) return true;
    double gap_sq = 0.0;
    double size = 0.0;
    for (int k = 0; k < 3; ++k) {
      const double gap = std::max({reach_box_.min()[k] - p[k], p[k] - reach_box_.max()[k], 0.0});
      gap_sq += gap * gap;
      size = std::max({size, std::fabs(p[k]), std::fabs(reach_box_.min()[k]), std::fabs(reach_box_.max()[k])});
    }
    const double limit = best_ + rounding * std::max(size, best_);
    return gap_sq > limit * limit;
  }

  const trTriBlock& block_;
  std::vector<Edge> edges_;
  BoxTree tree_;
  std::vector<int> candidates_;  // in the order of the edges; every edge that the rule can admit is among them
  giBox3 reach_box_;             // holds the candidates
  double best_ = DBL_MAX;
  giPoint3 from_;
  giPoint3 to_;
};

}  // namespace

giLength trCycleArray::measure_distance(giPoint3& from, giPoint3& to) {
  if (!coMemoryScope::is_open()) return tr_guarded(block, giLength(), [&] { return measure_distance(from, to); });
  detect();
  from = to = giPoint3(-DBL_MAX, 0.0, 0.0);
  if (block == nullptr || cycles.count() == 0) return giLength();
  GapMeter meter(*block, cycles);
  const int count = cycles.count();
  for (int i = 0; i < count; ++i) {
    const trCycle& cycle = cycles.at(i);
    if (cycle.start == -1) continue;
    tr_report_progress(tr_brnknls("%3d boundaries:  %3d"), count, i,
                       static_cast<double>(std::int64_t{100} * i / count));
    if (!meter.admits(cycle.box())) continue;
    trCycleIT it(&cycle);
    while (++it) meter.measure_node(it.s_node(), cycle.position(it.s_node()));
  }
  if (!meter.found()) return giLength();
  from = meter.from();
  to = meter.to();
  return giLength::from_length(meter.best());
}
