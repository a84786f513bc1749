#include "formats/offset.h"

// Both loops end for every v: the first when p becomes infinite at the latest, the second when p / 10 sinks to the smallest double.
double round_up_offset(double v) {
  double p = 1.0;
  if (v > 1.0) {
    while (v > p) p *= 10.0;
  } else {
    while (p / 10.0 > v) p /= 10.0;
  }
  if (p / 5.0 > v) return p / 5.0;
  if (p / 2.0 > v) return p / 2.0;
  return p;
}

giVector3 positive_offset(const giPoint3& min) {
  const auto along = [](double lowest) { return lowest < 0.0 ? round_up_offset(-lowest) : 0.0; };
  return giVector3(along(min.x), along(min.y), along(min.z));
}
