#pragma once

#include <string>
#include <vector>

#include "support/model.h"

/// One thing that is timed: an operation of the library, or a floor beside it.
struct Measure {
  std::string name;
  std::string yardstick;                  ///< the measure that it is compared with; empty for a floor
  double (*seconds)(const Model& model);  ///< prepares, runs once, checks the result; the time of the run alone

  bool is_floor() const { return yardstick.empty(); }
};

/// Measures of one module, floors beside the operations that they belong to.
void add_stl_measures(std::vector<Measure>& list);
void add_formats_measures(std::vector<Measure>& list);
void add_merge_measures(std::vector<Measure>& list);
void add_sick_measures(std::vector<Measure>& list);
void add_isect_measures(std::vector<Measure>& list);
void add_topology_measures(std::vector<Measure>& list);
void add_cap_measures(std::vector<Measure>& list);
void add_cycles_measures(std::vector<Measure>& list);
void add_stitch_measures(std::vector<Measure>& list);
void add_fill_measures(std::vector<Measure>& list);
void add_exchange_measures(std::vector<Measure>& list);
void add_undo_measures(std::vector<Measure>& list);
void add_shapes_measures(std::vector<Measure>& list);
void add_slice_measures(std::vector<Measure>& list);
void add_surface_measures(std::vector<Measure>& list);

/// All of them, in the order in which a round runs them.
std::vector<Measure> all_measures();

/// Sizes of the inputs: 10^4 facets fit in the second-level cache, 10^5 about in the last, 10^6 and 4 * 10^6 in none.
constexpr std::size_t model_sizes[] = {10'000, 100'000, 1'000'000, 4'000'000};
