// Cutting the mesh with a plane across a coordinate axis.

#include <algorithm>
#include <cmath>

#include "mesh/survivor_map.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "platform/spatial/point_index.h"
#include "progress/progress.h"

namespace {

// What slicing notes in the nodes.
constexpr int kept_side = 1;
constexpr int discarded_side = -1;
constexpr int on_plane = -100;

double pcoord(const giPoint3& p, int axis) { return axis == 0 ? p.x : (axis == 1 ? p.y : p.z); }

int classify(double c, double value, int side) {
  if (c == value) return on_plane;
  const bool is_above = c > value;
  return is_above == (side == 0) ? kept_side : discarded_side;
}

// Where the plane cuts an edge, as a parameter from the first end to the second.
double crossing(double from, double to, double value, double tol) {
  if (std::fabs(to - from) < tol) return 0.5;
  return std::max(0.0, std::min(1.0, (value - from) / (to - from)));
}

}  // namespace

int trTriBlock::slice(gi_Axis axis, int side, double value, double tol) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0, [&] { return slice(axis, side, value, tol); });
  const int axis_index = axis == gi_x_axis ? 0 : (axis == gi_y_axis ? 1 : 2);
  reference_elements();
  if (tr_interrupt()) return 0;
  intcoPageArr plane_nodes;
  for (int i = 1; i < node_count(); ++i) {
    if (tr_interrupt()) return 0;
    if (node(i).invalid) continue;
    node(i).side = classify(pcoord(node_in_workplane(i), axis_index), value, side);
    if (node(i).side == on_plane) plane_nodes[plane_nodes.count()] = i;
  }
  int changed_elements = 0;
  const int count = element_count();
  for (int e = 1; e < count; ++e) {
    if (tr_interrupt()) return 0;
    tr_report_triangles(e, count, 0.0, 100.0);
    if (element(e).valid()) changed_elements += slice_element(e, axis_index, value, plane_nodes, tol) != tr_slice_kept;
  }
  if (!merge_plane_nodes(plane_nodes, tol)) return 0;
  for (int i = 1; i < node_count(); ++i) {
    if (tr_interrupt()) return 0;
    if (!node(i).invalid && node(i).side == discarded_side) delete_node(i);
  }
  if (changed_elements == 0) return 0;
  mark_changed();
  undup_tol = 0.0;
  box_.reset();
  return 1;
}

// Merges the nodes on the plane that coincide; of several the first listed survives. False when interrupted.
bool trTriBlock::merge_plane_nodes(const intcoPageArr& plane_nodes, double tol) {
  PointIndex kept(tol, PointIndex::Winner::tree_order);
  intcoPageArr map;
  bool is_merged = false;
  for (int k = 0; k < plane_nodes.count(); ++k) {
    if (tr_interrupt()) return false;
    const int i = plane_nodes[k];
    if (node(i).invalid || point(i).invalid()) continue;
    const int survivor = kept.find_or_add(point(i), i);
    if (survivor < 0) continue;
    average_node_data(survivor, i);
    delete_node(i);
    map[i] = survivor;
    is_merged = true;
  }
  if (!is_merged) return !tr_interrupt();
  const double former_tol = undup_tol;
  reference_new_nodes(map);
  alter(0);
  undup_tol = former_tol;
  delete_collapsed_elements();
  return !tr_interrupt();
}

// The first corner decides, and one on the plane counts as discarded; further corners only tell of the other side, and those on the plane
// of nothing.
trSliceStatus trTriBlock::slice_element(int e, int axis, double value, intcoPageArr& plane_nodes, double tol) {
  const trElement& t = element(e);
  trSliceStatus status = node(t[0]).side == kept_side ? tr_slice_kept : tr_slice_deleted;
  for (int k = 1; k < 3; ++k) {
    const int side = node(t[k]).side;
    if (status == tr_slice_kept && side == discarded_side) status = tr_slice_split;
    if (status == tr_slice_deleted && side == kept_side) status = tr_slice_split;
  }
  if (status == tr_slice_deleted) delete_element(e);
  if (status == tr_slice_split) split_element(e, axis, value, plane_nodes, tol);
  return status;
}

void trTriBlock::split_element(int e, int axis, double value, intcoPageArr& plane_nodes, double tol) {
  const trElement t = element(e);
  int sides[3];
  for (int k = 0; k < 3; ++k) sides[k] = node(t[k]).side == on_plane ? kept_side : node(t[k]).side;
  if (sides[0] == sides[1] && sides[1] == sides[2]) return;
  int pair = 0;
  for (int k = 1; k < 3; ++k) {
    if (sides[k] == sides[(k + 1) % 3]) pair = k;
  }
  const int a = t[pair];
  const int b = t[(pair + 1) % 3];
  const int lone = t[(pair + 2) % 3];
  const int first = cut_edge(lone, a, axis, value, tol);
  const int second = cut_edge(b, lone, axis, value, tol);
  for (const int made : {first, second}) {
    plane_nodes[plane_nodes.count()] = made;
    node(made).side = kept_side;
  }
  const bool keeps_lone = sides[(pair + 2) % 3] == kept_side;
  delete_element(e);
  if (keeps_lone) {
    generate3(lone, first, second);
  } else {
    generate4(a, b, second, first);
  }
}

// Computed from the lower node to the higher one, so that both elements of an edge get the same point to the last bit; from the
// higher one where the cut is that node itself, which it then meets exactly.
int trTriBlock::cut_edge(int a, int b, int axis, double value, double tol) {
  const int low = std::min(a, b);
  const int high = std::max(a, b);
  const double from = pcoord(node_in_workplane(low), axis);
  const double to = pcoord(node_in_workplane(high), axis);
  const double t = crossing(from, to, value, tol);
  return t == 1.0 ? interpolate_node(high, low, 0.0) : interpolate_node(low, high, t);
}
