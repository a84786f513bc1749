#pragma once

#include <functional>
#include <vector>

#include "analysis/box_grid.h"
#include "mesh/tri_block.h"

/// The cells of a grid that something crosses, along each axis from `first` to `last`, counted from 0.
struct CellRange {
  int first[3];
  int last[3];

  bool is_empty() const {
    for (int k = 0; k < 3; ++k) {
      if (first[k] > last[k]) return true;
    }
    return false;
  }
  bool is_single() const { return first[0] == last[0] && first[1] == last[1] && first[2] == last[2]; }
  CellRange common(const CellRange& other) const;
};

/// The small boxes of a grid as cells in the order of a search, the last axis innermost; tells which of them a box
/// crosses within the tolerance, in the very arithmetic of `giBox3::crosses`.
class GridCells {
 public:
  GridCells(const trBoxGrid& grid, double tol);

  int count() const { return div_[0] * div_[1] * div_[2]; }
  int number(const int place[3]) const { return (place[0] * div_[1] + place[1]) * div_[2] + place[2]; }
  giBox3 box(int cell) const;
  /// All cells that a box crosses. Cost: O(1) where the cells are about alike in size.
  CellRange range(const giBox3& box) const;
  /// How many of n boxes cross each cell, `box(k)` being that of k from 0 up; empty ones cross none. Empty when interrupted. Polls for each.
  /// Cost: O(n + cells).
  std::vector<int> box_counts(int n, const std::function<giBox3(int)>& box) const;
  /// The same of the boxes of all elements.
  std::vector<int> element_counts(const trTriBlock& block) const;

 private:
  void add(const CellRange& range, std::vector<int>& sums, const int size[3]) const;

  trBoxGrid grid_;
  double tol_;
  int div_[3];
  std::vector<double> low_[3];  // of the cells along each axis
  std::vector<double> high_[3];
  double scale_[3];  // cells a unit of length
};
