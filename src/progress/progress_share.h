#pragma once

#include "progress/progress.h"

/// Gives parts of an operation their shares of the progress range that is set when it begins, and brings that range back at its end.
class ProgressShare {
 public:
  ProgressShare() : low_(tr_get_percent_inf_range()), high_(tr_get_percent_sup_range()) {}
  ProgressShare(const ProgressShare&) = delete;
  ProgressShare& operator=(const ProgressShare&) = delete;
  ~ProgressShare() { tr_set_percent_range(low_, high_); }

  /// The part from one fraction of the range, 0 to 1, to another.
  void set(double from, double to) const { tr_set_percent_range(at(from), at(to)); }

 private:
  double at(double fraction) const { return low_ + fraction * (high_ - low_); }

  double low_;
  double high_;
};
