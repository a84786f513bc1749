#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/bumpy_torus.h"
#include "support/timing.h"

constexpr double not_measured = std::numeric_limits<double>::quiet_NaN();

/// The power of the size with which times grow, fitted to all of them by least squares. Not a number for fewer than two sizes.
inline double fitted_growth(const std::vector<std::pair<double, double>>& sizes_and_times) {
  double x = 0.0, y = 0.0, xx = 0.0, xy = 0.0;
  const auto n = static_cast<double>(sizes_and_times.size());
  for (const auto& [size, time] : sizes_and_times) {
    x += std::log(size) / n;
    y += std::log(time) / n;
  }
  for (const auto& [size, time] : sizes_and_times) {
    xx += (std::log(size) - x) * (std::log(size) - x);
    xy += (std::log(size) - x) * (std::log(time) - y);
  }
  return sizes_and_times.size() < 2 ? not_measured : xy / xx;
}

/// What the rounds of a run have measured.
class Results {
 public:
  void add(const std::string& measure, std::size_t facets, FacetOrder order, const Cost& cost) {
    costs_[{measure, order}][facets].push_back(cost);
  }

  /// The least time: what the work takes when nothing else disturbs it. Not a number where nothing was measured.
  double seconds(const std::string& measure, std::size_t facets, FacetOrder order) const {
    double least = not_measured;
    for (const Cost& cost : costs_of(measure, facets, order)) least = std::fmin(least, cost.seconds);
    return least;
  }

  double median(const std::string& measure, std::size_t facets, FacetOrder order) const {
    std::vector<double> times;
    for (const Cost& cost : costs_of(measure, facets, order)) times.push_back(cost.seconds);
    if (times.empty()) return not_measured;
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
  }

  /// The largest peak of memory above what was in use.
  double bytes(const std::string& measure, std::size_t facets, FacetOrder order) const {
    double most = not_measured;
    for (const Cost& cost : costs_of(measure, facets, order)) most = std::fmax(most, cost.bytes);
    return most;
  }

  /// How often the time of `measure` holds that of `yardstick`, same size and order.
  double ratio(const std::string& measure, const std::string& yardstick, std::size_t facets, FacetOrder order) const {
    return seconds(measure, facets, order) / seconds(yardstick, facets, order);
  }

  /// The growth of the times over all sizes from one size up.
  double growth(const std::string& measure, std::size_t from, FacetOrder order) const {
    std::vector<std::pair<double, double>> points;
    const auto found = costs_.find({measure, order});
    if (found == costs_.end()) return not_measured;
    for (const auto& [facets, unused] : found->second) {
      if (facets >= from) points.emplace_back(static_cast<double>(facets), seconds(measure, facets, order));
    }
    return fitted_growth(points);
  }

 private:
  using BySize = std::map<std::size_t, std::vector<Cost>>;

  std::vector<Cost> costs_of(const std::string& measure, std::size_t facets, FacetOrder order) const {
    const auto found = costs_.find({measure, order});
    if (found == costs_.end()) return {};
    const auto costs = found->second.find(facets);
    return costs == found->second.end() ? std::vector<Cost>() : costs->second;
  }

  std::map<std::pair<std::string, FacetOrder>, BySize> costs_;
};
