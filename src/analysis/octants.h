#pragma once

#include "platform/geometry/box3.h"

/// The eight octants of a box, counted from 1: the second half of x adds 1 to the number, of y 2 and of z 4.
class Octants {
 public:
  static constexpr int count = 8;

  explicit Octants(const giBox3& whole);

  const giBox3& box(int octant) const { return boxes_[octant - 1]; }

  /// Whether a box that holds n elements is to be split, as far as can be told before it is tried: above `limit` (from
  /// 2 up, two elements being one pair), not below twice the tolerance, not too deep, and only where halves can be
  /// computed.
  static bool may_split(const giBox3& box, int n, int limit, int depth, double tol);

  /// Whether a split of n elements into octants of those sizes pays: the octants together hold less than about twice
  /// the pairs. Else, where elements pile up in one place or reach through all octants, smaller and smaller boxes would
  /// be searched for nothing.
  static bool pays(const int sizes[count], int n);

 private:
  giBox3 boxes_[count];
};
