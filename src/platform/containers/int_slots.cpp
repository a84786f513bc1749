#include "platform/containers/int_slots.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/containers/memory_scope.h"
#include "platform/containers/refused_memory.h"

namespace {

constexpr int max_log2 = 30;

std::uint8_t clamped(int v, int low, int high) { return static_cast<std::uint8_t>(std::clamp(v, low, high)); }

// Distance between the slots tried for v: odd, so that every slot of a power-of-two table is reached. The multiplier is the odd
// number nearest to 2^32 divided by the golden ratio (D. Knuth, The Art of Computer Programming, volume 3, 6.4, 1973).
unsigned probe_step(int v) {
  const std::uint32_t product = static_cast<std::uint32_t>(v) * 0x9E3779B1u;
  return (product >> 7 ^ product >> 19) | 1u;
}

}  // namespace

coIntSlots::coIntSlots(int log2, int load, Payload payload) noexcept
    : first_log2_(clamped(log2, 0, max_log2)), log2_(first_log2_), load_(clamped(load, 1, 100)), payload_(payload) {}

coIntSlots::coIntSlots(const coIntSlots& other)
    : first_log2_(other.first_log2_), log2_(other.first_log2_), load_(other.load_), payload_(other.payload_) {
  copy_table(other);
}

coIntSlots& coIntSlots::operator=(const coIntSlots& other) {
  if (this == &other) return *this;
  release();
  first_log2_ = other.first_log2_;
  log2_ = other.first_log2_;
  load_ = other.load_;
  payload_ = other.payload_;
  copy_table(other);
  return *this;
}

std::size_t coIntSlots::table_bytes(int log2) const {
  const std::size_t slot_bytes = sizeof(State) + sizeof(int) * (payload_ == Payload::number ? 2 : 1);
  return slot_bytes << log2;
}

bool coIntSlots::overloaded(int entries, int log2) const {
  return log2 < max_log2 && std::int64_t{100} * entries >= (std::int64_t{load_} << log2);
}

void coIntSlots::release() noexcept {
  std::free(std::exchange(keys_, nullptr));
  count_ = 0;
  marks_ = 0;
}

// Takes the other's slots over as they stand, so that both are walked in the same order. Without memory the copy is empty.
void coIntSlots::copy_table(const coIntSlots& other) {
  if (other.count_ == 0) return;
  keys_ = static_cast<int*>(std::malloc(table_bytes(other.log2_)));
  if (keys_ == nullptr) {
    report_refused_memory();
    return co_entry_lost();
  }
  log2_ = other.log2_;
  std::memcpy(keys_, other.keys_, table_bytes(log2_));
  count_ = other.count_;
  marks_ = other.marks_;
}

void coIntSlots::clear() noexcept {
  release();
  log2_ = first_log2_;
}

int coIntSlots::find(int v) const noexcept {
  if (count_ == 0) return -1;
  const unsigned mask = static_cast<unsigned>(size()) - 1;
  const unsigned step = probe_step(v);
  const State* state = states();
  for (unsigned slot = static_cast<unsigned>(v) & mask; state[slot] != empty; slot = (slot + step) & mask) {
    if (state[slot] == used && keys_[slot] == v) return static_cast<int>(slot);
  }
  return -1;
}

int coIntSlots::free_slot(int v) const noexcept {
  const unsigned mask = static_cast<unsigned>(size()) - 1;
  unsigned slot = static_cast<unsigned>(v) & mask;
  while (states()[slot] == used) slot = (slot + probe_step(v)) & mask;
  return static_cast<int>(slot);
}

int coIntSlots::insert(int v) {
  const int filled = count_ + marks_ + 1;
  if (keys_ == nullptr || filled >= size() || overloaded(filled, log2_)) rebuild();
  // Without memory the present table serves on until one empty slot is left.
  if (keys_ == nullptr || count_ + marks_ + 1 >= size()) {
    co_entry_lost();
    return -1;
  }
  const int slot = free_slot(v);
  if (states()[slot] == removed) --marks_;
  states()[slot] = used;
  keys_[slot] = v;
  ++count_;
  return slot;
}

void coIntSlots::remove_at(int slot) noexcept {
  states()[slot] = removed;
  --count_;
  ++marks_;
}

int coIntSlots::next_used(int slot) const noexcept {
  if (count_ == 0 || slot >= size()) return -1;
  const void* found = std::memchr(states() + slot, used, static_cast<std::size_t>(size() - slot));
  return found == nullptr ? -1 : static_cast<int>(static_cast<const State*>(found) - states());
}

// Size of the table that takes one entry more. A table that is mostly marks keeps its size; one that would fill up again soon is
// doubled, or removing and inserting in turn would rebuild it every time.
int coIntSlots::wanted_log2() const {
  int log2 = log2_;
  while (overloaded(count_ + 1, log2)) ++log2;
  if (marks_ > 0 && log2 == log2_ && overloaded(2 * (count_ + 1), log2)) ++log2;
  return log2;
}

void coIntSlots::rebuild() noexcept {
  const int log2 = wanted_log2();
  coIntSlots fresh(first_log2_, load_, payload_);
  fresh.keys_ = static_cast<int*>(std::malloc(table_bytes(log2)));
  if (fresh.keys_ == nullptr) return report_refused_memory();
  fresh.log2_ = static_cast<std::uint8_t>(log2);
  std::memset(fresh.states(), empty, static_cast<std::size_t>(fresh.size()));
  for (int k = next_used(0); k >= 0; k = next_used(k + 1)) {
    const int slot = fresh.free_slot(keys_[k]);
    fresh.states()[slot] = used;
    fresh.keys_[slot] = keys_[k];
    if (payload_ == Payload::number) fresh.values()[slot] = values()[k];
  }
  std::swap(keys_, fresh.keys_);
  log2_ = fresh.log2_;
  marks_ = 0;
}
