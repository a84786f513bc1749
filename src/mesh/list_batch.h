#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "mesh/int_list.h"
#include "platform/containers/flat_array.h"
#include "platform/utilities/prefetch.h"

class trTriBlock;

/// Inserts very many numbers at the front of the nodes' element lists, with the result of inserting them one by one.
///
/// All insertions are announced first. The numbers of each node are then gathered side by side, in a table that takes 4 bytes an
/// entry and 8 a node where lists take 8 and 32, and the lists are made from it in one pass, so that the cells of a list lie
/// together and later walks find it in one or two cache lines.
/// Where there is no memory for that, numbers are inserted one by one.
/// Nodes are named by slots: their own numbers, or places in a given list of node numbers, which keeps the tables small.
/// Peak memory: 9 bytes a slot and 4 an insertion.
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
  /// Lays out the table; to be called between the last announcement and the first insertion.
  void lay_out();

  /// Inserts `value` before all that was inserted at the node of this slot; returns that node.
  int insert(int slot, int value) {
    if (values_.size() == 0) return insert_directly(slot, value);
    Cursor& cursor = cursors_[static_cast<std::size_t>(slot)];
    values_[--cursor.place] = value;
    return cursor.node;
  }

  // Fetch ahead what `announce` and `insert` need: the slot's counter, or first its cursor and a little later its place in the table.
  void prefetch_counter(int slot) const { co_prefetch_for_writing(&counts_[static_cast<std::size_t>(slot)]); }
  void prefetch_cursor(int slot) const { co_prefetch_for_writing(&cursors_[static_cast<std::size_t>(slot)]); }
  void prefetch_place(int slot) const {
    if (values_.size() != 0) co_prefetch_for_writing(&values_[cursors_[static_cast<std::size_t>(slot)].place - 1]);
  }

  /// Makes the lists of what was inserted; false when interrupted, and then some lack it.
  bool close();

 private:
  struct Cursor {
    std::uint32_t place;  // behind the place of the next insertion; a slot's places fill from the last down
    int node;
  };
  static constexpr std::uint8_t counter_full = 255;

  int node_of(int slot) const { return numbers_ == nullptr ? slot : (*numbers_)[static_cast<std::size_t>(slot)]; }
  int insert_directly(int slot, int value);
  int announced(int slot) const {
    const int count = counts_[static_cast<std::size_t>(slot)];
    return count != counter_full ? count : announced_at_hub(slot);
  }
  int announced_at_hub(int slot) const;

  const trTriBlock& block_;
  const std::vector<int>* numbers_;
  coFlatArray<std::uint8_t> counts_;            // insertions announced for each slot, up to counter_full
  std::unordered_map<int, int> counts_beyond_;  // what a full counter could not hold
  coFlatArray<Cursor> cursors_;                 // by slot
  coFlatArray<int> values_;                     // the numbers of all slots, in list order; empty: insertions go directly into the lists
};
