#include "oracles/shape_literal.h"
#include "oracles/shapes_literal.h"

namespace {

using Element = LiteralMesh::Element;

const giPoint3& point(const LiteralMesh& mesh, int i) { return LiteralMesh::at(mesh.nodes, i).p; }

// The corner opposite the longest edge; edge k runs from corner k to the next.
std::size_t apex(const LiteralMesh& mesh, const Element& t) {
  const double l0 = (point(mesh, t[0]) - point(mesh, t[1])).length();
  const double l1 = (point(mesh, t[1]) - point(mesh, t[2])).length();
  const double l2 = (point(mesh, t[2]) - point(mesh, t[0])).length();
  const std::size_t longest = l0 >= l1 ? (l0 < l2 ? 2 : 0) : (l1 < l2 ? 2 : 1);
  return (longest + 2) % 3;
}

// The neighbour across the edge from a to b and its third corner; both 0 when there is none.
std::pair<int, int> neighbour(const LiteralMesh& mesh, int e, int a, int b) {
  for (int f : LiteralMesh::at(mesh.nodes, a).elements) {
    if (f == e || !mesh.valid(f)) continue;
    const Element& t = LiteralMesh::at(mesh.elements, f);
    for (std::size_t m = 0; m < 3; ++m) {
      if (t[m] == a && t[(m + 2) % 3] == b) return {f, t[3 - m - (m + 2) % 3]};
    }
  }
  return {0, 0};
}

}  // namespace

int swap_elements_literal(LiteralMesh& mesh, double tol) {
  std::vector<std::pair<int, std::size_t>> candidates;
  for (int i = 0; i < mesh.element_count; ++i) {
    if (!mesh.valid(i)) continue;
    const Element& t = LiteralMesh::at(mesh.elements, i);
    const double aspect = aspect_literal(point(mesh, t[0]), point(mesh, t[1]), point(mesh, t[2]));
    const bool none = aspect == std::numeric_limits<double>::max();
    if (none || (tol >= 0 && aspect < tol)) candidates.emplace_back(i, apex(mesh, t));
  }
  int swaps = 0;
  for (const auto& [e, side] : candidates) {
    if (!mesh.valid(e)) continue;
    const Element t = LiteralMesh::at(mesh.elements, e);
    const int s = t[side], a = t[(side + 1) % 3], b = t[(side + 2) % 3];
    const auto [f, o] = neighbour(mesh, e, a, b);
    if (f == 0 || !check_dela_literal(point(mesh, o), point(mesh, a), point(mesh, b), point(mesh, s))) continue;
    mesh.generate(o, b, s);
    mesh.generate(s, a, o);
    mesh.delete_element(f);
    mesh.delete_element(e);
    ++swaps;
  }
  return swaps;
}
