// Closing cycles by triangles in the planes fitted to them.

#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "boundaries/plane_fit_cycle.h"
#include "boundaries/tri_plane.h"
#include "mesh/measures.h"
#include "mesh/memory_guard.h"
#include "platform/geometry/length.h"
#include "progress/message.h"
#include "progress/progress.h"
#include "progress/progress_share.h"

namespace {

constexpr double degenerate_cross = 1e-9;

struct Corner {
  giPoint3 before, at, after;
};

// The corner farthest from a point: there the cycle turns the way it runs as a whole. The first of equals. False when
// interrupted.
bool find_farthest_corner(const trCycle& cycle, const giPoint3& from, Corner& corner) {
  giLength farthest;
  giPoint3 last;
  bool lacks_before = false;
  int steps = 0;
  trCycleIT it(&cycle);
  while (++it) {
    if (tr_interrupt()) return false;
    const giPoint3 p = cycle.position(it.s_node());
    const giLength distance = giLength::from_squared(from.distance_sq(p));
    if (distance > farthest) {
      farthest = distance;
      corner = {last, p, cycle.position(it.e_node())};
      lacks_before = steps == 0;
    }
    last = p;
    ++steps;
  }
  if (lacks_before) corner.before = last;
  return true;
}

// The cap runs against the cycle: seen against the wanted normal, the cycle turns clockwise.
void turn_against_cycle(const Corner& corner, const giPoint3& origin, giVector3& normal) {
  giVector3 turn;
  if (!tr_compute_normal(corner.before, corner.at, corner.after, degenerate_cross, turn) &&
      !tr_compute_normal(origin, corner.at, corner.after, degenerate_cross, turn)) {
    return print_message("Warning! Failed to check orientation of capping plane.");
  }
  if (turn.dot(normal) > 0.0) normal = -normal;
}

at2PlaneError cap_in_plane(const trCycle& cycle, const giPoint3& origin, giVector3 normal, double spacing) {
  Corner corner;
  if (!find_farthest_corner(cycle, origin, corner)) return at2_interrupted;
  turn_against_cycle(corner, origin, normal);
  trTriPlane plane(cycle.block, spacing, origin, normal);
  trCycleIT it(&cycle);
  while (++it) {
    if (tr_interrupt()) return at2_interrupted;
    trPair& edge = plane.pairs[plane.pairs.count()];
    edge.first = it.e_node();
    edge.second = it.s_node();
  }
  return plane.go();
}

// A cycle may have been found long ago: what it names must be there.
bool has_valid_nodes(const trCycle& cycle) {
  const trTriBlock& block = *cycle.block;
  trCycleIT it(&cycle);
  while (++it) {
    const int n = it.s_node();
    if (n < 1 || n >= block.node_count() || block.node(n).invalid) return false;
  }
  return true;
}

// Whatever surface is fitted while it lives is gone afterwards.
class SurfaceInUse {
 public:
  explicit SurfaceInUse(trTriBlock& block) : block_(block) {}
  SurfaceInUse(const SurfaceInUse&) = delete;
  SurfaceInUse& operator=(const SurfaceInUse&) = delete;
  ~SurfaceInUse() { block_.disable_curvature_adjust(1); }

 private:
  trTriBlock& block_;
};

// Sub-range nodes were made on a straight line.
bool adjust_subrange(const trCycle& cycle, const giVector3& normal) {
  for (int i = 0; i < cycle.subrange_nodes.count(); ++i) {
    if (cycle.block->apply_curvature_adjust_on_node(cycle.subrange_nodes[i], normal) != 0) return false;
  }
  return true;
}

}  // namespace

int trCycleArray::cap_holes(double spacing, double, at2PlaneError& error, const int& curvature) {
  if (!coMemoryScope::is_open()) return tr_guarded(block, 0, [&] { return cap_holes(spacing, 0.0, error, curvature); });
  error = at2_success;
  detect();
  int tried = 0;
  intcoSet::coIterator it(selection);
  while (++it) {
    if (tr_interrupt()) {
      selection.clear();
      return 0;
    }
    cap_hole(tried++, it(), spacing, curvature, error);
  }
  if (block != nullptr) block->mark_changed();
  edge_count = -1;
  selection.clear();
  return tried > 0;
}

int trCycleArray::cap_hole(int progress_index, int id, double spacing, int curvature, at2PlaneError& error) {
  const auto again = [&] { return cap_hole(progress_index, id, spacing, curvature, error); };
  if (!coMemoryScope::is_open()) return tr_guarded(block, 0, again);
  const bool is_live =
      block != nullptr && reset_ == resets_ && id >= 0 && id < cycles.count() && cycles.at(id).start >= 0;
  if (!is_live || !has_valid_nodes(cycles.at(id))) return 0;
  if (!(spacing > 0.0)) {
    error = at2_bad_length;
    return 0;
  }
  trCycle& cycle = cycles.at(id);
  const ProgressShare progress;
  const SurfaceInUse surface(*block);
  double low = 0.0, high = 0.0;
  cap_hole_progress_init(progress_index, low, high);
  giPoint3 origin;
  giVector3 normal;
  int ends[4];
  int ok = cycle_fit_plane(cycle, origin, normal);
  cycle.enable_holefilling(1, ends[0], ends[1], ends[2], ends[3]);
  if (ok && create_hole_subdivision_nodes(cycle, ends, spacing, normal)) ok = cycle_fit_plane(cycle, origin, normal);
  if (ok && curvature) ok = enable_curvature_adjust(cycle, low, high);
  if (ok) ok = adjust_subrange(cycle, normal);
  if (ok) ok = cap_cycle(id, origin, normal, spacing, error);

  cycle.enable_holefilling(0);
  cycle.subrange_nodes.clear();
  if (ok) cycle.start = -1;
  return ok;
}

int trCycleArray::cycle_fit_plane(const trCycle& cycle, giPoint3& origin, giVector3& normal) {
  const int failure = trPlaneFitCycle(block, &cycle).fit(origin, normal);
  return failure == 0;
}

int trCycleArray::cap_cycle(int id, const giPoint3& origin, const giVector3& normal, double spacing,
                            at2PlaneError& error) {
  error = cap_in_plane(cycles.at(id), origin, normal, spacing);
  return error == at2_success;
}
