#pragma once

#include "platform/geometry/box3.h"
#include "platform/utilities/export.h"

/// A regular division of a box into small boxes of about equal edges.
class MENDEX_EXPORT trBoxGrid {
 public:
  /// Divides so that each small box gets about `per_box` of `count` items (less than 1 counts as 1).
  ///
  /// The edge s of the cubes wished for follows from the box's volume, or from its area or length where it is flat; an
  /// axis of length l has trunc(0.5 + l / s) + 1 divisions, one where the box is flat or not finite. No axis gets more
  /// than 1000, and all together no more than 4 * count + 64: the most divided axes are cut down.
  trBoxGrid(const giBox3& box, int count, int per_box);

  int x_div() const { return x_div_; }
  int y_div() const { return y_div_; }
  int z_div() const { return z_div_; }

  /// The small box at that place, counted from 1 along each axis. Neighbours share their sides to the last bit.
  giBox3 sub_box(int i, int j, int k) const;

 private:
  int x_div_;
  int y_div_;
  int z_div_;
  giBox3 box_;
};
