#pragma once

#include "platform/geometry/vector3.h"

class trTriBlock;

/// v rounded up to a step of 1, 2 or 5 times a power of ten. A step that equals v counts only when it is a power of ten: 5 gives 10,
/// 2 gives 5, 0.5 gives 1, while 1 and 10 stay.
double round_offset_up(double v);

/// What moves the block's box into the positive octant: zero along axes whose least coordinate is not negative.
giVector3 positive_offset(const trTriBlock& mesh);
