#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "analysis/cut_field.h"
#include "analysis/fan_search.h"

/// Two elements that cut each other, the lower number first.
using CutPair = std::pair<int, int>;

/// Finds the pairs of elements that cut each other and whose boxes cross.
///
/// Pairs are kept as long as there are not many times more of them than elements; from then on only what elements are
/// in pairs is found out, which spares most tests where very many elements lie in one place. Cost: O(n log n + pairs of
/// overlapping boxes).
class CutSearch final : private FanSearch::Visitor {
 public:
  /// Pairs that are kept for each element, and at least.
  static constexpr int kept_pairs_each = 16;
  static constexpr int least_kept_pairs = 1 << 20;

  CutSearch(const CutField& field, double tol);

  /// `advance` is told from time to time what share of the search is done.
  void run(const std::function<void(double)>& advance);

  /// Whether `pairs` are all there are; else they are empty.
  bool keeps_pairs() const { return keeps_pairs_; }
  const std::vector<CutPair>& pairs() const { return pairs_; }
  /// The elements that are in pairs, ascending.
  std::vector<int> elements() const;

 private:
  class Walk;

  bool stops() override;
  bool is_settled(int position) const override {
    return !keeps_pairs_ && marked_[static_cast<std::size_t>(position)] != 0;
  }
  void test(int i, int j) override;
  void record(int i, int j);
  void mark(int position);
  bool block_is_settled(int block) const { return !keeps_pairs_ && open_[static_cast<std::size_t>(block)] == 0; }

  const CutField& field_;
  double tol_;
  bool keeps_pairs_ = true;
  bool stopped_ = false;
  std::vector<CutPair> pairs_;
  std::vector<char> marked_;  // by position: in a pair
  std::vector<char> open_;    // by block: positions that are not
};
