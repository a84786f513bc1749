#include "oracles/measures_literal.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "oracles/shape_literal.h"
#include "support/validator.h"

namespace {

using Real = long double;
using Vector = std::array<Real, 3>;

Vector minus(const giPoint3& a, const giPoint3& b) { return {Real(a.x) - b.x, Real(a.y) - b.y, Real(a.z) - b.z}; }
Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
Real length(const Vector& a) { return std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]); }

using Corners = std::array<giPoint3, 3>;

// Corners of the valid elements, in the workplane or not.
std::vector<Corners> live_triangles(const trTriBlock& block, bool in_workplane) {
  std::vector<Corners> result;
  for (int e = 1; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    if (t[0] == 0) continue;
    Corners corners;
    for (int k = 0; k < 3; ++k) {
      const giPoint3& p = block.point(t[k]);
      corners[static_cast<std::size_t>(k)] = in_workplane ? block.check_use_workplane(p) : p;
    }
    result.push_back(corners);
  }
  return result;
}

Real signed_volume_over(const Corners& c, Real z0) {
  const Vector u = minus(c[1], c[0]);
  const Vector v = minus(c[2], c[0]);
  const Real mean_z = (Real(c[0].z) + c[1].z + c[2].z) / 3;
  return (mean_z - z0) * (u[0] * v[1] - u[1] * v[0]) / 2;
}

}  // namespace

MassLiteral mass_literal(const trTriBlock& block) {
  const std::vector<Corners> triangles = live_triangles(block, true);
  Real lowest = HUGE_VAL;
  for (const Corners& c : triangles) {
    for (const giPoint3& p : c) lowest = std::min(lowest, Real(p.z));
  }
  Real area = 0, volume = 0, aspects = 0;
  Real least_aspect = 1;
  Vector s1{}, s2{};
  for (const Corners& c : triangles) {
    const Vector n = cross(minus(c[1], c[0]), minus(c[2], c[0]));
    area += length(n) / 2;
    volume += signed_volume_over(c, lowest);
    for (int k = 0; k < 3; ++k) {
      const std::size_t axis = static_cast<std::size_t>(k);
      const Real middle = (Real(c[0][k]) + c[1][k] + c[2][k]) / 3;
      s1[axis] += middle * n[axis] / 2;
      s2[axis] += middle * middle * n[axis] / 4;
    }
    const Real aspect = length(n) == 0 ? 0 : Real(aspect_literal(c[0], c[1], c[2]));
    least_aspect = std::min(least_aspect, aspect);
    aspects += aspect;
  }
  MassLiteral mass;
  mass.area = static_cast<double>(area);
  mass.volume = static_cast<double>(volume);
  mass.min_aspect = static_cast<double>(least_aspect);
  mass.mean_aspect = static_cast<double>(aspects / triangles.size());
  for (std::size_t k = 0; k < 3; ++k) {
    mass.centre[static_cast<int>(k)] = std::fabs(s1[k]) < 1e-5L ? 0.0 : static_cast<double>(s2[k] / s1[k]);
  }
  return mass;
}

double flux_of_z_literal(const trTriBlock& block) {
  Real sum = 0;
  for (const Corners& c : live_triangles(block, false)) sum += signed_volume_over(c, 0);
  return static_cast<double>(sum);
}

namespace {

// The unit normal (b - a) x (c - b); false for a cross vector of at most 1e-6.
bool unit_normal(const trTriBlock& block, int e, giVector3& n) {
  const trElement& t = block.element(e);
  n = (block.point(t[1]) - block.point(t[0])).cross(block.point(t[2]) - block.point(t[1]));
  const double l = n.length();
  if (l <= 1e-6) return false;
  n.set(n.x() / l, n.y() / l, n.z() / l);
  return true;
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

double min_dotp_literal(const trTriBlock& block, double limit, int& count) {
  count = 0;
  double least = 1.0;
  for (int i = 1; i < block.element_count(); ++i) {
    giVector3 n;
    if (block.element(i)[0] == 0 || !unit_normal(block, i, n)) continue;
    for (int k = 0; k < 3; ++k) {
      const int j = neighbour_across(block, i, block.element(i)[k], block.element(i)[(k + 1) % 3]);
      giVector3 across;
      if (j == 0 || !unit_normal(block, j, across)) continue;
      const double d = n.x() * across.x() + n.y() * across.y() + n.z() * across.z();
      least = std::min(least, d);
      count += d < limit;
    }
  }
  return std::max(-1.0, std::min(1.0, least));
}
