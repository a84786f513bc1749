#pragma once

#include "platform/spatial/point_index.h"

/// Fetches ahead what an index will read for the points to come: first the slots, later the kept points that they name.
///
/// Points are counted from 0, and point_at(i) is the place of point i; it may be asked some 32 points ahead.
template <class PointAt>
class ProbeWindow {
 public:
  ProbeWindow(const PointIndex& index, int count, PointAt point_at) : index_(index), count_(count), point_at_(point_at) {
    for (int i = 0; i < ahead && i < count_; ++i) look_up(i);
  }

  /// The probe of point i; to be called for each in turn.
  PointIndex::Probe advance(int i) {
    const PointIndex::Probe probe = ring_[i & ring_mask];
    if (i + ahead < count_) look_up(i + ahead);
    if (i + ahead / 2 < count_) index_.prefetch_record(point_at_(i + ahead / 2), ring_[(i + ahead / 2) & ring_mask]);
    return probe;
  }

 private:
  static constexpr int ahead = 32;
  static constexpr int ring_mask = ahead - 1;

  void look_up(int i) {
    PointIndex::Probe& probe = ring_[i & ring_mask];
    probe = index_.probe(point_at_(i));
    index_.prefetch(probe);
  }

  const PointIndex& index_;
  int count_;
  PointAt point_at_;
  PointIndex::Probe ring_[ahead];
};
