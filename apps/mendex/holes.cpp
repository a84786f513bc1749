#include "holes.h"

#include <algorithm>
#include <unordered_set>

#include "failure.h"
#include "interruption.h"

namespace {

using FreeEdges = std::unordered_set<std::uint64_t>;

std::uint64_t edge_key(int from, int to) {
  return static_cast<std::uint64_t>(static_cast<std::uint32_t>(from)) << 32 | static_cast<std::uint32_t>(to);
}

FreeEdges free_edges_of(const std::vector<FoundBoundary>& boundaries) {
  FreeEdges edges;
  for (const FoundBoundary& boundary : boundaries) {
    for (std::size_t k = 0; k < boundary.nodes.size(); ++k) {
      edges.insert(edge_key(boundary.nodes[k], boundary.nodes[(k + 1) % boundary.nodes.size()]));
    }
  }
  return edges;
}

// Closes the chosen boundaries of one controller.
class HoleCloser {
 public:
  HoleCloser(trControl& control, const HoleChoice& choice, double spacing)
      : control_(control), mesh_(control.triblock()), cycles_(control.cycles()), choice_(choice), spacing_(spacing) {}

  ClosedHoles close(HoleMethod method) {
    choose();
    select();
    if (method == HoleMethod::fan) {
      fill();
    } else {
      for (std::size_t k = 0; k < closed_.outcomes.size(); ++k) cap(static_cast<int>(k), method == HoleMethod::curved);
      cycles_.clear_selection_list();
      mesh_.force_changed_status(1);
    }
    Interruption::check();
    look_at_the_rest();
    return std::move(closed_);
  }

 private:
  void choose() {
    std::vector<FoundBoundary> all = find_boundaries(cycles_);
    for (const int number : choice_.numbers) {
      if (number < 0 || number >= static_cast<int>(all.size())) {
        throw Failure(ExitCode::wrong_usage, "there is no hole " + std::to_string(number) + "; mendex check lists them");
      }
    }
    for (FoundBoundary& boundary : all) {
      if (!is_chosen(boundary)) continue;
      closed_.outcomes.emplace_back();
      closed_.outcomes.back().hole = std::move(boundary);
    }
    closed_.passed_over = static_cast<int>(all.size() - closed_.outcomes.size());
    Interruption::check();
  }

  bool is_chosen(const FoundBoundary& boundary) const {
    if (choice_.most_edges > 0 && boundary.edges() > choice_.most_edges) return false;
    return choice_.numbers.empty() || std::find(choice_.numbers.begin(), choice_.numbers.end(), boundary.number) != choice_.numbers.end();
  }

  // Picks go to the one boundary that holds them.
  void select() {
    if (!choice_.between.empty()) keep_the_one_between();
    intcoSet numbers;
    for (const HoleOutcome& outcome : closed_.outcomes) numbers.add(outcome.hole.number);
    const intcoSet no_nodes;
    double average_length = 0.0;
    control_.select_cycles(numbers, average_length, -1, no_nodes, -1, -1);
    for (const int node : choice_.between) control_.select_cycles(numbers, average_length, node, no_nodes, -1, -1);
  }

  void keep_the_one_between() {
    std::vector<HoleOutcome>& outcomes = closed_.outcomes;
    const auto lacks_a_node = [this](const HoleOutcome& outcome) {
      const std::vector<int>& nodes = outcome.hole.nodes;
      return !std::all_of(choice_.between.begin(), choice_.between.end(),
                          [&](int node) { return std::find(nodes.begin(), nodes.end(), node) != nodes.end(); });
    };
    const std::size_t before = outcomes.size();
    outcomes.erase(std::remove_if(outcomes.begin(), outcomes.end(), lacks_a_node), outcomes.end());
    if (outcomes.size() != 1) {
      throw Failure(ExitCode::wrong_usage, outcomes.empty() ? "no hole has all these nodes; mendex check --json lists the nodes of each"
                                                            : "several holes have all these nodes; choose one by --hole");
    }
    closed_.passed_over += static_cast<int>(before - outcomes.size());
  }

  void fill() {
    if (closed_.outcomes.empty()) return;
    const int nodes = mesh_.valid_nodes(), triangles = mesh_.valid_elements();
    control_.action_fill(0);
    const bool is_one = closed_.outcomes.size() == 1;
    for (HoleOutcome& outcome : closed_.outcomes) {
      const int edges = outcome.hole.edges();
      outcome.triangles = is_one ? mesh_.valid_elements() - triangles : edges == 3 ? 1 : edges == 4 ? 2 : edges;
      outcome.nodes = is_one ? mesh_.valid_nodes() - nodes : edges == 3 || edges == 4 ? 0 : 1;
    }
  }

  // Each in a bracket of its own, so that one that fails leaves nothing behind.
  void cap(int place, bool is_curved) {
    if (tr_interrupt()) return;
    HoleOutcome& outcome = closed_.outcomes[static_cast<std::size_t>(place)];
    outcome.spacing = spacing_ > 0.0 ? spacing_ : outcome.hole.length / outcome.hole.edges();
    const int nodes = mesh_.node_count(), elements = mesh_.element_count();
    at2PlaneError error = at2_success;
    control_.start_undo("cap");
    const bool is_capped = cycles_.cap_hole(place, outcome.hole.number, outcome.spacing, is_curved, error) != 0;
    const int nodes_made = mesh_.node_count() - nodes, elements_made = mesh_.element_count() - elements;
    control_.finish_undo(is_capped);
    if (is_capped) {
      outcome.nodes = nodes_made;
      outcome.triangles = elements_made;
    } else {
      outcome.refused = reason_of(error);
    }
  }

  // A boundary counts as closed when none of its edges is free any more; of one that was closed in part some are.
  void look_at_the_rest() {
    const std::vector<FoundBoundary> rest = find_boundaries(cycles_);
    const FreeEdges free = free_edges_of(rest);
    closed_.boundaries_left = static_cast<int>(rest.size());
    closed_.free_edges_left = static_cast<int>(free.size());
    for (HoleOutcome& outcome : closed_.outcomes) {
      if (outcome.refused.empty() && choice_.between.empty() && has_edge_in(outcome.hole, free)) outcome.refused = "it is still open";
    }
  }

  static bool has_edge_in(const FoundBoundary& hole, const FreeEdges& edges) {
    for (std::size_t k = 0; k < hole.nodes.size(); ++k) {
      if (edges.count(edge_key(hole.nodes[k], hole.nodes[(k + 1) % hole.nodes.size()])) != 0) return true;
    }
    return false;
  }

  trControl& control_;
  trTriBlock& mesh_;
  trCycleArray& cycles_;
  const HoleChoice& choice_;
  double spacing_;
  ClosedHoles closed_;
};

}  // namespace

RimKey key_of_rim(const FoundBoundary& rim) {
  RimKey lowest(rim.nodes.back(), rim.nodes.front());
  for (std::size_t k = 0; k + 1 < rim.nodes.size(); ++k) lowest = std::min(lowest, RimKey(rim.nodes[k], rim.nodes[k + 1]));
  return lowest;
}

const char* name_of(HoleMethod method) {
  switch (method) {
    case HoleMethod::fan: return "fan";
    case HoleMethod::flat: return "flat";
    case HoleMethod::curved: return "curved";
  }
  return "";
}

const char* reason_of(at2PlaneError error) {
  switch (error) {
    case at2_success: return "no plane, or no surface, can be fitted to it";
    case at2_bad_length: return "the spacing is not usable";
    case at2_not_finite: return "it has coordinates that are not finite";
    case at2_repeated_node: return "it passes a node twice";
    case at2_zero_area: return "seen flat it has no area";
    case at2_coincident_nodes: return "seen flat two of its nodes coincide";
    case at2_touching_loops: return "seen flat it touches itself";
    case at2_crossing_loops: return "seen flat it crosses itself";
    case at2_wrong_direction: return "seen flat it runs round the wrong way";
    case at2_too_many_nodes: return "the spacing asks for more than ten million nodes";
    case at2_no_memory: return "there is not enough memory";
    default: return "it cannot be triangulated";
  }
}

int ClosedHoles::closed() const {
  return static_cast<int>(std::count_if(outcomes.begin(), outcomes.end(), [](const HoleOutcome& o) { return o.refused.empty(); }));
}

std::vector<FoundBoundary> find_boundaries(trCycleArray& cycles) {
  std::vector<FoundBoundary> found;
  const int count = cycles.num_boundaries();
  for (int k = 0; k < count; ++k) {
    const trCycle& cycle = cycles.cycles[k];
    FoundBoundary boundary;
    boundary.number = k;
    for (trCycleIT it(&cycle); ++it;) {
      boundary.nodes.push_back(it.s_node());
      boundary.length += (cycle.position(it.e_node()) - cycle.position(it.s_node())).length();
    }
    boundary.at = cycle.box().point_at(0.5, 0.5, 0.5);
    found.push_back(std::move(boundary));
  }
  return found;
}

ClosedHoles close_holes(trControl& control, const HoleChoice& choice, HoleMethod method, double spacing) {
  return HoleCloser(control, choice, spacing).close(method);
}
