#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/utilities/export.h"

/// Open-addressing table of distinct numbers under `intcoSet` and `intintcoTable`, with an optional second number for each.
///
/// A number's first slot is its low bits, so a walk over the table meets small non-negative numbers in ascending order. Further
/// slots are an odd distance apart that depends on all bits, so that numbers with equal low bits do not pile up. A removed entry
/// leaves a mark behind: other entries never move except when the table is rebuilt.
/// The table is allocated by the first insertion and is rebuilt (at double size, or at the same size to clear out marks) as soon
/// as entries and marks reach size * load / 100. So an empty slot ends every search.
class MENDEX_EXPORT coIntSlots {
 public:
  enum class Payload : std::uint8_t { none, number };

  /// @param log2  log2 of the slots of the fresh table, held within 0 to 30
  /// @param load  percentage of used slots at which the table is rebuilt, held within 1 to 100
  coIntSlots(int log2, int load, Payload payload) noexcept;
  coIntSlots(const coIntSlots& other);
  coIntSlots& operator=(const coIntSlots& other);
  ~coIntSlots() { release(); }

  int count() const { return count_; }
  int log2_size() const { return log2_; }

  /// The slot that holds v, or -1.
  int find(int v) const noexcept;

  /// Inserts v, which must be absent, and returns its slot; -1 when there is no memory.
  int insert(int v);

  /// Empties the slot, which must hold an entry.
  void remove_at(int slot) noexcept;

  /// Frees the table and goes back to the size of construction.
  void clear() noexcept;

  /// The first slot at or after `slot` that holds an entry, or -1.
  int next_used(int slot) const noexcept;

  int key(int slot) const { return keys_[slot]; }
  int value(int slot) const { return values()[slot]; }
  void set_value(int slot, int value) { values()[slot] = value; }

 private:
  enum State : std::uint8_t { empty, used, removed };

  int size() const { return 1 << log2_; }
  int* values() const { return keys_ + size(); }
  State* states() const { return reinterpret_cast<State*>(keys_ + (payload_ == Payload::number ? 2 : 1) * std::size_t(size())); }
  std::size_t table_bytes(int log2) const;
  bool overloaded(int entries, int log2) const;
  void release() noexcept;
  void copy_table(const coIntSlots& other);
  int free_slot(int v) const noexcept;
  int wanted_log2() const;
  void rebuild() noexcept;

  // One block: the keys, the values where there are any, and the states of all slots. Null until the first insertion.
  int* keys_ = nullptr;
  int count_ = 0;
  int marks_ = 0;  // removed entries still marked
  std::uint8_t first_log2_;
  std::uint8_t log2_;
  std::uint8_t load_;
  Payload payload_;
};
