#pragma once

#include "mesh/tri_block.h"

/// Mass properties by their formulas, in long double.
struct MassLiteral {
  double area, volume, min_aspect, mean_aspect;
  giPoint3 centre;
};
MassLiteral mass_literal(const trTriBlock& block);

/// Half the sum of mean z times the planar cross term, in world coordinates, in long double.
double flux_of_z_literal(const trTriBlock& block);

/// Least scalar product of neighbouring normals: for each edge the first other element in the node's list that runs it
/// backwards.
double min_dotp_literal(const trTriBlock& block, double limit, int& count);
