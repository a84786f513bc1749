#include "mesh/tri_block.h"

namespace {

constexpr int adjustment_off = -1;

}  // namespace

int trTriBlock::apply_curvature_adjust_on_coords(const giPoint3& p, const giVector3& direction, giPoint3& q) const {
  q = p;
  if (!curvature_adjust || surface == nullptr) return adjustment_off;
  if (direction.x() == tr_no_direction().x()) return surface->closest_point(p, q);
  return surface->project(p, direction, q);
}
