#include "oracles/stitching_literal.h"

#include <cfloat>
#include <map>

#include "boundaries/cycle_it.h"
#include "mesh/aspect_utils.h"
#include "mesh/loop_it.h"
#include "oracles/point_tree_literal.h"

namespace {

bool is_live(const trCycleArray& set, int i) { return set.cycles[i].start != -1; }

bool may_meet(const trCycleArray& set, int i, int j, double tol) {
  return i == j || set.cycles[i].box().crosses(set.cycles[j].box(), tol);
}

bool is_pending(const trTriBlock& block, int s, int e) {
  for (trIntListIT it(block.node(s).a_edges); ++it;) {
    if (it() == e) return true;
  }
  return false;
}

bool makes_low_triangle(const trTriBlock& block, int n, int s, int e, double tol) {
  if (n == s || n == e || s == e) return false;
  const double height = trAspectUtils::triangle_height(block.point(s), block.point(e), block.point(n)).value();
  return height != DBL_MAX && height < tol;
}

struct Triple {
  int n, s, e;
};

std::vector<Triple> find_triples(trCycleArray& set, double tol) {
  std::vector<Triple> triples;
  for (int i = 0; i < set.cycles.count(); ++i) {
    for (int j = 0; is_live(set, i) && j < set.cycles.count(); ++j) {
      if (!is_live(set, j) || !may_meet(set, i, j, tol)) continue;
      for (trCycleIT node(&set.cycles[i]); ++node;) {
        for (trCycleIT edge(&set.cycles[j]); !node.node_cancelled() && ++edge;) {
          if (edge.edge_cancelled()) continue;
          if (!makes_low_triangle(*set.block, node.s_node(), edge.s_node(), edge.e_node(), tol)) continue;
          triples.push_back({node.s_node(), edge.s_node(), edge.e_node()});
          edge.cancel_edge();
          node.cancel_node();
        }
      }
    }
  }
  return triples;
}

struct OnEdge {
  std::vector<int> nodes;
  std::vector<double> params;

  void drop_repeats() {
    for (std::size_t a = 0; a < nodes.size(); ++a) {
      for (std::size_t b = a + 1; b < nodes.size(); ++b) {
        if (nodes[a] != nodes[b]) continue;
        nodes[b] = nodes.back();
        params[b] = params.back();
        nodes.pop_back();
        params.pop_back();
      }
    }
  }

  // The next larger parameter than `last`; -1 when there is none.
  int next(double last) const {
    int best = -1;
    for (std::size_t k = 0; k < params.size(); ++k) {
      if (params[k] > last && (best < 0 || params[k] < params[static_cast<std::size_t>(best)])) best = static_cast<int>(k);
    }
    return best;
  }

  // Calls fan(from, to) for the pieces of the edge.
  template <class Fan>
  void split(int s, int e, Fan fan) const {
    int from = s;
    double last = 0.0;
    for (int k = next(last); k >= 0; k = next(last)) {
      fan(from, nodes[static_cast<std::size_t>(k)]);
      from = nodes[static_cast<std::size_t>(k)];
      last = params[static_cast<std::size_t>(k)];
    }
    fan(from, e);
  }
};

OnEdge find_on_edge(trCycleArray& set, int i, trCycleIT& edge, double tol) {
  OnEdge found;
  for (int j = 0; j < set.cycles.count(); ++j) {
    if (!is_live(set, j) || !may_meet(set, i, j, tol)) continue;
    for (trCycleIT node(&set.cycles[j]); ++node;) {
      double par = 0.0;
      if (node.node_cancelled()) continue;
      if (!set.block->check_height_get_par(node.s_node(), edge.s_node(), edge.e_node(), tol, par)) continue;
      found.nodes.push_back(node.s_node());
      found.params.push_back(par);
      edge.cancel_edge();
      node.cancel_node();
    }
  }
  found.drop_repeats();
  return found;
}

}  // namespace

int stitch_literal(trCycleArray& set, double tol) {
  set.num_boundaries();
  const std::vector<Triple> triples = find_triples(set, tol);
  for (const Triple& t : triples) {
    if (is_pending(*set.block, t.s, t.e)) set.block->generate(t.s, t.n, t.e);
  }
  if (triples.empty()) return 0;
  set.block->force_changed_status(1);
  set.edge_count = -1;
  return 1;
}

int superstitch_literal(trCycleArray& set, double tol) {
  set.num_boundaries();
  trTriBlock& block = *set.block;
  block.reference_elements();
  const int limit_element = block.element_count();
  int deleted = 0, created = 0;
  for (int i = 0; i < set.cycles.count(); ++i) {
    if (!is_live(set, i)) continue;
    for (trCycleIT edge(&set.cycles[i]); ++edge;) {
      const int s = edge.s_node(), e = edge.e_node();
      if (edge.edge_cancelled() || !is_pending(block, s, e)) continue;
      const OnEdge found = find_on_edge(set, i, edge, tol);
      if (found.nodes.empty()) continue;
      for (trLoopIT around(&block, s); ++around;) {
        const int element = around(), x = around.next_node(), p = around.prev_node();
        if (element >= limit_element || x < 0 || p < 0) continue;
        if (x == e || p == e) {
          block.delete_element(element);
          ++deleted;
        }
        if (x == e) found.split(s, e, [&](int from, int to) { created += block.generate(p, from, to) > 0; });
        if (p == e) found.split(s, e, [&](int from, int to) { created += block.generate(from, x, to) > 0; });
      }
    }
  }
  block.force_changed_status(1);
  if (deleted == 0 || created == 0) return 0;
  set.edge_count = -1;
  return 1;
}

int unduplicate_literal(trCycleArray& set, double tol) {
  set.num_boundaries();
  trTriBlock& block = *set.block;
  PointTreeLiteral tree(tol, true);
  intcoPageArr map;
  int merged = 0;
  for (int i = 0; i < set.cycles.count(); ++i) {
    for (trCycleIT it(&set.cycles[i]); ++it;) {
      const int n = it.s_node();
      if (block.node(n).invalid) continue;
      const int k = tree.add(block.point(n), n);
      if (k == -1 || k == n) continue;
      ++merged;
      if (block.node_data_size() != 0) {
        trNodeDataTuple& kept = block.node_data(k);
        const trNodeDataTuple& other = block.node_data(n);
        const int weight = kept.weight + other.weight;
        for (int v = 0; weight != 0 && v < block.node_data_size(); ++v)
          kept.values[v] = (kept.weight * kept.values[v] + other.weight * other.values[v]) / weight;
        kept.weight = weight;
      }
      block.delete_node(n);
      map[n] = k;
    }
  }
  if (merged == 0) return 0;
  block.reference_new_nodes(map);
  block.alter(0);
  block.delete_collapsed_elements();
  return 1;
}
