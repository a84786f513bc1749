#pragma once

#include "platform/geometry/point3.h"
#include "platform/geometry/vector3.h"

/// The step of 1, 2 and 5 times the powers of ten to which an offset v > 0 is rounded up: 1 and 10 stay, 7 gives 10, 12 gives 20; but
/// 0.5, 2, 5 and 20, steps themselves, give the next: 1, 5, 10 and 50. Infinite when v is, or when no finite step is large enough.
double round_up_offset(double v);

/// What moves a box with this minimum corner into the positive octant: 0 along axes where it begins at or above 0 (or nowhere).
giVector3 positive_offset(const giPoint3& min);
