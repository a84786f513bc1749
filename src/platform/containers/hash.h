#pragma once

#include <cstdint>

#include "platform/utilities/export.h"

/// What the untyped table needs to know of the entries of a set.
class MENDEX_EXPORT coObjInterface {
 public:
  /// The entry that stands for "none" and fills empty slots.
  virtual const void* obj_nil() const = 0;
  /// 0 when the two entries are equal, 1 otherwise. Asked only about entries whose full hashes agree.
  virtual int obj_compare(const void* a, const void* b) const = 0;
  virtual void obj_assign(void* target, const void* source) const = 0;
  virtual int obj_hash(const void* entry) const = 0;
  /// A second number that is the same for equal entries; it only spreads entries whose hashes agree over the table.
  virtual int obj_spread(const void* entry) const = 0;

 protected:
  ~coObjInterface() = default;
};

/// Access to the array of slots of a set.
class MENDEX_EXPORT coArrInterface {
 public:
  virtual void arr_put_copy(int slot, const void* entry) = 0;
  virtual const void* arr_get(int slot) const = 0;
  virtual void arr_move(int target, int source) = 0;

 protected:
  ~coArrInterface() = default;
};

/// Untyped open-addressing table: linear probing from a scrambled hash, removal by shifting the followers back.
///
/// Keeps for each slot the full hash of its entry: entries meet only when their full hashes agree, whatever the table size.
/// Entries move when others are removed or the table is rebuilt. The order of the slots depends only on the hashes and the
/// operations made so far. Many entries of equal hash and equal spread cost as many comparisons, but nothing else.
class MENDEX_EXPORT coHash {
 protected:
  coHash(coArrInterface& array, const coObjInterface& objects) : array_(&array), objects_(&objects) {}
  coHash(const coHash&) = delete;
  coHash& operator=(const coHash&) = delete;
  ~coHash();

  bool allocated() const { return marks_ != nullptr; }

  /// Replaces the marks by those of an empty table; false, and nothing changed, when there is no memory.
  bool allocate(int log2) noexcept;
  void release() noexcept;
  void copy_marks(const coHash& other) noexcept;
  void exchange(coHash& other) noexcept;

  /// Slot of the entry equal to `entry`, or -1.
  int find_index(const void* entry) const;
  /// Puts a copy of an absent entry into the table, which must have an empty slot to spare; returns its slot.
  int insert(const void* entry);
  /// Reserves the slot for an entry whose mark another table holds.
  int insert_mark(std::uint64_t mark) noexcept;
  /// Empties a slot and closes the gap.
  void remove_index(int slot);
  /// First slot at or after `slot` that holds an entry, or -1.
  int next_index(int slot) const;
  /// First slot that holds an entry, or -1. Remembers where it looked, so that emptying a set from the front costs O(size).
  int first_index();
  std::uint64_t mark(int slot) const { return marks_[slot]; }
  int stored_hash(int slot) const { return static_cast<int>(static_cast<std::uint32_t>(marks_[slot])); }

 private:
  std::uint64_t make_mark(const void* entry) const;
  unsigned home(std::uint64_t mark) const { return static_cast<unsigned>(mark >> 32) & mask_; }

  coArrInterface* array_;
  const coObjInterface* objects_;
  // For each slot 0 when empty, else bit 63, the scrambled hash in bits 32 to 62 and the full hash in bits 0 to 31.
  std::uint64_t* marks_ = nullptr;
  unsigned mask_ = 0;  // slots minus one
  int first_ = 0;      // all slots before this one are empty
};
