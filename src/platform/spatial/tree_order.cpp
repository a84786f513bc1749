#include "platform/spatial/tree_order.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <iterator>

namespace {

// Keys looked through one by one: at half of it short runs are merged twice as often, at double the questions get slower.
constexpr std::size_t fresh_limit = 64;

}  // namespace

void TreeOrder::Run::build_minima() {
  minima.resize(keys.size());
  for (std::size_t i = keys.size(); i-- > 1;) minima[i] = std::min(node(2 * i), node(2 * i + 1));
}

int TreeOrder::Run::lowest(std::size_t begin, std::size_t end) const {
  int found = INT_MAX;
  for (begin += keys.size(), end += keys.size(); begin < end; begin /= 2, end /= 2) {
    if (begin % 2 != 0) found = std::min(found, node(begin++));
    if (end % 2 != 0) found = std::min(found, node(--end));
  }
  return found;
}

// Smallest ordinal of the keys that are not `before` the range but still `within` it; both hold for a leading part of all keys.
template <class Before, class Within>
int TreeOrder::lowest(Before before, Within within) const {
  int found = INT_MAX;
  for (const Key& key : fresh_) {
    if (!before(key) && within(key)) found = std::min(found, key.ordinal);
  }
  for (const Run& run : runs_) {
    const auto begin = std::partition_point(run.keys.begin(), run.keys.end(), before);
    const auto end = std::partition_point(begin, run.keys.end(), within);
    found = std::min(found, run.lowest(static_cast<std::size_t>(begin - run.keys.begin()),
                                       static_cast<std::size_t>(end - run.keys.begin())));
  }
  return found;
}

void TreeOrder::add(Key key) {
  fresh_.push_back(key);
  if (fresh_.size() >= fresh_limit) flush();
}

void TreeOrder::flush() {
  Run run;
  run.keys = fresh_;
  std::sort(run.keys.begin(), run.keys.end());
  run.build_minima();
  runs_.push_back(std::move(run));
  fresh_.clear();
  while (runs_.size() > 1 && runs_[runs_.size() - 2].keys.size() <= 2 * runs_.back().keys.size()) merge_last_two();
}

void TreeOrder::merge_last_two() {
  const Run& a = runs_[runs_.size() - 2];
  const Run& b = runs_.back();
  Run merged;
  merged.keys.reserve(a.keys.size() + b.keys.size());
  std::merge(a.keys.begin(), a.keys.end(), b.keys.begin(), b.keys.end(), std::back_inserter(merged.keys));
  merged.build_minima();
  runs_.pop_back();
  runs_.back() = std::move(merged);
}

// Of u < v in key order, v stands before u exactly when v is an ancestor of u; in all other cases u is an ancestor of v or lies in
// the left subtree of their lowest common ancestor.
bool TreeOrder::precedes(Key a, Key b) const {
  const bool ascending = a < b;
  const Key& u = ascending ? a : b;
  const Key& v = ascending ? b : a;
  const int top = lowest([&](const Key& key) { return key < u; }, [&](const Key& key) { return !(v < key); });
  return (top == v.ordinal) != ascending;
}

// The entries at which the path to m turns are older than m: it turns left at greater keys, right at smaller ones. As the
// conditions are monotone in x, the path is cut exactly if some older key beyond m fails them, ancestor or not: between it and m,
// or in its place, stands an ancestor that fails them too.
bool TreeOrder::reachable(Key m, double x, double tol) const {
  const int cut_left = lowest([&](const Key& key) { return !(m < key); }, [&](const Key& key) { return key.x + tol < x; });
  if (cut_left < m.ordinal) return false;
  const int cut_right = lowest([&](const Key& key) { return !(x < key.x - tol); }, [&](const Key& key) { return key < m; });
  return cut_right > m.ordinal;
}
