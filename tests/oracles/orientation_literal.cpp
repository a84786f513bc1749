#include <deque>

#include "mesh/measures.h"
#include "oracles/shapes_literal.h"

namespace {

using Element = LiteralMesh::Element;

// -1: f has the side from a to b; 1: it has the side from b to a; 0: neither.
int edge_direction(int a, int b, const Element& f) {
  for (std::size_t j = 0; j < 3; ++j) {
    const int from = f[j], to = f[(j + 1) % 3];
    if (from == a && to == b) return -1;
    if (from == b && to == a) return 1;
  }
  return 0;
}

class Run {
 public:
  Run(LiteralMesh& mesh, OrientationLiteral& result) : mesh_(mesh), status_(result.status) {
    for (int e = 0; e < mesh.element_count; ++e) status_.push_back(mesh.valid(e) ? 0 : 100);
  }

  OrientationLiteral::Group grow(int seed) {
    group_ = {seed, 1, 0, 1};
    members_.assign(1, seed);
    LiteralMesh::at(status_, seed) = 1;
    std::deque<int> queue{seed};
    while (!queue.empty()) {
      const int e = queue.front();
      queue.pop_front();
      const Element t = LiteralMesh::at(mesh_.elements, e);
      for (std::size_t k = 0; k < 3; ++k) reach_side(e, t[k], t[(k + 1) % 3], queue);
    }
    return group_;
  }

  // Reverses the minority of the group just grown; whether there was one.
  bool settle() {
    if (std::min(group_.num_same, group_.num_opposite) == 0) return false;
    const int minority = group_.num_same < group_.num_opposite ? 1 : -1;
    std::sort(members_.begin(), members_.end());
    for (int e : members_) {
      if (LiteralMesh::at(status_, e) == minority) mesh_.reverse_element(e);
      LiteralMesh::at(status_, e) = 2;
    }
    return true;
  }

 private:
  void reach_side(int e, int a, int b, std::deque<int>& queue) {
    const int s = LiteralMesh::at(status_, e);
    for (int f : LiteralMesh::at(mesh_.nodes, a).elements) {
      if (f == e || !mesh_.valid(f)) continue;
      const int direction = edge_direction(a, b, LiteralMesh::at(mesh_.elements, f));
      if (direction == 0) continue;
      const int wanted = direction < 0 ? -s : s;
      int& status = LiteralMesh::at(status_, f);
      if (status == 0) {
        status = wanted;
        ++(wanted < 0 ? group_.num_opposite : group_.num_same);
        members_.push_back(f);
        queue.push_back(f);
      } else if (status != wanted) {
        group_.orientable = 0;
      }
    }
  }

  LiteralMesh& mesh_;
  std::vector<int>& status_;
  OrientationLiteral::Group group_{};
  std::vector<int> members_;
};

}  // namespace

OrientationLiteral orient_normals_literal(LiteralMesh& mesh) {
  OrientationLiteral result;
  Run run(mesh, result);
  for (int seed = 0; seed < mesh.element_count; ++seed) {
    if (LiteralMesh::at(result.status, seed) != 0) continue;
    result.groups.push_back(run.grow(seed));
    if (run.settle()) result.result = 1;
  }
  const int top = find_top_element_literal(mesh);
  if (top < 0) return result;
  const Element& t = LiteralMesh::at(mesh.elements, top);
  const auto point = [&](std::size_t k) { return LiteralMesh::at(mesh.nodes, t[k]).p; };
  giVector3 n;
  if (tr_compute_normal(point(0), point(1), point(2), 1e-5, n) && n.z() < 0) {
    mesh.reverse();
    result.result = 1;
  }
  return result;
}

int find_top_element_literal(const LiteralMesh& mesh) {
  std::vector<int> top;
  for (int i = 1; i < mesh.node_count; ++i) {
    const LiteralMesh::Node& node = LiteralMesh::at(mesh.nodes, i);
    if (node.invalid) continue;
    if (!top.empty() && node.p.z > LiteralMesh::at(mesh.nodes, top[0]).p.z) top.clear();
    if (top.empty() || node.p.z == LiteralMesh::at(mesh.nodes, top[0]).p.z) top.push_back(i);
  }
  int winner = -1;
  double highest = 0;
  for (int i : top) {
    for (int e : LiteralMesh::at(mesh.nodes, i).elements) {
      const Element& t = LiteralMesh::at(mesh.elements, e);
      const auto at = std::find(t.begin(), t.end(), i);
      if (!mesh.valid(e) || at == t.end()) continue;
      const auto k = static_cast<std::size_t>(at - t.begin());
      const double next = LiteralMesh::at(mesh.nodes, t[(k + 1) % 3]).p.z;
      const double before = LiteralMesh::at(mesh.nodes, t[(k + 2) % 3]).p.z;
      const double lower = next < before ? next : before;
      if (winner >= 0 && lower <= highest) continue;
      winner = e;
      highest = lower;
    }
  }
  return winner;
}
