#include "analysis/grid_cells.h"

#include <algorithm>
#include <cmath>

#include "analysis/element_box.h"
#include "progress/progress.h"

CellRange CellRange::common(const CellRange& other) const {
  CellRange both;
  for (int k = 0; k < 3; ++k) {
    both.first[k] = std::max(first[k], other.first[k]);
    both.last[k] = std::min(last[k], other.last[k]);
  }
  return both;
}

GridCells::GridCells(const trBoxGrid& grid, double tol)
    : grid_(grid), tol_(tol), div_{grid.x_div(), grid.y_div(), grid.z_div()} {
  for (int k = 0; k < 3; ++k) {
    for (int i = 1; i <= div_[k]; ++i) {
      const giBox3 cell = grid.sub_box(k == 0 ? i : 1, k == 1 ? i : 1, k == 2 ? i : 1);
      low_[k].push_back(cell.min()[k]);
      high_[k].push_back(cell.max()[k]);
    }
    scale_[k] = low_[k].empty() ? 0.0 : div_[k] / (high_[k].back() - low_[k].front());
  }
}

giBox3 GridCells::box(int cell) const {
  const int yz = div_[1] * div_[2];
  return grid_.sub_box(cell / yz + 1, cell % yz / div_[2] + 1, cell % div_[2] + 1);
}

// A guess by proportion, set right by the exact conditions, which hold for a last and for a first part of the cells.
CellRange GridCells::range(const giBox3& box) const {
  CellRange range;
  for (int k = 0; k < 3; ++k) {
    const double low = box.min()[k] - tol_;
    const double high = box.max()[k] + tol_;
    const auto ends_before = [&](int i) { return !(low <= high_[k][static_cast<std::size_t>(i)] + tol_); };
    const auto starts_behind = [&](int i) { return !(low_[k][static_cast<std::size_t>(i)] - tol_ <= high); };
    const auto guess = [&](double x) {
      const double at = (x - low_[k].front()) * scale_[k];
      return at > 0.0 ? static_cast<int>(std::min<double>(at, div_[k] - 1)) : 0;
    };
    int& first = range.first[k] = guess(low);
    int& last = range.last[k] = guess(high);
    while (first < div_[k] && ends_before(first)) ++first;
    while (first > 0 && !ends_before(first - 1)) --first;
    while (last >= 0 && starts_behind(last)) --last;
    while (last + 1 < div_[k] && !starts_behind(last + 1)) ++last;
  }
  return range;
}

// Boxes within one cell are counted there. Of the others, differences along all three axes at the corners of each range are summed up
// in the end (F. Crow, "Summed-area tables for texture mapping", 1984).
std::vector<int> GridCells::box_counts(int n, const std::function<giBox3(int)>& box_of) const {
  const int size[3] = {div_[0] + 1, div_[1] + 1, div_[2] + 1};
  const int step[3] = {size[1] * size[2], size[2], 1};
  std::vector<int> sums(static_cast<std::size_t>(size[0]) * static_cast<std::size_t>(step[0]));
  std::vector<int> counts(static_cast<std::size_t>(count()));
  for (int k = 0; k < n; ++k) {
    if (tr_interrupt()) return {};
    const giBox3 box = box_of(k);
    if (box.is_empty()) continue;
    const CellRange cells = range(box);
    if (cells.is_single()) {
      ++counts[static_cast<std::size_t>(number(cells.first))];
    } else if (!cells.is_empty()) {
      add(cells, sums, size);
    }
  }
  for (int k = 0; k < 3; ++k) {
    for (int i = 0; i < static_cast<int>(sums.size()); ++i) {
      if (i / step[k] % size[k] > 0) sums[static_cast<std::size_t>(i)] += sums[static_cast<std::size_t>(i - step[k])];
    }
  }
  std::size_t cell = 0;
  for (int i = 0; i < static_cast<int>(sums.size()); ++i) {
    const bool inside = i / step[0] < div_[0] && i / step[1] % size[1] < div_[1] && i % size[2] < div_[2];
    if (inside) counts[cell++] += sums[static_cast<std::size_t>(i)];
  }
  return counts;
}

std::vector<int> GridCells::element_counts(const trTriBlock& block) const {
  return box_counts(block.element_count() - 1, [&](int k) {
    block.prefetch_corners(1 + k + trTriBlock::corners_ahead);
    return element_box(block, 1 + k);
  });
}

void GridCells::add(const CellRange& range, std::vector<int>& sums, const int size[3]) const {
  for (int corner = 0; corner < 8; ++corner) {
    int at[3];
    int sign = 1;
    for (int k = 0; k < 3; ++k) {
      const bool behind = (corner >> k & 1) != 0;
      at[k] = behind ? range.last[k] + 1 : range.first[k];
      if (behind) sign = -sign;
    }
    sums[static_cast<std::size_t>((at[0] * size[1] + at[1]) * size[2] + at[2])] += sign;
  }
}
