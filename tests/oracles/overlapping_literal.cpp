#include <cmath>
#include <set>

#include "mesh/measures.h"
#include "oracles/shapes_literal.h"
#include "support/validator.h"

namespace {

bool unit_normal(const trTriBlock& block, int e, giVector3& n) {
  const trElement& t = block.element(e);
  return tr_compute_normal(block.point(t[0]), block.point(t[1]), block.point(t[2]), 1e-6, n);
}

int neighbour_across(const trTriBlock& block, int i, int u, int v) {
  for (int j : entries(block.node(u).elements)) {
    const trElement& t = block.element(j);
    if (j == i || t[0] == 0) continue;
    for (int k = 0; k < 3; ++k) {
      if (t[k] == v && t[(k + 1) % 3] == u) return j;
    }
  }
  return 0;
}

}  // namespace

giAngle find_overlapping_literal(const trTriBlock& block, const giAngle& tol, std::vector<int>& out) {
  std::set<int> listed;
  giAngle sharpest = giAngle::from_degrees(180);
  for (int i = 1; i < block.element_count(); ++i) {
    giVector3 n, across;
    if (block.element(i)[0] == 0 || !unit_normal(block, i, n)) continue;
    for (int k = 0; k < 3; ++k) {
      const int j = neighbour_across(block, i, block.element(i)[k], block.element(i)[(k + 1) % 3]);
      if (j == 0 || !unit_normal(block, j, across)) continue;
      const double dot = n.x() * across.x() + n.y() * across.y() + n.z() * across.z();
      const double angle = std::acos(-std::max(-1.0, std::min(1.0, dot)));
      if (angle < sharpest.radians()) sharpest = giAngle::from_radians(angle);
      if (angle < tol.radians()) listed.insert({i, j});
    }
  }
  out.assign(listed.begin(), listed.end());
  return sharpest;
}
