#pragma once

#include <utility>

#include "platform/geometry/triangle.h"

/// One triangular element: three node numbers whose order is its orientation. Valid when the first is a node number.
///
/// Elements live in an array of giTriangle, so this class must add no data.
class trElement : public giTriangle {
 public:
  trElement() { set(0, 0, 0); }
  trElement(int a, int b, int c) { set(a, b, c); }

  void set(int a, int b, int c) {
    (*this)[0] = a;
    (*this)[1] = b;
    (*this)[2] = c;
  }

  /// A deleted element has first node 0; a slot that was grown but never written is just as invalid.
  int valid() const { return (*this)[0] != 0 && (*this)[0] != UNSET_ELEMENT; }

  /// Exchanges the node numbers of two elements.
  void swap(trElement& other) {
    for (int k = 0; k < 3; ++k) std::swap((*this)[k], other[k]);
  }
};

static_assert(sizeof(trElement) == sizeof(giTriangle) && sizeof(giTriangle) == 3 * sizeof(int),
              "elements are viewed through their base class inside one array");
