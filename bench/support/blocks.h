#pragma once

#include <memory>

#include "mesh/tri_block.h"
#include "support/model.h"

using Block = std::unique_ptr<trTriBlock>;

/// The smallest tolerance there is: it merges exact copies and nothing else.
double exact_tolerance();

/// The model as `read_stl` loads it: three nodes a facet.
Block loaded_block(const Model& model);

/// The same with its coincident nodes merged.
Block merged_block(const Model& model);

/// Counts of a block that holds the model unmerged, or merged; ends the run when they are wrong.
void check_loaded(const trTriBlock& block, const Model& model);
void check_merged(const trTriBlock& block, const Model& model);

/// A binary STL file that holds the model, facet for facet, their corners in any rotation.
void check_written(const std::filesystem::path& file, const Model& model);
