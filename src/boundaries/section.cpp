#include "boundaries/section.h"

#include <cfloat>
#include <cmath>

#include "mesh/memory_guard.h"
#include "platform/spatial/point_index.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

constexpr double tolerance = 1e-5;

double crossing(double a, double c, double value) {
  if (std::fabs(c - a) < tolerance) return 0.5;
  const double t = (value - a) / (c - a);
  return t < 0.0 ? 0.0 : (t > 1.0 ? 1.0 : t);
}

// The corner that lies alone on its side of the plane.
int lone_corner(const bool (&below)[3]) {
  if (below[0] == below[1]) return 2;
  return below[0] == below[2] ? 1 : 0;
}

}  // namespace

trSection::trSection(const trTriBlock* of) : block(of) {}
trSection::~trSection() = default;

void trSection::reset() {
  points.clear(1);
  boundaries.clear(1);
  edge_start.clear(1);
  edge_end.clear(1);
  first_from_.clear(1);
  next_from_.clear(1);
}

giPoint3 trSection::node_point(int node) const {
  return workplane.origin().invalid() ? block->point(node) : workplane.to_work(block->point(node));
}

void trSection::section(gi_Axis axis, double value) {
  if (!coMemoryScope::is_open()) return tr_guarded(block, [&] { section(axis, value); });
  reset();
  if (block == nullptr) return;
  for (int e = 0; e < block->element_count(); ++e) {
    block->prefetch_corners(e + trTriBlock::corners_ahead);
    section_element(e, axis, value);
  }
  if (points.count() == 0) return;
  unduplicate_nodes();
  trace_boundaries();
}

int trSection::section_element(int element, gi_Axis axis, double value) {
  const trElement& t = block->element(element);
  if (t[0] == 0) return 0;
  giPoint3 corner[3];
  bool below[3];
  for (int k = 0; k < 3; ++k) {
    corner[k] = node_point(t[k]);
    below[k] = value - tolerance > corner[k][axis];
  }
  if (below[0] == below[1] && below[1] == below[2]) return 0;
  const int lone = lone_corner(below);
  const giPoint3& a = corner[lone];
  const giPoint3& before = corner[(lone + 2) % 3];
  const giPoint3& after = corner[(lone + 1) % 3];
  giPoint3 p = gi_interpolate(a, after, crossing(a[axis], after[axis], value));
  giPoint3 q = gi_interpolate(before, a, crossing(before[axis], a[axis], value));
  if (!workplane.origin().invalid()) {
    p = workplane.to_world(p);
    q = workplane.to_world(q);
  }
  if (below[lone]) {
    add_edge(p, q);
  } else {
    add_edge(q, p);
  }
  return 1;
}

void trSection::add_edge(const giPoint3& from, const giPoint3& to) {
  const int n = points.count();
  points[n] = from;
  points[n + 1] = to;
  edge_start[edge_start.count()] = n;
  edge_end[edge_end.count()] = n + 1;
}

// The order in which matches are found is that of a point tree to which the points are added one by one.
void trSection::unduplicate_nodes() {
  PointIndex kept(tolerance, PointIndex::Winner::tree_order);
  kept.reserve(points.count() / 2);
  intcoPageArr map;
  for (int i = 0; i < points.count(); ++i) {
    const int found = kept.find_or_add(points.at(i), i);
    map[i] = found < 0 ? i : found;
    if (found >= 0) points.at(i).set_invalid();
  }
  for (int e = 0; e < edge_start.count(); ++e) {
    if (edge_cancelled(e)) continue;
    edge_start.at(e) = map.at(edge_start.at(e));
    edge_end.at(e) = map.at(edge_end.at(e));
    if (edge_start.at(e) == edge_end.at(e)) cancel_edge(e);
  }
}

int trSection::n_boundary_points(int b) const { return b >= 0 && b < boundaries.count() ? boundaries[b]->count() : 0; }

const giPoint3& trSection::boundary_point(int b, int i) const {
  static const giPoint3 none(-DBL_MAX, 0.0, 0.0);
  if (i < 0 || i >= n_boundary_points(b)) return none;
  return points.at(boundaries[b]->at(i));
}

void trSection::write_pic(std::FILE* file) const {
  if (file == nullptr) return;
  write_text(file, "EDIT PLEV 0#UNSET ECHO\n");
  write_text(file, "DELETE PICTURE\n");
  int number = 0;
  const auto write_point = [&](const giPoint3& p) {
    write_text(file, "INPUT PIX %d %lf %lf %lf\n", ++number, p.x, p.y, p.z);
  };
  for (int b = 0; b < n_boundaries() && !tr_interrupt(); ++b) {
    write_point(boundary_point(b, 0));
    write_text(file, "EDIT PIX %d INV\n", number);
    for (int i = 1; i < n_boundary_points(b); ++i) write_point(boundary_point(b, i));
    write_point(boundary_point(b, 0));
  }
  std::fclose(file);
}
