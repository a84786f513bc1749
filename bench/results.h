#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "support/bumpy_torus.h"

/// What the rounds of a run have measured.
class Results {
 public:
  void add(const std::string& measure, std::size_t facets, FacetOrder order, double seconds) {
    times_[{measure, facets, order}].push_back(seconds);
  }

  /// The least time: what the work takes when nothing else disturbs it. Not a number where nothing was measured.
  double seconds(const std::string& measure, std::size_t facets, FacetOrder order) const {
    const auto found = times_.find({measure, facets, order});
    if (found == times_.end()) return std::numeric_limits<double>::quiet_NaN();
    return *std::min_element(found->second.begin(), found->second.end());
  }

  double median(const std::string& measure, std::size_t facets, FacetOrder order) const {
    const auto found = times_.find({measure, facets, order});
    if (found == times_.end()) return std::numeric_limits<double>::quiet_NaN();
    std::vector<double> times = found->second;
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
  }

  /// How often the time of `measure` holds that of `yardstick`, same size and order.
  double ratio(const std::string& measure, const std::string& yardstick, std::size_t facets, FacetOrder order) const {
    return seconds(measure, facets, order) / seconds(yardstick, facets, order);
  }

  /// The power of the size with which the time grows between two sizes.
  double growth(const std::string& measure, std::size_t from, std::size_t to, FacetOrder order) const {
    return std::log(seconds(measure, to, order) / seconds(measure, from, order)) /
           std::log(static_cast<double>(to) / static_cast<double>(from));
  }

 private:
  std::map<std::tuple<std::string, std::size_t, FacetOrder>, std::vector<double>> times_;
};
