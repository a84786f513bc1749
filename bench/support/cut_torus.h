#pragma once

#include <memory>

#include "mesh/tri_block.h"
#include "support/model.h"

enum class Cuts { fixed, growing };
enum class Seams { t_junctions, cracks };

/// A torus cut into closed strips, each with nodes of its own.
struct CutTorus {
  std::unique_ptr<trTriBlock> block;
  int seam_nodes = 0;   ///< nodes of one strip that coincide with a node of the next one
  int t_junctions = 0;  ///< nodes of one strip that lie on an edge of the next one
  double tolerance = 0.0;  ///< far below every edge, far above what single precision takes from places
};

/// The surface of the model cut into strips about its tube, with every edge along one side of a cut halved, so that a node lies on each
/// edge across a cut; or, as cracks, with edges that are alike on both sides. Fixed cuts make about 5,000 such nodes, growing ones one to
/// 64 facets. Elements come in the order of the model's facets, nodes as the elements name them.
CutTorus cut_torus(const Model& model, Cuts cuts = Cuts::fixed, Seams seams = Seams::t_junctions);
