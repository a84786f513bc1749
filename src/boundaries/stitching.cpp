// Joining boundary nodes to boundary edges by triangles.

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "boundaries/edge_cone_tree.h"
#include "boundaries/free_edge.h"
#include "mesh/aspect_utils.h"
#include "mesh/memory_guard.h"
#include "platform/spatial/live_tree.h"
#include "platform/spatial/near_lists.h"
#include "progress/progress.h"

namespace {

// Cycles up to this many edges are searched edge by edge.
constexpr int largest_plain_cycle = 32;
constexpr double rounding = 1e-12;

struct Triple {
  int node, start, end;
};

bool overlap(const giBox3& a, const giBox3& b) {
  for (int k = 0; k < 3; ++k) {
    if (!(a.min()[k] <= b.max()[k] && b.min()[k] <= a.max()[k])) return false;
  }
  return true;
}

// Holds all boxes that cross `box` within tol.
giBox3 surroundings(giBox3 box, double tol) {
  double size = tol;
  for (int k = 0; k < 3; ++k) size = std::max({size, std::fabs(box.min()[k]), std::fabs(box.max()[k])});
  box.grow(2.0 * tol + rounding * size);
  return box;
}

struct AwayFrom {
  giBox3 query;
  bool operator()(const giBox3& box) const { return !overlap(query, box); }
};

// Pairs nodes with edges, each once. Cycles are gone through in their order, and for each the others that it meets in theirs; of the
// edges of one cycle a node takes the first that will do. Cycles without edges left are not looked at again, and a cycle is done with
// when it has no nodes left.
class StitchMatcher {
 public:
  StitchMatcher(trTriBlock& block, trCyclecoPageArr& cycles, double tol)
      : block_(block), cycles_(cycles), tol_(tol), facts_(facts_of(cycles)), boxes_(boxes_of(cycles)), ahead_(facts_.size()) {
    for (int j = 0; j < cycles.count(); ++j) {
      if (facts(j).edges_left == 0) boxes_.remove(j);
    }
    search_ahead();
  }

  std::vector<Triple> match() {
    for (int i = 0; i < cycles_.count() && !tr_interrupt(); ++i) {
      nodes_left_ = live_nodes(i);
      if (nodes_left_ > 0) match_cycle(i);
    }
    return std::move(found_);
  }

 private:
  struct Facts {
    int edges = 0;
    int edges_left = 0;  // those not cancelled
    std::unique_ptr<EdgeConeTree> tree;
  };

  Facts& facts(int j) { return facts_[static_cast<std::size_t>(j)]; }

  static std::vector<Facts> facts_of(const trCyclecoPageArr& cycles) {
    std::vector<Facts> all(static_cast<std::size_t>(cycles.count()));
    for (int j = 0; j < cycles.count(); ++j) {
      Facts& facts = all[static_cast<std::size_t>(j)];
      for (trCycleIT it(&cycles.at(j)); ++it; ++facts.edges) facts.edges_left += !it.edge_cancelled();
    }
    return all;
  }

  static std::vector<giBox3> boxes_of(const trCyclecoPageArr& cycles) {
    std::vector<giBox3> boxes;
    for (int j = 0; j < cycles.count(); ++j) boxes.push_back(cycles.at(j).box());
    return boxes;
  }

  int live_nodes(int i) const {
    int n = 0;
    for (trCycleIT it(&cycles_.at(i)); ++it;) n += !it.node_cancelled();
    return n;
  }

  // With the cycles that it may meet, itself among them, ascending. Where its own box holds something that does not compare, it meets
  // no other.
  void match_cycle(int i) {
    const giBox3 query = surroundings(cycles_.at(i).box(), tol_);
    if (ahead_.has(i)) {
      match_those_ahead(i);
    } else if (overlap(query, query)) {
      match_many(i, AwayFrom{query});
    } else {
      match_cycles(i, i);
    }
  }

  void match_those_ahead(int i) {
    near_.assign(1, i);
    ahead_.visit(i, [&](int j) {
      if (j != i && boxes_.has(j)) near_.push_back(j);
    });
    std::sort(near_.begin(), near_.end());
    for (const int j : near_) {
      if (nodes_left_ == 0 || tr_interrupt()) return;
      match_cycles(i, j);
    }
  }

  // The first few of them may use up the nodes.
  void match_many(int i, const AwayFrom& away) {
    LiveTree<giBox3>::Ascending<AwayFrom> near(boxes_, away);
    while (nodes_left_ > 0 && !tr_interrupt()) {
      const int j = near.next();
      if (j < 0) return;
      match_cycles(i, j);
    }
  }

  // Cycles whose box crosses nothing are left to be looked at in their turn.
  void search_ahead() {
    boxes_.visit_along_curve([&](int i) {
      if (tr_interrupt()) return false;
      const giBox3 query = surroundings(cycles_.at(i).box(), tol_);
      if (overlap(query, query)) ahead_.fill(i, [&](auto take) { boxes_.visit(AwayFrom{query}, take); });
      return true;
    });
  }

  void match_cycles(int i, int j) {
    if (i != j && !cycles_.at(i).box().crosses(cycles_.at(j).box(), tol_)) return;
    if (is_long(i) && !is_long(j)) return match_near_short(i, j);
    for (trCycleIT it(&cycles_.at(i)); ++it && facts(j).edges_left > 0;) {
      if (!it.node_cancelled()) match_node(it.s_node(), j);
    }
  }

  // Of the nodes of a long cycle only those that may make a low triangle with an edge of the short one.
  void match_near_short(int i, int j) {
    const EdgeConeTree& nodes = tree_of(i);
    starts_.clear();
    for (trCycleIT it(&cycles_.at(j)); ++it;) {
      if (it.edge_cancelled() || !has_boundary_node(block_, it.s_node()) || !has_boundary_node(block_, it.e_node())) continue;
      nodes.visit_starts(block_.point(it.s_node()), block_.point(it.e_node()), tol_, [this](int k) { starts_.push_back(k); });
    }
    std::sort(starts_.begin(), starts_.end());
    starts_.erase(std::unique(starts_.begin(), starts_.end()), starts_.end());
    for (const int k : starts_) {
      const int n = nodes.edge(k).start;
      if (block_.node(n).side != 0) match_node(n, j);
    }
  }

  bool makes_low_triangle(int n, int s, int e) const {
    if (n == s || n == e || s == e) return false;
    return trAspectUtils::triangle_height(block_.point(s), block_.point(e), block_.point(n)).value() < tol_;
  }

  void match_node(int n, int j) {
    if (!has_boundary_node(block_, n)) return;
    const bool is_matched = is_long(j) ? match_in_tree(n, tree_of(j)) : match_in_walk(n, j);
    if (!is_matched) return;
    block_.node(n).side = 0;
    --nodes_left_;
    if (--facts(j).edges_left == 0) boxes_.remove(j);
  }

  bool match_in_walk(int n, int j) {
    for (trCycleIT it(&cycles_.at(j)); ++it;) {
      const int s = it.s_node(), e = it.e_node();
      if (it.edge_cancelled() || !has_boundary_node(block_, s) || !has_boundary_node(block_, e)) continue;
      if (!makes_low_triangle(n, s, e)) continue;
      found_.push_back({n, s, e});
      it.cancel_edge();
      return true;
    }
    return false;
  }

  bool match_in_tree(int n, EdgeConeTree& tree) {
    const int k = tree.first(block_.point(n), tol_, [&](const EdgeConeTree::Edge& e) {
      return trCycle::rep.at(e.entry).active && makes_low_triangle(n, e.start, e.end);
    });
    if (k < 0) return false;
    const EdgeConeTree::Edge edge = tree.edge(k);
    found_.push_back({n, edge.start, edge.end});
    tree.deactivate(k);
    trCycle::rep.at(edge.entry).active = 0;
    return true;
  }

  bool is_long(int j) { return facts(j).edges > largest_plain_cycle; }

  // Of a long cycle; made when it is first needed.
  EdgeConeTree& tree_of(int j) {
    std::unique_ptr<EdgeConeTree>& tree = facts(j).tree;
    if (tree != nullptr) return *tree;
    std::vector<EdgeConeTree::Edge> edges;
    for (trCycleIT it(&cycles_.at(j)); ++it;) {
      const int s = it.s_node(), e = it.e_node();
      if (has_boundary_node(block_, s)) edges.push_back({s, has_boundary_node(block_, e) ? e : s, it.cur});
    }
    tree = std::make_unique<EdgeConeTree>(std::move(edges), [this](int node) { return block_.point(node); });
    for (int k = 0; k < tree->count(); ++k) {
      if (!trCycle::rep.at(tree->edge(k).entry).active) tree->deactivate(k);
    }
    return *tree;
  }

  trTriBlock& block_;
  trCyclecoPageArr& cycles_;
  double tol_;
  std::vector<Facts> facts_;  // by cycle
  LiveTree<giBox3> boxes_;    // of the cycles that have edges left
  NearLists ahead_;           // of boxes that may meet that of a cycle
  int nodes_left_ = 0;        // of the cycle in hand, or more
  std::vector<int> near_;
  std::vector<int> starts_;
  std::vector<Triple> found_;
};

}  // namespace

int trCycleArray::stitch(double tol) {
  if (!coMemoryScope::is_open()) return tr_guarded(block, 0, [&] { return stitch(tol); });
  detect();
  if (block == nullptr || !(tol > 0.0)) return 0;  // no height is below
  const std::vector<Triple> found = StitchMatcher(*block, cycles, tol).match();
  for (const Triple& triple : found) {
    if (tr_interrupt()) break;
    if (has_free_edge(*block, triple.start, triple.end)) block->generate(triple.start, triple.node, triple.end);
  }
  if (found.empty()) return 0;
  block->force_changed_status(1);
  edge_count = -1;
  return 1;
}
