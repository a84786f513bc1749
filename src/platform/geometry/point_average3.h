#pragma once

#include "platform/geometry/point3.h"

/// Mean of points as they come; the average of nothing is the origin.
class giPointAverage3 {
 public:
  void add(const giPoint3& p) {
    sum_.x += p.x;
    sum_.y += p.y;
    sum_.z += p.z;
    ++count_;
  }
  int count() const { return count_; }
  giPoint3 average() const { return count_ == 0 ? giPoint3() : giPoint3(sum_.x / count_, sum_.y / count_, sum_.z / count_); }

 private:
  giPoint3 sum_;
  int count_ = 0;
};
