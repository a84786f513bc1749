#pragma once

#include <functional>
#include <utility>

/// Counts steps of work, reports percents now and then and remembers whether the work shall stop.
class WorkMeter {
 public:
  /// `report` takes the percents done and returns 0 to go on.
  explicit WorkMeter(std::function<int(int)> report) : report_(std::move(report)) {}

  /// The next `steps` steps lead from `low` to `high` percent.
  void expect(int low, int high, double steps) {
    low_ = low;
    high_ = high;
    steps_ = steps;
    done_ = 0;
    tell();
  }
  /// Counts one step; false when the work shall stop.
  bool step() {
    if ((++done_ & 1023) == 0) tell();
    return !stopped_;
  }
  void stop() { stopped_ = true; }
  bool stopped() const { return stopped_; }

 private:
  void tell() {
    const auto done = static_cast<double>(done_);
    const double part = done < steps_ ? done / steps_ : 1.0;
    if (report_(low_ + static_cast<int>((high_ - low_) * (steps_ > 0.0 ? part : 0.0))) != 0) stopped_ = true;
  }

  std::function<int(int)> report_;
  long long done_ = 0;
  double steps_ = 0.0;
  int low_ = 0, high_ = 0;
  bool stopped_ = false;
};
