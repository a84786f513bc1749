// Joining boundary nodes to boundary edges by triangles.

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "boundaries/edge_cone_tree.h"
#include "mesh/aspect_utils.h"
#include "platform/spatial/box_tree.h"
#include "progress/progress.h"

namespace {

// Cycles up to this many edges are searched edge by edge.
constexpr int largest_plain_cycle = 32;
// A tolerance from which the boxes of searches overflow: every cycle is looked at then.
constexpr double farthest = 1e150;
constexpr double rounding = 1e-12;

struct Triple {
  int node, start, end;
};

// Pairs nodes with edges, each once. Cycles are gone through in their order, and for each the others that it meets in theirs; of the
// edges of one cycle a node takes the first that will do.
class StitchMatcher {
 public:
  StitchMatcher(trTriBlock& block, trCyclecoPageArr& cycles, double tol)
      : block_(block), cycles_(cycles), tol_(tol), boxes_(boxes_of(cycles)), trees_(static_cast<std::size_t>(cycles.count())) {}

  std::vector<Triple> match() {
    for (int i = 0; i < cycles_.count() && !tr_interrupt(); ++i) {
      if (cycles_.at(i).start == -1) continue;
      for (const int j : cycles_near(i)) {
        if (tr_interrupt()) break;
        if (j == i || cycles_.at(i).box().crosses(cycles_.at(j).box(), tol_)) match_cycles(i, j);
      }
    }
    return std::move(found_);
  }

 private:
  static std::vector<giBox3> boxes_of(const trCyclecoPageArr& cycles) {
    std::vector<giBox3> boxes;
    for (int i = 0; i < cycles.count(); ++i) boxes.push_back(cycles.at(i).box());
    return boxes;
  }

  // The live cycles that may meet cycle i, itself among them, ascending.
  const std::vector<int>& cycles_near(int i) {
    near_.clear();
    if (tol_ < farthest) {
      giBox3 box = cycles_.at(i).box();
      double size = tol_;
      for (int k = 0; k < 3; ++k) size = std::max({size, std::fabs(box.min()[k]), std::fabs(box.max()[k])});
      box.grow(2.0 * tol_ + rounding * size);
      boxes_.visit_crossing(box, [&](int j) { near_.push_back(j); });
      near_.push_back(i);  // whose box may hold nothing that can be compared
      std::sort(near_.begin(), near_.end());
      near_.erase(std::unique(near_.begin(), near_.end()), near_.end());
    } else {
      for (int j = 0; j < cycles_.count(); ++j) near_.push_back(j);
    }
    near_.erase(std::remove_if(near_.begin(), near_.end(), [this](int j) { return cycles_.at(j).start == -1; }), near_.end());
    return near_;
  }

  void match_cycles(int i, int j) {
    for (trCycleIT it(&cycles_.at(i)); ++it;) {
      if (it.node_cancelled()) continue;
      if (!match_node(it.s_node(), j)) continue;
      it.cancel_node();
    }
  }

  bool makes_low_triangle(int n, int s, int e) const {
    return n != s && n != e && s != e && trAspectUtils::triangle_height(block_.point(s), block_.point(e), block_.point(n)).is_below(tol_);
  }

  bool match_node(int n, int j) {
    EdgeConeTree* const tree = tree_of(j);
    return tree == nullptr ? match_in_walk(n, j) : match_in_tree(n, *tree);
  }

  bool match_in_walk(int n, int j) {
    for (trCycleIT it(&cycles_.at(j)); ++it;) {
      if (it.edge_cancelled() || !makes_low_triangle(n, it.s_node(), it.e_node())) continue;
      found_.push_back({n, it.s_node(), it.e_node()});
      it.cancel_edge();
      return true;
    }
    return false;
  }

  bool match_in_tree(int n, EdgeConeTree& tree) {
    const int k = tree.first(block_.point(n), tol_, [&](const EdgeConeTree::Edge& e) { return makes_low_triangle(n, e.start, e.end); });
    if (k < 0) return false;
    const EdgeConeTree::Edge edge = tree.edge(k);
    found_.push_back({n, edge.start, edge.end});
    tree.deactivate(k);
    if (edge.entry >= 0) trCycle::rep.at(edge.entry).active = 0;
    return true;
  }

  // Of a cycle with many edges; made when it is first looked at.
  EdgeConeTree* tree_of(int j) {
    std::unique_ptr<EdgeConeTree>& tree = trees_[static_cast<std::size_t>(j)];
    if (tree != nullptr || !is_long(j)) return tree.get();
    std::vector<EdgeConeTree::Edge> edges;
    for (trCycleIT it(&cycles_.at(j)); ++it;) {
      if (!it.edge_cancelled()) edges.push_back({it.s_node(), it.e_node(), it.cur});
    }
    if (edges.empty()) return nullptr;
    tree = std::make_unique<EdgeConeTree>(std::move(edges), [this](int node) { return block_.point(node); });
    return tree.get();
  }

  bool is_long(int j) const {
    int edges = 0;
    for (trCycleIT it(&cycles_.at(j)); ++it;) {
      if (++edges > largest_plain_cycle) return true;
    }
    return false;
  }

  trTriBlock& block_;
  trCyclecoPageArr& cycles_;
  double tol_;
  BoxTree boxes_;
  std::vector<std::unique_ptr<EdgeConeTree>> trees_;  // by cycle
  std::vector<int> near_;
  std::vector<Triple> found_;
};

bool has_free_edge(const trTriBlock& block, int s, int e) {
  for (trIntListIT it(block.node(s).a_edges); ++it;) {
    if (it() == e) return true;
  }
  return false;
}

}  // namespace

int trCycleArray::stitch(double tol) {
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
