#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/containers/flat_array.h"
#include "platform/containers/page_arr.h"
#include "platform/geometry/point3.h"
#include "platform/spatial/tree_order.h"
#include "platform/utilities/prefetch.h"

/// Growing set of points in which no two lie within a tolerance of each other, for merging points one after the other.
///
/// Points p and q match when dx * dx + dy * dy + dz * dz <= tol * tol, in double arithmetic and in this order of operations. So a
/// negative tolerance counts by its square, a NaN tolerance or a NaN coordinate never matches, an infinite coordinate matches only
/// under a tolerance whose square overflows, and under such a one everything matches whose squared distance is not NaN.
///
/// Method: a hash grid with cells of four tolerances. Where coordinates are so large that neighbouring doubles lie farther apart
/// than the tolerance, each coordinate is a cell of its own. A search looks into the cell of the point and into those of its
/// neighbours, on average 2.4, that the ball round it touches. Points kept lie farther apart than the tolerance, so a cell holds
/// O(1) of them whatever the input.
/// Cost: O(1) a point; 32 bytes for each point kept and 16 to 32 for its slots. When there is no memory a point is not kept.
class PointIndex {
 public:
  /// Which of several matching points a search names.
  enum class Winner {
    lowest_number,  // the one with the lowest number
    tree_order      // the one that `trPointTree::find` meets first, with the same points added in the same order
  };

  // What a search needs to know beforehand, so that the memory it will touch can be on its way.
  struct Probe {
    std::uint32_t home;
  };

  PointIndex(double tol, Winner winner);
  PointIndex(const PointIndex&) = delete;
  PointIndex& operator=(const PointIndex&) = delete;

  /// Sizes the table for n kept points.
  void reserve(int n) { grow(n); }

  /// Kept points, and the number of each by its position in the order of keeping. Points that can match nothing may be left out.
  int count() const { return records_.count(); }
  int number(int position) const { return records_.at(position).number; }

  /// The number of a kept point that matches p; or -1, and then p is kept under `number`, which should not be negative.
  ///
  /// In tree order an entry cut off by the search conditions of the tree (on x alone, rounded) is not found, as in the tree. This
  /// holds for tolerances with a square of normal size; for others the conditions on x are passed over. Under a negative tolerance
  /// the conditions keep a search from nearly all that matches, so that points kept may match each other, and each search looks
  /// at all of those near. In all cases a point whose x is NaN hides all later points that are not left of every point before it,
  /// as in the tree.
  int find_or_add(const giPoint3& p, int number) {
    const int found = find_or_add_position(p, number, probe(p));
    return found < 0 ? -1 : records_.at(found).number;
  }

  /// The number of a kept point that matches p, or -1.
  int find(const giPoint3& p) const;

  /// Keeps p without a search. If p matches a point kept before, cells may fill up and searches get slower.
  void keep(const giPoint3& p, int number);

  /// For many points in a row: let `probe` and `prefetch` run some 32 points ahead and `prefetch_record` some 16, so that the waits
  /// for memory overlap. A probe stays good while other points are added.
  Probe probe(const giPoint3& p) const;
  void prefetch(Probe probe) const { co_prefetch_for_reading(&slots_[probe.home >> shift_]); }
  void prefetch_record(const giPoint3& p, Probe probe) const;

  /// The same as `find_or_add`, but names the position of the point found.
  int find_or_add_position(const giPoint3& p, int number, Probe probe);

 private:
  struct Record {
    double x, y, z;
    int number;
  };
  struct Slot {
    std::uint32_t tag;      // all bits of the cell's hash
    std::uint32_t position;  // of the record, plus one; 0: empty
  };
  struct Search {
    const giPoint3& p;
    int best = -1;  // position of the record to be named so far
    int end = -1;   // under a negative tolerance: that of the first record seen at which the tree's search would end
  };
  struct CellRange {
    std::uint64_t first, last;
  };
  enum class Reach { nothing, near_points, everything };

  std::uint64_t cell(double x) const;
  CellRange cells_near(double x) const;
  int search(const giPoint3& p, Probe probe) const;
  template <class Visit>
  void for_neighbours(const giPoint3& p, Probe probe, Visit visit) const;
  bool search_cell(std::uint32_t tag, Search& search) const;
  int search_classes(const giPoint3& p) const;
  void consider(int position, Search& search) const;
  bool lies_behind(int position, Search& search) const;
  bool better(int position, int than) const;
  bool cut_off(int position, double x) const;
  void complete_order() const;
  TreeOrder::Key key(int position) const { return {records_.at(position).x, position}; }

  void keep(const giPoint3& p, int number, Probe probe);
  bool hidden(double x);
  void keep_class(const giPoint3& p, int position);
  void enter(std::uint32_t tag, std::uint32_t position);
  bool grow(int entries);
  std::size_t size() const { return std::size_t{1} << (32 - shift_); }

  double tol_;
  double reach_sq_;         // tol * tol
  double reach_;            // no coordinate of matching points differs by more
  double cells_per_unit_;   // 1 / cell size
  double grid_end_;         // from this magnitude on each coordinate is a cell of its own
  double grid_last_;        // the largest double before
  Winner winner_;
  Reach kind_;
  bool conditions_on_x_;    // whether the tree's search conditions are followed
  mutable bool apart_;         // surely no two points kept match each other

  coPageArr<Record> records_;
  coFlatArray<Slot> large_table_;
  Slot small_table_[16] = {};
  Slot* slots_ = small_table_;
  int shift_ = 28;   // 32 - log2 of the slots
  int entered_ = 0;  // slots in use

  int class_best_[27];  // under an overflowing tolerance: the winner of each class of points, -1 for none

  mutable TreeOrder order_;   // brought up to date only when a search depends on the tree's shape
  mutable int ordered_ = 0;   // records in it
  double greatest_x_;         // of the records
  double hidden_from_ = 0.0;  // once a point with a NaN x has come, points from this x on are not kept
  bool hides_ = false;        // whether one has come
};
