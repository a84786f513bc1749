#pragma once

#include <vector>

#include "analysis/cut_search.h"
#include "analysis/grid_cells.h"
#include "analysis/octant_replay.h"

/// Lists the elements of known pairs in the order in which a search of one grid box after the other leaves them.
///
/// Such a search appends both elements of every pair in every box and octant that finds it, and `tr_clean_int_array`
/// then removes the repeats. Of that long list only two things matter. From its front, cleaning keeps or passes one
/// entry a step, so no more entries are read than there are elements. From its end it fetches elements in the order of
/// their last places. Both are worked out here without making the list. Cost: O(p log p + n) for p pairs among n
/// elements, and the dealing out of elements in boxes that the search would divide.
class VisitOrder {
 public:
  VisitOrder(const CutField& field, const GridCells& cells, int limit, double tol)
      : field_(field), cells_(cells), limit_(limit), tol_(tol) {}

  /// `pairs` holds each pair once, in any order. Interrupted, it returns an empty list.
  std::vector<int> elements_of(std::vector<CutPair> pairs);

 private:
  using Report = OctantReplay::Report;

  int index(int element) const { return index_[static_cast<std::size_t>(element)]; }
  CellRange range(const CutPair& pair) const;
  void number_elements();
  void count_in_cells();
  void read_front();
  void find_last_places();
  void visit_cell(int cell, const std::vector<int>& pairs, Report report, const std::function<bool(int)>& found) const;
  std::vector<int> cleaned() const;

  const CutField& field_;
  const GridCells& cells_;
  int limit_;
  double tol_;
  std::vector<CutPair> pairs_;     // ascending, as an undivided box finds them
  std::vector<int> elements_;      // of the pairs, ascending
  std::vector<int> index_;         // into elements_, by element number
  std::vector<CellRange> ranges_;  // of elements_
  std::vector<int> cell_counts_;
  std::vector<int> front_;          // the first entries of the list, as many as there are elements_, or all
  std::vector<int> by_last_place_;  // elements in the order of their last places in the list, the very last first
};
