#pragma once

#include <array>
#include <vector>

#include "mesh/tri_block.h"
#include "platform/containers/int_set.h"

/// The numbers that an array or a set holds, in its order.
inline std::vector<int> numbers_in(const intcoPageArr& array) {
  std::vector<int> numbers;
  for (int k = 0; k < array.count(); ++k) numbers.push_back(array[k]);
  return numbers;
}

inline std::vector<int> numbers_in(const intcoSet& set) {
  std::vector<int> numbers;
  intcoSet::coIterator it(set);
  while (++it) numbers.push_back(it());
  return numbers;
}

/// The corners of the valid elements.
inline std::vector<std::array<int, 3>> elements_of(const trTriBlock& block) {
  std::vector<std::array<int, 3>> all;
  for (int e = 1; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    if (t.valid()) all.push_back({t[0], t[1], t[2]});
  }
  return all;
}
