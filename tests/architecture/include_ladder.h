#pragma once

#include <string>
#include <vector>

#include "architecture/source_tree.h"

/// The include lines that break the rules on who may include whom, each as a sentence; empty when all arrows point downwards.
///
/// - A folder of the library includes itself and the folders below it, by paths relative to `src/`.
/// - One source file of `mesh/`, no header, may include `undo/undo.h`.
/// - Nothing in the library includes the umbrella header.
/// - Eigen is named only by sources of the plane fit and the surface fitter.
/// - Programs and examples include `mendexlib.h` of the library, and their own headers.
std::vector<std::string> ladder_faults(const std::vector<SourceFile>& files);
