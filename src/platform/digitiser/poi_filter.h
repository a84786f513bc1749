#pragma once

#include <memory>

#include "platform/containers/page_arr.h"
#include "platform/geometry/point3.h"
#include "platform/utilities/export.h"

class coFeaturePool;
class PointIndex;

/// Sieve of points: keeps those that lie within a tolerance of no point kept before.
class MENDEX_EXPORT ccPoiFilter {
 public:
  /// @param pool  a pool in which a filter could keep its points; this one keeps them itself and leaves the pool alone
  /// @param n     the number of points expected, a hint
  ccPoiFilter(coFeaturePool& pool, int n);
  ccPoiFilter(const ccPoiFilter&) = delete;
  ccPoiFilter& operator=(const ccPoiFilter&) = delete;
  ~ccPoiFilter();

  /// Minus the number of a kept point within tol of p, equality included: of several the lowest number. When there is none, p is
  /// kept under number i and i is returned. Distances compare as squares: dx * dx + dy * dy + dz * dz <= tol * tol.
  ///
  /// A NaN coordinate matches nothing. An infinite one, and a tolerance beyond 1e154, match as their squares compare.
  /// Without memory p is not kept.
  /// @param i  from 1; numbers need not ascend
  /// Cost: O(1) expected; a tolerance other than that of the last call costs O(points kept) once, and after it has grown, points
  /// kept closer together than it slow the search.
  int add_point(const giPoint3& p, int i, double tol);

 private:
  struct Kept {
    giPoint3 point;
    int number = 0;
  };
  void rebuild(double tol);

  int expected_;
  double tol_ = 0.0;
  coPageArr<Kept> kept_;
  std::unique_ptr<PointIndex> index_;  // of all kept points, for tol_; null before the first call
};
