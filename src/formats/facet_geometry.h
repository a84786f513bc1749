#pragma once

#include "mesh/measures.h"
#include "mesh/tri_block.h"

/// Corners, moved by an offset, and normal of an element as STL files hold them.
struct FacetGeometry {
  giPoint3 corners[3];
  giVector3 normal;  // the raw cross vector when no longer than 1e-5

  FacetGeometry(const trTriBlock& mesh, int e, const giVector3& offset) {
    const trElement& t = mesh.element(e);
    for (int k = 0; k < 3; ++k) corners[k] = mesh.point(t[k]) + offset;
    tr_compute_normal(corners[0], corners[1], corners[2], 1e-5, normal);
  }
};
