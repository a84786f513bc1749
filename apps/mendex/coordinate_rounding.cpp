#include "coordinate_rounding.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

CoordinateRounding::CoordinateRounding(MeshFormat format)
    : is_single_(format == MeshFormat::binary_stl || (is_scene(format) && format != MeshFormat::three_mf)),
      digits_(format == MeshFormat::ascii_stl ? 7 : 0),
      decimals_(decimals_of(format)) {}

double CoordinateRounding::rounded(double x) const {
  if (!std::isfinite(x)) return x;
  if (is_single_) return static_cast<double>(static_cast<float>(x));
  if (!is_coarse()) return x;
  char text[400];
  std::snprintf(text, sizeof text, digits_ > 0 ? "%.*e" : "%.*f", digits_ > 0 ? digits_ - 1 : decimals_, x);
  return std::strtod(text, nullptr);
}

giPoint3 CoordinateRounding::operator()(const giPoint3& p) const { return giPoint3(rounded(p.x), rounded(p.y), rounded(p.z)); }

int CoordinateRounding::round(trTriBlock& mesh, int first, double& farthest) const {
  int changed = 0;
  for (int i = first; i < mesh.node_count() && is_coarse(); ++i) {
    if (mesh.node(i).invalid) continue;
    const giPoint3 p = mesh.point(i), q = (*this)(p);
    if (p == q) continue;
    ++changed;
    farthest = std::max(farthest, (q - p).length());
    mesh.set_node(i, q);
  }
  return changed;
}
