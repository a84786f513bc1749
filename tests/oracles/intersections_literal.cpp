#include "oracles/intersections_literal.h"

#include <cmath>

#include "analysis/box_checker.h"
#include "analysis/box_grid.h"
#include "mesh/clean_int_array.h"

namespace {

constexpr double tol = 1e-5;

struct Vec {
  double x, y, z;
};
Vec minus(Vec a, Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
double dot(Vec a, Vec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec cross(Vec a, Vec b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
double length(Vec a) { return std::sqrt(dot(a, a)); }

struct Corners {
  Vec p[3];
  int nodes[3];
  Vec n;
  bool has_normal;
};

Corners corners_of(const trTriBlock& block, int e) {
  Corners c;
  for (int k = 0; k < 3; ++k) {
    c.nodes[k] = block.element(e)[k];
    const giPoint3& p = block.point(c.nodes[k]);
    c.p[k] = {p.x, p.y, p.z};
  }
  c.n = cross(minus(c.p[1], c.p[0]), minus(c.p[2], c.p[1]));
  const double l = length(c.n);
  c.has_normal = l > tol;
  if (c.has_normal) c.n = {c.n.x / l, c.n.y / l, c.n.z / l};
  return c;
}

bool segment_meets(Vec p, Vec q, double dp, double dq, const Corners& t) {
  if (dp > tol && dq > tol) return false;
  if (dp < -tol && dq < -tol) return false;
  dp = std::fabs(dp);
  dq = std::fabs(dq);
  const double share = dp / (dp + dq);
  Vec x = {p.x + share * (q.x - p.x), p.y + share * (q.y - p.y), p.z + share * (q.z - p.z)};
  if (dq < tol) x = q;
  if (dp < tol) x = p;
  if (dp < tol && dq < tol) x = {(p.x + q.x) / 2, (p.y + q.y) / 2, (p.z + q.z) / 2};
  double c[3];
  for (int i = 0; i < 3; ++i) {
    const Vec v = minus(t.p[i], x);
    const Vec w = minus(t.p[(i + 1) % 3], x);
    c[i] = dot(t.n, cross(v, w));
    if (!(std::fabs(c[i]) < tol)) continue;
    const double d = dot(v, w);
    if (d < tol && (length(v) < tol || length(w) < tol)) return true;
    if (d < 0) return true;
    c[i] = 0;
  }
  return (c[0] > 0 && c[1] > 0 && c[2] > 0) || (c[0] < 0 && c[1] < 0 && c[2] < 0);
}

bool sides_meet(const Corners& a, const Corners& b, const double* d, int shared, int common) {
  for (int i = 0; i < 3; ++i) {
    const int k = (i + 1) % 3;
    if (shared != 0 && (a.nodes[i] == common || a.nodes[k] == common)) continue;
    if (segment_meets(a.p[i], a.p[k], d[i], d[k], b)) return true;
  }
  return false;
}

bool aside(const double* d) {
  return (d[0] > tol && d[1] > tol && d[2] > tol) || (d[0] < -tol && d[1] < -tol && d[2] < -tol);
}

giBox3 box_of(const trTriBlock& block, int e) {
  giBox3 box;
  if (!block.element(e).valid()) return box;
  for (int k = 0; k < 3; ++k) box.merge(block.check_use_workplane(block.point(block.element(e)[k])));
  return box;
}

}  // namespace

bool literal_cut(const trTriBlock& block, int number_a, int number_b) {
  const Corners a = corners_of(block, number_a);
  const Corners b = corners_of(block, number_b);
  int shared = 0, common = 0;
  for (const int i : a.nodes) {
    for (const int j : b.nodes) {
      if (i != j) continue;
      ++shared;
      common = i;
    }
  }
  if (shared == 2 || (!a.has_normal && !b.has_normal)) return false;
  double da[3] = {}, db[3] = {};
  for (int i = 0; i < 3; ++i) {
    if (b.has_normal) da[i] = dot(b.n, minus(a.p[i], b.p[0]));
    if (a.has_normal) db[i] = dot(a.n, minus(b.p[i], a.p[0]));
  }
  if (shared == 0 && ((b.has_normal && aside(da)) || (a.has_normal && aside(db)))) return false;
  if (b.has_normal && sides_meet(a, b, da, shared, common)) return true;
  return a.has_normal && sides_meet(b, a, db, shared, common);
}

// An element whose box does not cross the block's, as one on a deleted node may, is in no grid box.
std::set<int> literal_intersecting(const trTriBlock& block) {
  std::set<int> found;
  const giBox3 whole = block.box();
  for (int a = 1; a < block.element_count(); ++a) {
    const giBox3 box_a = box_of(block, a);
    if (!box_a.crosses(whole, tol)) continue;
    for (int b = a + 1; b < block.element_count(); ++b) {
      const giBox3 box_b = box_of(block, b);
      if (!box_b.crosses(whole, tol) || !box_a.crosses(box_b, tol) || !literal_cut(block, a, b)) continue;
      found.insert(a);
      found.insert(b);
    }
  }
  return found;
}

std::vector<int> box_by_box(const trTriBlock& block, int limit) {
  intcoPageArr out;
  const trBoxGrid grid(block.box(), block.element_count(), limit / 2);
  trBoxChecker checker(&block, limit, tol);
  for (int i = 1; i <= grid.x_div(); ++i) {
    for (int j = 1; j <= grid.y_div(); ++j) {
      for (int k = 1; k <= grid.z_div(); ++k) {
        checker.reset(grid.sub_box(i, j, k));
        checker.check_intersecting(out);
      }
    }
  }
  tr_clean_int_array(out);
  std::vector<int> list;
  for (int i = 0; i < out.count(); ++i) list.push_back(out[i]);
  return list;
}
