#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "mesh/tri_block.h"

/// Lengths that suit a mesh, model units.
struct GrowthScale {
  double edge = 0.0;     ///< of its short edges
  double spacing = 0.0;  ///< of new nodes in caps, so that there are no more of them than the mesh has
};

/// A mesh whose size can be chosen, hard on operations in a way of its own.
struct GrowthInput {
  const char* name;
  bool is_small;  ///< measured from 10^5 to 10^6 triangles, not to 4 x 10^6
  std::unique_ptr<trTriBlock> (*make)(std::size_t facets, const std::filesystem::path& folder, GrowthScale& scale);
};

const std::vector<GrowthInput>& growth_inputs();
