#include "platform/containers/hash.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

constexpr std::uint64_t used_bit = std::uint64_t{1} << 63;

// The finaliser of A. Appleby's MurmurHash3 (2011): every bit of x reaches every bit of the result.
std::uint32_t scramble(std::uint32_t x) {
  x = (x ^ x >> 16) * 0x85EBCA6Bu;
  x = (x ^ x >> 13) * 0xC2B2AE35u;
  return x ^ x >> 16;
}

}  // namespace

coHash::~coHash() { release(); }

bool coHash::allocate(int log2) noexcept {
  void* fresh = std::calloc(std::size_t{1} << log2, sizeof *marks_);
  if (fresh == nullptr) return false;
  std::free(marks_);
  marks_ = static_cast<std::uint64_t*>(fresh);
  mask_ = (1u << log2) - 1;
  first_ = 0;
  return true;
}

void coHash::release() noexcept {
  std::free(std::exchange(marks_, nullptr));
  mask_ = 0;
  first_ = 0;
}

// The other's table must be of the same size.
void coHash::copy_marks(const coHash& other) noexcept {
  std::memcpy(marks_, other.marks_, sizeof *marks_ * (std::size_t{mask_} + 1));
  first_ = other.first_;
}

void coHash::exchange(coHash& other) noexcept {
  std::swap(marks_, other.marks_);
  std::swap(mask_, other.mask_);
  std::swap(first_, other.first_);
}

std::uint64_t coHash::make_mark(const void* entry) const {
  const std::uint32_t hash = static_cast<std::uint32_t>(objects_->obj_hash(entry));
  const std::uint32_t spread = static_cast<std::uint32_t>(objects_->obj_spread(entry));
  return used_bit | static_cast<std::uint64_t>(scramble(hash ^ scramble(spread + 1))) << 32 | hash;
}

int coHash::find_index(const void* entry) const {
  if (!allocated()) return -1;
  const std::uint64_t wanted = make_mark(entry);
  for (unsigned slot = home(wanted); marks_[slot] != 0; slot = (slot + 1) & mask_) {
    if (marks_[slot] != wanted) continue;
    if (objects_->obj_compare(entry, array_->arr_get(static_cast<int>(slot))) == 0) return static_cast<int>(slot);
  }
  return -1;
}

int coHash::insert(const void* entry) {
  const int slot = insert_mark(make_mark(entry));
  array_->arr_put_copy(slot, entry);
  return slot;
}

int coHash::insert_mark(std::uint64_t mark) noexcept {
  unsigned slot = home(mark);
  while (marks_[slot] != 0) slot = (slot + 1) & mask_;
  marks_[slot] = mark;
  first_ = std::min(first_, static_cast<int>(slot));
  return static_cast<int>(slot);
}

// Knuth's algorithm R (The Art of Computer Programming, volume 3, 6.4, 1973): a follower moves into the gap unless its home lies
// after the gap, seen cyclically.
void coHash::remove_index(int slot) {
  unsigned gap = static_cast<unsigned>(slot);
  for (unsigned next = (gap + 1) & mask_; marks_[next] != 0; next = (next + 1) & mask_) {
    if (((next - home(marks_[next])) & mask_) < ((next - gap) & mask_)) continue;
    marks_[gap] = marks_[next];
    array_->arr_move(static_cast<int>(gap), static_cast<int>(next));
    gap = next;
  }
  marks_[gap] = 0;
  array_->arr_put_copy(static_cast<int>(gap), objects_->obj_nil());
}

int coHash::next_index(int slot) const {
  if (!allocated()) return -1;
  for (unsigned k = static_cast<unsigned>(slot); k <= mask_; ++k) {
    if (marks_[k] != 0) return static_cast<int>(k);
  }
  return -1;
}

int coHash::first_index() {
  const int found = next_index(first_);
  first_ = std::max(found, 0);
  return found;
}
