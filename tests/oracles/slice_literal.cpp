#include "oracles/literal_mesh.h"
#include "oracles/point_tree_literal.h"

namespace {

constexpr int on_plane = -100;

// Sides by the place of corners: 1 kept, -1 discarded. Of two neighbours on the same side, the last pair leads.
std::size_t leading_pair(const int (&sides)[3]) {
  if (sides[2] == sides[0]) return 2;
  return sides[1] == sides[2] ? 1 : 0;
}

}  // namespace

int LiteralMesh::cut(int a, int b, gi_Axis axis, double value, double tol) {
  int low = std::min(a, b), high = std::max(a, b);
  if (std::fabs(to_work(at(nodes, high).p)[axis] - to_work(at(nodes, low).p)[axis]) >= tol) {
    if (to_work(at(nodes, high).p)[axis] == value) std::swap(low, high);
    const double from = to_work(at(nodes, low).p)[axis], to = to_work(at(nodes, high).p)[axis];
    return interpolate_node(low, high, std::min(1.0, std::max(0.0, (value - from) / (to - from))));
  }
  return interpolate_node(low, high, 0.5);
}

// Whether the element was deleted or counts as split.
bool LiteralMesh::slice_one(int e, gi_Axis axis, double value, double tol, std::vector<int>& plane_nodes) {
  const Element c = at(elements, e);
  int status = at(nodes, c[0]).side == 1 ? 1 : -1;
  for (int k : {c[1], c[2]}) {
    const int side = at(nodes, k).side;
    if ((status == 1 && side == -1) || (status == -1 && side == 1)) status = 0;
  }
  if (status == 1) return false;
  if (status == -1) {
    delete_element(e);
    return true;
  }
  int sides[3];
  for (std::size_t k = 0; k < 3; ++k) sides[k] = at(nodes, c[k]).side == -1 ? -1 : 1;
  if (sides[0] == sides[1] && sides[1] == sides[2]) return true;
  const std::size_t k = leading_pair(sides);
  const int a = c[k], b = c[(k + 1) % 3], lone = c[(k + 2) % 3];
  const int m1 = cut(lone, a, axis, value, tol);
  const int m2 = cut(b, lone, axis, value, tol);
  for (int m : {m1, m2}) {
    plane_nodes.push_back(m);
    at(nodes, m).side = 1;
  }
  delete_element(e);
  if (sides[(k + 2) % 3] == 1) {
    generate3(lone, m1, m2);
  } else {
    generate4(a, b, m2, m1);
  }
  return true;
}

void LiteralMesh::merge_plane_nodes(const std::vector<int>& plane_nodes, double tol) {
  PointTreeLiteral tree(tol, true);
  std::vector<int> map;
  for (int i : plane_nodes) {
    const int found = tree.add(at(nodes, i).p, i);
    if (found < 0) continue;
    if (data_size != 0) {
      reports.push_back(found);
      average(found, i);
    }
    delete_node(i);
    map.resize(static_cast<std::size_t>(node_count));
    at(map, i) = found;
  }
  if (map.empty()) return;
  const double former_tol = undup_tol;
  reference_new_nodes(map);
  alter();
  undup_tol = former_tol;
  delete_collapsed_elements();
}

int LiteralMesh::slice(gi_Axis axis, int side, double value, double tol) {
  reference_elements();
  std::vector<int> plane_nodes;
  for (int i = 1; i < node_count; ++i) {
    if (at(nodes, i).invalid) continue;
    const double c = to_work(at(nodes, i).p)[axis];
    const bool is_kept = side == 0 ? c > value : c < value;
    at(nodes, i).side = c == value ? on_plane : is_kept ? 1 : -1;
    if (c == value) plane_nodes.push_back(i);
  }
  int worked = 0;
  for (int e = 1, count = element_count; e < count; ++e) {
    if (valid(e)) worked += slice_one(e, axis, value, tol, plane_nodes);
  }
  merge_plane_nodes(plane_nodes, tol);
  for (int i = 1; i < node_count; ++i) {
    if (!at(nodes, i).invalid && at(nodes, i).side == -1) delete_node(i);
  }
  if (worked == 0) return 0;
  changed = 1;
  undup_tol = 0.0;
  return 1;
}
