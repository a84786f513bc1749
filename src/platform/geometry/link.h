#pragma once

/// The triangles across the three sides of a triangle; -1: none. Side k runs from corner k to the next.
class giLink {
 public:
  int& operator[](int side) { return neighbours_[side]; }
  int operator[](int side) const { return neighbours_[side]; }

 private:
  int neighbours_[3] = {-1, -1, -1};
};
