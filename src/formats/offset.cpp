#include "formats/offset.h"

#include "mesh/tri_block.h"

double round_offset_up(double v) {
  double power = 1.0;
  if (v > 1.0) {
    while (v > power) power *= 10.0;
  } else {
    while (power / 10.0 > v) power /= 10.0;
  }
  if (power / 5.0 > v) return power / 5.0;
  return power / 2.0 > v ? power / 2.0 : power;
}

giVector3 positive_offset(const trTriBlock& mesh) {
  giVector3 offset;
  for (int axis = 0; axis < 3; ++axis) {
    const double least = mesh.box().min()[axis];
    if (least < 0.0) offset.set(axis, round_offset_up(-least));
  }
  return offset;
}
