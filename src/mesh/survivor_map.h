#pragma once

#include <vector>

#include "platform/containers/number_arrays.h"
#include "platform/spatial/point_index.h"

/// Which node takes the place of each deleted one. Survivors are named by slots: their own numbers, or places in a list of them.
class SurvivorMap {
 public:
  /// @param slots    slot of each deleted node's survivor, by node number; 0 or beyond the count: none
  /// @param numbers  node number of each slot, slot 0 unused; null when slots are node numbers
  explicit SurvivorMap(const intcoPageArr& slots, const std::vector<int>* numbers = nullptr) : slots_(slots), numbers_(numbers) {}

  /// The numbers of what an index kept, slot k being position k - 1.
  static std::vector<int> numbers_by_slot(const PointIndex& kept) {
    std::vector<int> numbers{0};
    numbers.reserve(static_cast<std::size_t>(kept.count()) + 1);
    for (int position = 0; position < kept.count(); ++position) numbers.push_back(kept.number(position));
    return numbers;
  }

  int slot(int deleted_node) const { return deleted_node < slots_.count() ? slots_.at(deleted_node) : 0; }
  int number(int slot) const { return numbers_ == nullptr ? slot : (*numbers_)[static_cast<std::size_t>(slot)]; }
  const std::vector<int>* numbers() const { return numbers_; }

 private:
  const intcoPageArr& slots_;
  const std::vector<int>* numbers_;
};
