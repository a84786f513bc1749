#pragma once

#include "mesh/measures.h"
#include "mesh/tri_block.h"

/// A valid element as the STL writers put it into a file.
struct Facet {
  Facet(const trTriBlock& mesh, int e, const giVector3& offset) {
    const trElement& nodes = mesh.element(e);
    for (int k = 0; k < 3; ++k) corners[k] = *mesh.node(nodes[k]).coords + offset;
    // In model units squared; a triangle below it keeps the raw cross product as its normal.
    constexpr double least_doubled_area = 1e-05;
    tr_compute_normal(corners[0], corners[1], corners[2], least_doubled_area, normal);
  }

  giPoint3 corners[3];
  giVector3 normal;
};
