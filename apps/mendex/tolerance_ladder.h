#pragma once

#include <mendexlib.h>

#include <vector>

#include "repair_settings.h"

/// The tolerances at which boundaries are joined, ascending, each about ten times the one before.
///
/// By default from what single precision resolves of the coordinates up to a tenth of the median edge of the mesh, but never beyond half
/// of all but the shortest twentieth of the open edges, so that no rim loses its shape.
class ToleranceLadder {
 public:
  ToleranceLadder(trControl& control, const RepairSettings& settings);

  const std::vector<double>& rungs() const { return rungs_; }

 private:
  std::vector<double> rungs_;
};
