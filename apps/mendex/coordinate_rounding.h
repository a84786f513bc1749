#pragma once

#include <mendexlib.h>

#include "mesh_format.h"

/// Rounds coordinates to what a format holds, so that what is checked is what the file will have.
class CoordinateRounding {
 public:
  explicit CoordinateRounding(MeshFormat format);

  /// Whether the format holds less than a mesh does.
  bool is_coarse() const { return is_single_ || digits_ > 0 || decimals_ > 0; }
  giPoint3 operator()(const giPoint3& p) const;
  /// Rounds the nodes from `first` on. How many changed; `farthest` grows to the largest distance.
  int round(trTriBlock& mesh, int first, double& farthest) const;

 private:
  double rounded(double x) const;

  bool is_single_;
  int digits_;    // that count; 0: any number
  int decimals_;  // behind the point; 0: any number
};
