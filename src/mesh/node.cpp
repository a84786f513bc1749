#include "mesh/node.h"

#include <utility>

void trNode::swap(trNode& other) {
  std::swap(*coords, *other.coords);
  std::swap(invalid, other.invalid);
}

trNode& trNode::operator=(trNode& other) {
  if (this == &other) return *this;
  *coords = *other.coords;
  invalid = other.invalid;
  other.set_invalid();
  return *this;
}
