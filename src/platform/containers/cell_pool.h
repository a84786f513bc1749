#pragma once

#include <cstdint>

#include "platform/utilities/export.h"
#include "platform/utilities/prefetch.h"

/// The one pool behind every list of numbers: 8-byte cells, addressed by a 32-bit link.
///
/// A link is 0 (nothing), the number of a cell, or, with its top bit set, a non-negative value that ends the list and needs no
/// cell. So a list of n entries takes n - 1 cells, and the most frequent list, of one entry, takes none.
/// Freed cells are reused last in, first out; the slabs go back to the system when no cell is in use. Not guarded.
class MENDEX_EXPORT coCellPool {
 public:
  using Link = std::uint32_t;

  struct Cell {
    int value;
    Link next;
  };

  static constexpr Link inline_bit = 0x80000000u;
  static constexpr int slab_shift = 18;  // 2^18 cells of 8 bytes: one 2 MiB slab
  static constexpr int slab_limit = 1 << (31 - slab_shift);

  static bool is_inline(Link link) { return (link & inline_bit) != 0; }
  static Link inline_link(int value) { return inline_bit | static_cast<Link>(value); }

  static Cell& cell(Link link) { return slabs_[link >> slab_shift][link & (slab_cells - 1)]; }
  static int value(Link link) { return is_inline(link) ? static_cast<int>(link & ~inline_bit) : cell(link).value; }
  static Link next(Link link) { return is_inline(link) ? 0 : cell(link).next; }

  /// A link to `value` followed by the list `next`; 0 when there is no memory.
  static Link prepend(int value, Link next) {
    if (next == 0 && value >= 0) return inline_link(value);
    Link link = freed_;
    if (link != 0) {
      freed_ = cell(link).next;
    } else if ((link = take_fresh()) == 0) {
      return 0;
    }
    cell(link) = Cell{value, next};
    ++live_;
    return link;
  }

  /// Gives back one cell (an inline link holds none).
  static void release(Link link) {
    if (is_inline(link)) return;
    cell(link).next = freed_;
    freed_ = link;
    if (--live_ == 0) release_slabs();
  }

  /// Cells in use.
  static std::int64_t live() { return live_; }

  /// Asks the processor to fetch what `link` names.
  static void prefetch(Link link) {
    if (link != 0 && !is_inline(link)) co_prefetch_for_writing(&cell(link));
  }

 private:
  static constexpr Link slab_cells = Link{1} << slab_shift;

  static Link take_fresh() { return fresh_ < fresh_end_ ? fresh_++ : open_slab(); }
  static Link open_slab() noexcept;
  static void release_slabs() noexcept;

  static Cell* slabs_[slab_limit];
  static Link freed_;      // first cell of the free list
  static Link fresh_;      // next cell never used; cell 0 never is
  static Link fresh_end_;  // end of the last slab
  static std::int64_t live_;
};
