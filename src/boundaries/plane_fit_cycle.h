#pragma once

#include "boundaries/cycle_it.h"
#include "platform/common/plane_fit.h"

/// The best plane through the nodes that the iteration of a cycle yields, those of a sub-range included.
///
/// Points are meant to be asked for in ascending order. Never define an object of this class as const.
class MENDEX_EXPORT trPlaneFitCycle : public ccPlaneFit {
 public:
  /// Both stay the caller's and must outlive the object.
  trPlaneFitCycle(const trTriBlock* of, const trCycle* along) : block(of), cycle(along), it(along) {}

  /// Number of points. Cost: O(edges).
  int size() const override;
  /// Position of the start node of edge i, counted from 0; the origin beyond the last. Holds until the block grows or
  /// is cleared. Cost: O(1) for the edge of the last call and the one behind it, else O(edges).
  const giPoint3& data_point(int i) const override;
  /// Moves the iterator to edge i.
  void set_iter(int i);
  /// A point of the plane and its normal, of length 1. 0 for success.
  int fit(giPoint3& origin, giVector3& normal) const;

  const trTriBlock* block;
  const trCycle* cycle;
  trCycleIT it;
  int iter_index = -1;  ///< the edge on which the iterator stands; -1: none

 private:
  trPlaneFitCycle* self() const { return const_cast<trPlaneFitCycle*>(this); }
  void restart();
};
