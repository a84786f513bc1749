#pragma once

/// First node of a triangle slot that was never written.
constexpr int UNSET_ELEMENT = static_cast<int>(0x80000000u);

/// Three node numbers.
class giTriangle {
 public:
  giTriangle() = default;
  giTriangle(int a, int b, int c) : nodes_{a, b, c} {}

  int& operator[](int corner) { return nodes_[corner]; }
  int operator[](int corner) const { return nodes_[corner]; }

 private:
  int nodes_[3] = {UNSET_ELEMENT, 0, 0};
};
