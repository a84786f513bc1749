#pragma once

#include <vector>

#include "platform/containers/number_arrays.h"

/// Walks the entries 0 to count - 1 of an array of parameters in ascending order: `while (++it) use(it.index);`. Values that are not
/// above 0 are never yielded, and of equal values only that with the lowest index.
class ArrayIT {
 public:
  ArrayIT(int n, const doublecoPageArr* of);

  int count;          ///< entries to consider
  double last = 0.0;  ///< the value last yielded
  int index = -1;     ///< and its index
  const doublecoPageArr* values;

  /// Moves to the next value; returns whether there is one.
  int operator++();

 private:
  std::vector<int> order_;  // indices by value, then by index
  std::size_t next_ = 0;
};
