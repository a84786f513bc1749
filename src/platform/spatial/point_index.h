#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "platform/containers/flat_array.h"
#include "platform/geometry/point3.h"

class PointOrder;

/// Incremental index of points that are pairwise farther apart than a tolerance: merging asks it, point by point, which kept point
/// the next one coincides with.
///
/// Two points coincide when fl(dx*dx + dy*dy + dz*dz) <= fl(tol*tol), exactly in that form. A coordinate that is not a number
/// matches nothing; an infinite one matches only when tol*tol overflows.
///
/// Method: hash grid with cells of four tolerances (M. Teschner et al., "Optimized spatial hashing for collision detection", 2003).
/// Kept points are farther apart than tol, so a cell holds a bounded number of them whatever the input; where doubles lie farther
/// apart than tol, a cell is a single coordinate. A point whose exact copy is kept is found in its own cell at once.
/// The points lie in the table itself, so that a query costs one cache miss: in 16 bytes each while every coordinate is a single
/// precision number, as those of STL files are, else in 32.
/// Cost: O(1) expected time a query; 23 to 46 bytes a kept point in single precision, twice that otherwise.
class PointIndex {
 public:
  /// Which of several coinciding kept points is the answer.
  enum class Winner {
    lowest_number,  // the one with the lowest number
    tree_order      // the first in preorder of an unbalanced search tree over x, filled in the order of keeping, ties to the right
  };

  PointIndex(double tol, Winner winner);
  ~PointIndex();
  PointIndex(const PointIndex&) = delete;
  PointIndex& operator=(const PointIndex&) = delete;

  /// Sizes the table for about n kept points.
  void reserve(std::int64_t n);

  /// Where a point's own cell is looked up; asking for it early lets memory be fetched ahead.
  struct Probe {
    std::uint32_t hash;
  };
  Probe probe(const giPoint3& p) const { return {cell_hash(key(p.x), key(p.y), key(p.z))}; }
  void prefetch(Probe probe) const {
    if (wide_) {
      __builtin_prefetch(&wide_table_[probe.hash & mask_], 1);
    } else {
      __builtin_prefetch(&narrow_table_[probe.hash & mask_], 1);
    }
  }

  /// The position, among the kept points, of one that coincides with p; -1 when there is none, and p is then kept under `number`.
  int find_or_add_position(const giPoint3& p, int number, Probe own) {
    const int found = find_position(p, own);
    if (found < 0) keep(p, number, own);
    return found;
  }

  /// The same, returning the number under which that point was kept.
  int find_or_add(const giPoint3& p, int number) { return number_of(find_or_add_position(p, number, probe(p))); }
  int find(const giPoint3& p) { return number_of(find_position(p, probe(p))); }

  /// Numbers of the kept points, in the order of keeping.
  const std::vector<int>& numbers() const { return numbers_; }
  std::vector<int> take_numbers() { return std::move(numbers_); }

 private:
  struct Narrow {
    float x, y, z;
    std::uint32_t position;  // among the kept points, plus one; 0: empty
  };
  struct Wide {
    double x, y, z;
    std::uint32_t position;
    std::uint32_t unused;
  };
  // What a query has found so far.
  struct Search {
    giPoint3 p;
    int best = -1;       // position of the best kept point; -1: none
    bool exact = false;  // it has the very coordinates of p, so there is no other
  };

  std::int64_t key(double x) const;
  static std::uint32_t cell_hash(std::int64_t kx, std::int64_t ky, std::int64_t kz);
  int number_of(int position) const { return position < 0 ? -1 : numbers_[static_cast<std::size_t>(position)]; }

  int find_position(const giPoint3& p, Probe own);
  void search_cell(std::uint32_t hash, Search& search) {
    wide_ ? search_cell_in(wide_table_, hash, search) : search_cell_in(narrow_table_, hash, search);
  }
  template <class Entry>
  void search_cell_in(const coFlatArray<Entry>& table, std::uint32_t hash, Search& search);
  void search_cells_around(Probe own, Search& search);
  void consider(int position, Search& search);
  bool tree_precedes(int a, int b);

  void keep(const giPoint3& p, int number, Probe own);
  template <class Entry>
  void insert(coFlatArray<Entry>& table, const giPoint3& p, std::uint32_t hash, std::uint32_t position);
  template <class Entry, class Old>
  bool refill(coFlatArray<Entry>& table, const coFlatArray<Old>& old, std::size_t slots);
  bool resize(std::size_t slots);
  bool widen();
  std::size_t slots() const { return wide_ ? wide_table_.size() : narrow_table_.size(); }

  int find_within_infinite(const giPoint3& p) const;
  void keep_within_infinite(const giPoint3& p, int number);

  double tol_sq_;
  double reach_;         // no two points coincide whose coordinates on some axis differ by more than this
  double inverse_cell_;  // 1 over the side of a cell
  Winner winner_;

  bool wide_ = false;
  coFlatArray<Narrow> narrow_table_;
  coFlatArray<Wide> wide_table_;
  std::uint32_t mask_ = 0;
  std::vector<int> numbers_;
  std::vector<double> x_of_position_;    // kept for tree order only
  std::unique_ptr<PointOrder> order_;    // made when a query first has several answers
  std::vector<int> first_of_class_;      // with an infinite tolerance: first kept point by which coordinates are infinite
};

inline std::int64_t PointIndex::key(double x) const {
  const double cell = x * inverse_cell_;
  // Truncation keeps the order of coordinates, which is all that a cell number must do.
  if (cell > -9007199254740992.0 && cell < 9007199254740992.0) return static_cast<std::int64_t>(cell);
  union {
    double value;
    std::int64_t bits;
  } raw;
  raw.value = x;
  return raw.bits;
}

inline std::uint32_t PointIndex::cell_hash(std::int64_t kx, std::int64_t ky, std::int64_t kz) {
  std::uint64_t h = static_cast<std::uint64_t>(kx) * 0x9e3779b97f4a7c15u;
  h = (h ^ (h >> 32) ^ static_cast<std::uint64_t>(ky)) * 0xbf58476d1ce4e5b9u;
  h = (h ^ (h >> 32) ^ static_cast<std::uint64_t>(kz)) * 0x94d049bb133111ebu;
  return static_cast<std::uint32_t>(h >> 32) ^ static_cast<std::uint32_t>(h);
}
