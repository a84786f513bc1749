#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/model.h"
#include "support/timing.h"

/// One thing that is timed: an operation of the library, a floor beside it, or a peer that does the same.
struct Measure {
  std::string name;
  std::string yardstick;                     ///< the measure that it is compared with; empty for floors and peers
  std::function<Cost(const Model&)> run;     ///< prepares, runs once, checks the result; the cost of the run alone
  std::string peer_of = {};                  ///< the operation of ours that this program or library of others is beside
  bool is_scattered = false;                 ///< whether the input comes in no order, whatever the order of the facets

  bool is_peer() const { return !peer_of.empty(); }
  bool is_floor() const { return yardstick.empty() && !is_peer(); }
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
void add_peer_measures(std::vector<Measure>& list);
void add_program_measures(std::vector<Measure>& list);

/// Whether a name holds one of several texts with commas between; every name does where there is none.
bool is_asked_for(const std::string& name, const std::string& texts);

/// All of them, in the order in which a round runs them.
std::vector<Measure> all_measures();

/// Sizes of the inputs: 10^4 facets fit in the second-level cache, 10^5 about in the last, 10^6 and 4 * 10^6 in none.
constexpr std::size_t model_sizes[] = {10'000, 100'000, 1'000'000, 4'000'000};
