#pragma once

#include <vector>

#include "oracles/literal_mesh.h"
#include "platform/geometry/angle.h"

// Searches and cures by the shape of elements, walked element by element round the nodes of each.

/// For each side of each element with a normal, the first other element in the list of the node where the side starts
/// that runs it back; the angle that the two enclose. Returns the sharpest.
giAngle find_overlapping_literal(const trTriBlock& block, const giAngle& tol, std::vector<int>& out);

/// One pass of edge swapping; the number of swaps.
int swap_elements_literal(LiteralMesh& mesh, double tol);

/// What became of the elements in one run of the orientation.
struct OrientationLiteral {
  struct Group {
    int seed, num_same, num_opposite, orientable;
  };
  std::vector<Group> groups;
  std::vector<int> status;
  int result = 0;
};
OrientationLiteral orient_normals_literal(LiteralMesh& mesh);

/// The element at the highest node whose lower other corner is highest; -1 when there is none.
int find_top_element_literal(const LiteralMesh& mesh);
