#pragma once

#include "analysis/triangle_cut.h"
#include "mesh/tri_block.h"

/// Lengths, and twice the areas, up to which the search for intersecting elements takes something to be zero.
constexpr double intersection_tol = 1e-5;

/// Bounding box of an element, in the workplane when one is in use; empty for a deleted element.
inline giBox3 element_box(const trTriBlock& block, int e) {
  giBox3 box;
  const trElement& t = block.element(e);
  if (!t.valid()) return box;
  for (int k = 0; k < 3; ++k) box.merge(block.check_use_workplane(block.point(t[k])));
  return box;
}

/// The same of a valid element whose corners were taken out of the block.
inline giBox3 element_box(const trTriBlock& block, const CutTriangle& triangle) {
  giBox3 box;
  for (const giPoint3& corner : triangle.p) box.merge(block.check_use_workplane(corner));
  return box;
}
