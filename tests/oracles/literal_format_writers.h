#pragma once

#include <string>

#include "mesh/tri_block.h"

/// The writers step by step: one value or line after the other, colours found by passes over all elements. Slow.
std::string literal_native(const trTriBlock& mesh, int rwrite);
std::string literal_mesh_file(const trTriBlock& mesh, int rwrite);
