#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "mesh/int_list.h"
#include "platform/containers/flat_array.h"

class trTriBlock;

/// Inserts very many numbers at the front of the nodes' element lists, with the result of inserting them one by one.
///
/// All insertions are announced first. Each node then gets its cells side by side, in list order, so that filling touches 4 bytes a
/// node and 8 bytes an entry instead of a node record each time, and later walks find a list in one or two cache lines.
/// Where there is no memory for that, numbers are inserted one by one.
/// Nodes are named by slots: their own numbers, or places in a given list of node numbers, which keeps the scratch tables small.
/// Peak memory: 5 bytes a slot beside the cells.
class ElementListBatch {
 public:
  /// @param numbers  node number of each slot; null when slots are node numbers
  ElementListBatch(const trTriBlock& block, const std::vector<int>* numbers);

  /// Announces one insertion at the node of a slot.
  void announce(int slot) {
    if (counts_.size() == 0) return;
    std::uint8_t& count = counts_[static_cast<std::size_t>(slot)];
    if (count != counter_full) {
      ++count;
    } else {
      ++counts_beyond_[slot];
    }
  }
  /// Lays out the cells; to be called between the last announcement and the first insertion.
  void lay_out();

  /// Inserts `value` before all that was inserted at this node.
  void insert(int slot, int value) {
    if (first_cell_ == 0) return insert_directly(slot, value);
    coCellPool::cell(--cursors_[static_cast<std::size_t>(slot)]).value = value;
  }

  // Fetch ahead what `announce` and `insert` need: the node's counter, or first its cursor and a little later its cell.
  void prefetch_counter(int slot) const { __builtin_prefetch(&counts_[static_cast<std::size_t>(slot)], 1); }
  void prefetch_cursor(int slot) const {
    if (first_cell_ != 0) __builtin_prefetch(&cursors_[static_cast<std::size_t>(slot)], 1);
  }
  void prefetch_cell(int slot) const {
    if (first_cell_ != 0) coCellPool::prefetch(cursors_[static_cast<std::size_t>(slot)] - 1);
  }

  /// Links the inserted numbers into the lists. Cells announced but never filled go back to the pool.
  void close();

 private:
  using Link = coCellPool::Link;
  static constexpr std::uint8_t counter_full = 255;

  int node_of(int slot) const { return numbers_ == nullptr ? slot : (*numbers_)[static_cast<std::size_t>(slot)]; }
  void insert_directly(int slot, int value);
  int announced(int slot) const {
    const int count = counts_[static_cast<std::size_t>(slot)];
    return count != counter_full ? count : announced_at_hub(slot);
  }
  int announced_at_hub(int slot) const;
  void close_slot(int slot, Link start, Link end);

  const trTriBlock& block_;
  const std::vector<int>* numbers_;
  coFlatArray<std::uint8_t> counts_;            // insertions announced for each slot, up to counter_full
  std::unordered_map<int, int> counts_beyond_;  // what a full counter could not hold
  coFlatArray<Link> cursors_;                   // behind the next cell to fill; a slot's cells are filled from the last down
  Link first_cell_ = 0;                         // start of all runs; 0: insertions go directly into the lists
};
