#include "support/validator.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace {

using testing::AssertionFailure;
using testing::AssertionResult;
using testing::AssertionSuccess;

bool is_live(const trElement& t) { return t[0] != 0; }

AssertionResult reserved_slots_are_invalid(const trTriBlock& block) {
  if (block.node_count() < 1 || block.element_count() < 1) return AssertionFailure() << "slot 0 is missing";
  if (block.node(0).invalid != 1) return AssertionFailure() << "node 0 is valid";
  const trElement& t = block.element(0);
  if (t[0] != 0 || t[1] != 0 || t[2] != 0) return AssertionFailure() << "element 0 has nodes";
  return AssertionSuccess();
}

AssertionResult nodes_are_sound(const trTriBlock& block, Excuses excuses) {
  if (block.points().count() < block.node_count()) return AssertionFailure() << "fewer coordinates than nodes";
  for (int i = 0; i < block.node_count(); ++i) {
    const trNode& n = block.node(i);
    if (n.coords != &block.point(i)) return AssertionFailure() << "node " << i << " does not point at its coordinates";
    if (n.invalid != 0 && n.invalid != 1) return AssertionFailure() << "node " << i << " has the flag " << n.invalid;
    if (!n.invalid) continue;
    if (i > 0 && *n.coords != giPoint3()) return AssertionFailure() << "deleted node " << i << " is not at the origin";
    const bool listed = !n.a_edges.empty() || !n.d_edges.empty() || !n.elements.empty();
    if (listed && !excuses.dangling_corners) return AssertionFailure() << "deleted node " << i << " has list entries";
  }
  return AssertionSuccess();
}

AssertionResult corners_are_nodes(const trTriBlock& block, Excuses excuses) {
  for (int e = 1; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    for (int k = 0; k < 3; ++k) {
      if (!is_live(t)) {
        if (t[k] != 0) return AssertionFailure() << "deleted element " << e << " keeps a node";
        continue;
      }
      if (t[k] < 1 || t[k] >= block.node_count())
        return AssertionFailure() << "element " << e << " names no node: " << t[k];
      if (block.node(t[k]).invalid && !excuses.dangling_corners) {
        return AssertionFailure() << "element " << e << " names the deleted node " << t[k];
      }
    }
  }
  return AssertionSuccess();
}

AssertionResult element_lists_cover_every_use(const trTriBlock& block) {
  std::set<std::pair<int, int>> listed;
  for (int i = 1; i < block.node_count(); ++i) {
    for (int e : entries(block.node(i).elements)) {
      if (e < 1 || e >= block.element_count()) return AssertionFailure() << "node " << i << " lists no element: " << e;
      listed.insert({i, e});
    }
  }
  for (int e = 1; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    for (int k = 0; k < 3 && is_live(t); ++k) {
      if (!block.node(t[k]).invalid && listed.count({t[k], e}) == 0) {
        return AssertionFailure() << "node " << t[k] << " does not list element " << e;
      }
    }
  }
  return AssertionSuccess();
}

AssertionResult free_edges_balance(const trTriBlock& block) {
  std::vector<int> surplus(static_cast<std::size_t>(block.node_count()));
  for (const auto& [from, to] : listed_free_edges(block)) {
    if (to < 1 || to >= block.node_count())
      return AssertionFailure() << "node " << from << " has a free edge to nowhere: " << to;
    ++surplus[static_cast<std::size_t>(from)];
    --surplus[static_cast<std::size_t>(to)];
  }
  for (std::size_t i = 0; i < surplus.size(); ++i) {
    if (surplus[i] != 0)
      return AssertionFailure() << surplus[i] << " more free edges leave node " << i << " than enter it";
  }
  return AssertionSuccess();
}

AssertionResult counts_are_right(const trTriBlock& block) {
  int nodes = 0;
  int elements = 0;
  for (int i = 1; i < block.node_count(); ++i) nodes += block.node(i).invalid == 0;
  for (int e = 1; e < block.element_count(); ++e) elements += is_live(block.element(e));
  if (block.valid_nodes() != nodes)
    return AssertionFailure() << block.valid_nodes() << " valid nodes counted, there are " << nodes;
  if (block.valid_elements() != elements)
    return AssertionFailure() << block.valid_elements() << " elements counted, not " << elements;
  if (block.node_data_size() < 0 || block.node_data_size() > trNodeDataTuple::max_values) {
    return AssertionFailure() << "attributes of " << block.node_data_size() << " values";
  }
  return AssertionSuccess();
}

// Deleting leaves the box as it was, so it may be too large, but never too small.
AssertionResult box_holds_every_node(const trTriBlock& block) {
  const giBox3& box = block.box();
  for (int i = 1; i < block.node_count(); ++i) {
    if (block.node(i).invalid) continue;
    const giPoint3 p = block.check_use_workplane(block.point(i));
    for (int k = 0; k < 3; ++k) {
      if (p[k] < box.min()[k] || p[k] > box.max()[k])
        return AssertionFailure() << "node " << i << " lies outside the box";
    }
  }
  return AssertionSuccess();
}

}  // namespace

std::vector<int> entries(const trIntList& list) {
  std::vector<int> result;
  trIntListIT it(list);
  while (++it) result.push_back(it());
  return result;
}

std::vector<std::pair<int, int>> listed_free_edges(const trTriBlock& block) {
  std::vector<std::pair<int, int>> edges;
  for (int i = 1; i < block.node_count(); ++i) {
    for (int to : entries(block.node(i).a_edges)) edges.emplace_back(i, to);
  }
  std::sort(edges.begin(), edges.end());
  return edges;
}

// The directed edge a-b is free as many times as it is run more often than b-a. An edge from a node to itself is its
// own opposite, so that every second one cancels the one before.
std::vector<std::pair<int, int>> expected_free_edges(const trTriBlock& block) {
  std::map<std::pair<int, int>, int> runs;
  for (int e = 1; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    for (int k = 0; k < 3 && is_live(t); ++k) ++runs[{t[k], t[(k + 1) % 3]}];
  }
  std::vector<std::pair<int, int>> edges;
  for (const auto& [edge, count] : runs) {
    const auto opposite = runs.find({edge.second, edge.first});
    int surplus = count - (opposite == runs.end() ? 0 : opposite->second);
    if (edge.first == edge.second) surplus = count % 2;
    edges.insert(edges.end(), static_cast<std::size_t>(std::max(surplus, 0)), edge);
  }
  return edges;
}

AssertionResult is_sound(const trTriBlock& block, Excuses excuses) {
  AssertionResult result = reserved_slots_are_invalid(block);
  if (result) result = nodes_are_sound(block, excuses);
  if (result) result = corners_are_nodes(block, excuses);
  if (result) result = counts_are_right(block);
  if (result) result = box_holds_every_node(block);
  if (result && block.elements_referenced) result = element_lists_cover_every_use(block);
  if (result && block.edges_built && !excuses.phantom_edges) {
    result = free_edges_balance(block);
    if (result && listed_free_edges(block) != expected_free_edges(block)) {
      result = AssertionFailure() << "the listed free edges are not those of the elements";
    }
  }
  return result;
}
