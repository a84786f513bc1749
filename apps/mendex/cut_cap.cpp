#include "cut_cap.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "holes.h"

namespace {

// A cut point is off the plane by the rounding of its interpolation, or by the tolerance of slicing.
double slack_of(const trTriBlock& mesh, const CutPlane& plane) {
  const giBox3& box = mesh.box();
  if (box.is_empty()) return 0.0;
  return 1e-10 + 16 * DBL_EPSILON * std::max({std::fabs(plane.at), std::fabs(box.min()[plane.axis]), std::fabs(box.max()[plane.axis])});
}

// Which nodes lie in the plane.
class NodesInPlane {
 public:
  NodesInPlane(const trTriBlock& mesh, const CutPlane& plane) : mesh_(mesh), plane_(plane), slack_(slack_of(mesh, plane)) {}
  bool operator()(int node) const { return std::fabs(mesh_.point(node)[plane_.axis] - plane_.at) <= slack_; }

 private:
  const trTriBlock& mesh_;
  const CutPlane& plane_;
  double slack_;
};

int open_edges_in(trControl& control, const CutPlane& plane) {
  const NodesInPlane is_in_plane(control.triblock(), plane);
  int count = 0;
  for (const FoundBoundary& boundary : find_boundaries(control.cycles())) {
    for (std::size_t k = 0; k < boundary.nodes.size(); ++k) {
      count += is_in_plane(boundary.nodes[k]) && is_in_plane(boundary.nodes[(k + 1) % boundary.nodes.size()]);
    }
  }
  return count;
}

std::vector<FoundBoundary> loops_in(trControl& control, const CutPlane& plane) {
  const NodesInPlane is_in_plane(control.triblock(), plane);
  std::vector<FoundBoundary> loops = find_boundaries(control.cycles());
  const auto is_elsewhere = [&](const FoundBoundary& boundary) {
    return !std::all_of(boundary.nodes.begin(), boundary.nodes.end(), is_in_plane);
  };
  loops.erase(std::remove_if(loops.begin(), loops.end(), is_elsewhere), loops.end());
  return loops;
}

// The new triangles run along each edge in the other direction. A spacing as large as all of it asks for no nodes inside.
at2PlaneError triangulate(trTriBlock& mesh, const std::vector<FoundBoundary>& loops, const giVector3& normal) {
  const double size = (mesh.box().max() - mesh.box().min()).length();
  trTriPlane area(&mesh, 2 * size, mesh.point(loops.front().nodes.front()), normal);
  for (const FoundBoundary& loop : loops) {
    for (std::size_t k = 0; k < loop.nodes.size(); ++k) {
      area.pairs[area.pairs.count()] = trPair{loop.nodes[(k + 1) % loop.nodes.size()], loop.nodes[k]};
    }
  }
  return area.go();
}

}  // namespace

CutCap cap_cut(trControl& control, const CutPlane& plane) {
  trTriBlock& mesh = control.triblock();
  const std::vector<FoundBoundary> loops = loops_in(control, plane);
  CutCap cap;
  cap.loops = static_cast<int>(loops.size());
  if (tr_interrupt()) return cap;
  if (!loops.empty()) {
    double outward[3] = {0.0, 0.0, 0.0};
    outward[plane.axis] = plane.keeps_above ? -1.0 : 1.0;
    const giVector3 normal(outward[0], outward[1], outward[2]);
    const int elements = mesh.element_count();
    cap.error = triangulate(mesh, loops, normal);
    if (cap.error == at2_wrong_direction) cap.error = triangulate(mesh, loops, normal * -1.0);  // the mesh faces inward
    cap.triangles = mesh.element_count() - elements;
    mesh.force_changed_status(1);
  }
  cap.open_edges = open_edges_in(control, plane);
  return cap;
}
