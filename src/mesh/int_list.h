#pragma once

#include "platform/containers/int_slist.h"
#include "platform/utilities/export.h"

/// List of numbers that a node carries: the other ends of its free edges, or its elements.
class MENDEX_EXPORT trIntList : public intcoSListB {
 public:
  trIntList() = default;
  trIntList(const trIntList&) = delete;

  /// Empties this list, then moves every entry of `other` into it, from the other's front to this front: the result is in
  /// reverse order and `other` is left empty.
  trIntList& operator=(trIntList& other);

  /// Removes the first entry equal to v, keeping the order of the rest; returns whether there was one. Cost: O(n).
  int remove(int v);

  /// Whether v is present. A present v moves to the front of the list. Cost: O(n).
  int member(int v);
};

using trIntListIT = intcoSListBcoIterator;
