// New nodes on a surface that is fitted to the mesh round a hole.

#include "mesh/tri_block.h"
#include "mesh/memory_guard.h"
#include "platform/surface/gcm_surf_fitter.h"
#include "progress/output.h"
#include "progress/progress.h"
#include "progress/progress_share.h"

namespace {

constexpr int adjustment_off = -1;
constexpr int no_surface = -2;
constexpr double ring_share = 0.3;  // of the progress: collecting the nodes round the boundary

// Tells how far the fit is, and gives up when the host asks for it.
class ReportingFitter : public gcmSurfFitter {
 protected:
  int progress_feedback(int percent) override {
    tr_report_progress(tr_brnknls("Filling Holes - Calculating Curvature..."), percent * 1.0);
    return tr_interrupt();
  }
};

void list_positions(const trTriBlock& block, const intcoPageArr& nodes, giPoint3coPageArr& positions) {
  for (int k = 0; k < nodes.count(); ++k) {
    const int n = nodes[k];
    positions[k] = n > 0 && n < block.node_count() ? block.point(n) : giPoint3();
  }
}

}  // namespace

int trTriBlock::enable_curvature_adjust(const intcoPageArr* boundary_nodes, int option) const {
  const auto again = [&] { return enable_curvature_adjust(boundary_nodes, option); };
  if (!coMemoryScope::is_open()) return tr_guarded(this, no_surface, again);
  if (boundary_nodes == nullptr) {
    self()->curvature_adjust = 1;
    return 0;
  }
  const ProgressShare progress;
  intcoPageArr ring_nodes;
  progress.set(0.0, ring_share);
  const int stopped = get_surrounding_nodes(*boundary_nodes, ring_nodes);
  if (stopped != 0) return stopped;
  giPoint3coPageArr ring;
  giPoint3coPageArr boundary;
  list_positions(*this, ring_nodes, ring);
  list_positions(*this, *boundary_nodes, boundary);
  progress.set(ring_share, 1.0);
  if (self()->create_gcm_surface(ring, boundary, option) != 0) return no_surface;
  self()->curvature_adjust = 1;
  return 0;
}

int trTriBlock::create_gcm_surface(const giPoint3coPageArr& ring, const giPoint3coPageArr& boundary, int) {
  return ReportingFitter().fit(ring, boundary, surface);
}

void trTriBlock::disable_curvature_adjust(const int& free) {
  if (free) free_surface();
  curvature_adjust = 0;
}

int trTriBlock::apply_curvature_adjust_on_coords(const giPoint3& p, const giVector3& direction, giPoint3& q) const {
  q = p;
  if (!curvature_adjust || surface == nullptr) return adjustment_off;
  if (direction.x() == tr_no_direction().x()) return surface->closest_point(p, q);
  return surface->project(p, direction, q);
}

int trTriBlock::apply_curvature_adjust_on_node(int i, const giVector3& direction) const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, -2, [&] { return apply_curvature_adjust_on_node(i, direction); });
  if (!curvature_adjust) return 0;
  if (!has_node(i)) return -1;
  giPoint3 place;
  if (apply_curvature_adjust_on_coords(point(i), direction, place) != 0) return -2;
  if (node(i).invalid) return -3;
  self()->set_node(i, place);
  return 0;
}
