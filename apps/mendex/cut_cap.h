#pragma once

#include <mendexlib.h>

/// A plane across an axis.
struct CutPlane {
  gi_Axis axis;
  double at;
  bool keeps_above;  // which side of it the mesh lies
};

/// What became of the boundaries in a plane.
struct CutCap {
  int loops = 0;      // found there
  int triangles = 0;  // made to close them
  int open_edges = 0;  // left there all the same: of the cut where it runs into a boundary that was there before
  at2PlaneError error = at2_success;  // why they stay open
};

/// Closes the boundaries of the controller's mesh that lie in the plane, all together, so that a loop inside another one is a hole of
/// the area. No nodes are made. All stay open when the area cannot be triangulated. Edits go to the open undo record.
CutCap cap_cut(trControl& control, const CutPlane& plane);
