#include "sick_cure.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <unordered_map>

#include "failure.h"
#include "hole_repair.h"
#include "interruption.h"
#include "shells.h"
#include "undo_mark.h"

namespace {

// Beyond so many triangles only larger attempts are made.
constexpr std::size_t few_triangles = 64;

// A flap has few triangles.
constexpr std::size_t largest_rest = 6;

// Closing the holes of a cluster takes a pass over the mesh; so many passes over so many triangles are bearable.
constexpr double most_work = 5e7;

bool is_better(const EdgeCensus& now, const EdgeCensus& before) {
  return now.sick < before.sick && now.open <= before.open && now.opposed <= before.opposed;
}

bool shares_edge(const std::vector<int>& corners, const trElement& t) {
  int common = 0;
  for (int k = 0; k < 3; ++k) common += std::find(corners.begin(), corners.end(), t[k]) != corners.end();
  return common >= 2;
}

void add_corners(std::vector<int>& nodes, const trElement& t) {
  for (int k = 0; k < 3; ++k) nodes.push_back(t[k]);
}

void make_unique(std::vector<int>& numbers) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
}

}  // namespace

SickCure::SickCure(Session& session, const RepairSettings& settings)
    : session_(session), control_(session.control), mesh_(session.mesh), settings_(settings) {}

std::vector<SickCure::Cluster> SickCure::find_clusters() {
  trEdgeConnectioncoPageArr edges;
  mesh_.find_sick(edges, 0);
  std::map<int, int> parents;  // of nodes
  const auto root = [&parents](int node) {
    int at = parents.emplace(node, node).first->second;
    while (parents[at] != at) at = parents[at] = parents[parents[at]];
    return at;
  };
  for (int k = 0; k < edges.count(); ++k) {
    const int a = root(edges[k].start_node()), b = root(edges[k].end_node());
    parents[std::max(a, b)] = std::min(a, b);
  }
  std::map<int, Cluster> clusters;
  for (int k = 0; k < edges.count(); ++k) {
    intcoPageArr elements;
    edges[k].triangles(elements);
    Cluster& cluster = clusters[root(edges[k].start_node())];
    for (int i = 0; i < elements.count(); ++i) cluster.elements.push_back(elements[i]);
  }
  std::vector<Cluster> list;
  for (auto& [node, cluster] : clusters) {
    make_unique(cluster.elements);
    list.push_back(std::move(cluster));
  }
  return list;
}

// The edges at some nodes, each once.
EdgeCensus SickCure::census_round(const std::vector<int>& nodes) {
  struct Uses {
    int upward = 0;
    int downward = 0;
  };
  std::map<std::pair<int, int>, Uses> edges;
  std::vector<int> elements;
  for (const int node : nodes) {
    if (node < 1 || node >= mesh_.node_count() || mesh_.node(node).invalid) continue;
    for (trIntListIT it = mesh_.node_elements(node); ++it;) {
      if (mesh_.element(it()).valid()) elements.push_back(it());
    }
  }
  make_unique(elements);
  for (const int e : elements) {
    const trElement& t = mesh_.element(e);
    for (int k = 0; k < 3; ++k) {
      const int a = t[k], b = t[(k + 1) % 3];
      if (!std::binary_search(nodes.begin(), nodes.end(), a) && !std::binary_search(nodes.begin(), nodes.end(), b)) continue;
      Uses& uses = edges[{std::min(a, b), std::max(a, b)}];
      ++(a < b ? uses.upward : uses.downward);
    }
  }
  EdgeCensus census;
  for (const auto& [edge, uses] : edges) {
    const int count = uses.upward + uses.downward;
    census.open += count == 1;
    census.sick += count > 2;
    census.opposed += count == 2 && uses.upward != uses.downward;
  }
  return census;
}

bool SickCure::delete_one(Cluster& cluster) {
  std::vector<int> order = cluster.elements;
  std::stable_sort(order.begin(), order.end(), [this](int a, int b) { return area_of(mesh_, a) < area_of(mesh_, b); });
  for (const int e : order) {
    std::vector<int> nodes;
    add_corners(nodes, mesh_.element(e));
    make_unique(nodes);
    const double area = area_of(mesh_, e);
    const EdgeCensus before = census_round(nodes);
    control_.start_undo("cure");
    mesh_.delete_element(e);
    const bool helps = is_better(census_round(nodes), before);
    const std::vector<int> rest = helps ? rest_of_flap(nodes) : std::vector<int>();
    double area_of_rest = 0.0;
    for (const int other : rest) {
      area_of_rest += area_of(mesh_, other);
      mesh_.delete_element(other);
    }
    if (helps) mesh_.force_changed_status(1);
    control_.finish_undo(helps);
    if (!helps) continue;
    result_.triangles_deleted += 1 + static_cast<int>(rest.size());
    result_.removed_area += area + area_of_rest;
    const auto is_gone = [this](int other) { return !mesh_.element(other).valid(); };
    cluster.elements.erase(std::remove_if(cluster.elements.begin(), cluster.elements.end(), is_gone), cluster.elements.end());
    return true;
  }
  return false;
}

// The few triangles that hung by an edge on one that was deleted, with these corners, and now are a piece by themselves.
std::vector<int> SickCure::rest_of_flap(const std::vector<int>& corners) {
  std::vector<int> rest;
  for (const int corner : corners) {
    if (mesh_.node(corner).invalid) continue;
    for (trIntListIT it = mesh_.node_elements(corner); ++it;) {
      const trElement& other = mesh_.element(it());
      if (!other.valid() || !shares_edge(corners, other) || std::find(rest.begin(), rest.end(), it()) != rest.end()) continue;
      const std::vector<int> piece = piece_of(it());
      if (piece.size() <= largest_rest && census_of(piece).open > 0) rest.insert(rest.end(), piece.begin(), piece.end());
    }
  }
  make_unique(rest);
  return rest;
}

// The triangles that hang together with one by edges, as soon as they are more than a rest of a flap only some.
std::vector<int> SickCure::piece_of(int element) {
  std::vector<int> piece{element};
  for (std::size_t k = 0; k < piece.size() && piece.size() <= largest_rest; ++k) {
    const trElement t = mesh_.element(piece[k]);
    for (int c = 0; c < 3; ++c) {
      for (trIntListIT it = mesh_.node_elements(t[c]); ++it;) {
        const trElement& other = mesh_.element(it());
        if (!other.valid() || std::find(piece.begin(), piece.end(), it()) != piece.end()) continue;
        if (shares_edge({t[0], t[1], t[2]}, other)) piece.push_back(it());
      }
    }
  }
  return piece;
}

EdgeCensus SickCure::census_of(const std::vector<int>& elements) {
  std::vector<int> nodes;
  for (const int e : elements) add_corners(nodes, mesh_.element(e));
  make_unique(nodes);
  return census_round(nodes);
}

bool SickCure::delete_and_close(const std::vector<int>& elements) {
  UndoMark mark(control_);
  std::vector<int> nodes;
  double area = 0.0;
  for (const int e : elements) {
    add_corners(nodes, mesh_.element(e));
    area += area_of(mesh_, e);
  }
  make_unique(nodes);
  const EdgeCensus before = census_round(nodes);
  const int first_new = mesh_.element_count();
  control_.start_undo("cure");
  for (const int e : elements) mesh_.delete_element(e);
  mesh_.force_changed_status(1);
  control_.finish_undo(1);
  HoleRepair holes(session_, settings_);
  holes.set_filter([&nodes](const FoundBoundary& hole) {
    return std::any_of(hole.nodes.begin(), hole.nodes.end(), [&nodes](int n) { return std::binary_search(nodes.begin(), nodes.end(), n); });
  });
  const std::vector<HoleFate> fates = holes.run(survey_shells(mesh_));
  std::vector<int> touched = nodes;
  for (int e = first_new; e < mesh_.element_count(); ++e) {
    if (mesh_.element(e).valid()) add_corners(touched, mesh_.element(e));
  }
  make_unique(touched);
  // Edges at nodes that only the new triangles touch are compared too: there were those of the rim before.
  const EdgeCensus now = census_round(touched);
  const int operations = mark.take_back();
  const EdgeCensus then = census_round(touched);
  if (!is_better(now, then) || now.sick > before.sick) return false;
  control_.action_redo(operations);
  result_.triangles_deleted += static_cast<int>(elements.size());
  result_.holes_closed += static_cast<int>(std::count_if(fates.begin(), fates.end(), [](const HoleFate& f) { return f.kind == HoleFate::Kind::closed; }));
  result_.removed_area += area;
  result_.new_area += holes.new_area();
  return true;
}

bool SickCure::is_cured(const Cluster& cluster) { return census_of(cluster.elements).sick == 0; }

CureResult SickCure::run() {
  std::vector<Cluster> clusters = find_clusters();
  const bool can_close = static_cast<double>(clusters.size()) * mesh_.element_count() < most_work;
  intcoPageArr smaller;
  mesh_.find_sick(smaller, 1);
  std::vector<int> all_but_two;
  for (int k = 0; k < smaller.count(); ++k) all_but_two.push_back(smaller[k]);
  for (Cluster& cluster : clusters) {
    Interruption::check();
    const auto is_gone = [this](int e) { return !mesh_.element(e).valid(); };
    cluster.elements.erase(std::remove_if(cluster.elements.begin(), cluster.elements.end(), is_gone), cluster.elements.end());
    while (cluster.elements.size() <= few_triangles && !is_cured(cluster) && delete_one(cluster)) {
    }
    if (is_cured(cluster)) continue;
    std::vector<int> small_ones;
    std::set_intersection(cluster.elements.begin(), cluster.elements.end(), all_but_two.begin(), all_but_two.end(), std::back_inserter(small_ones));
    const bool is_helped = can_close && ((!small_ones.empty() && delete_and_close(small_ones)) || delete_and_close(cluster.elements));
    result_.refused += !is_helped;
  }
  return result_;
}
