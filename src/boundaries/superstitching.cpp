// Splitting boundary edges where boundary nodes lie on them.

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "boundaries/array_it.h"
#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "mesh/loop_it.h"
#include "platform/spatial/box_tree.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

// A tolerance from which the boxes of searches overflow: everything is looked at then.
constexpr double farthest = 1e150;
// Bounds of what rounding can do, relative to the numbers involved; generous, since they only decide what is looked at closely.
constexpr double rounding = 1e-12;
// Long edges are searched piece by piece, so that a slanting one does not take up what lies in its whole box.
constexpr double edges_a_piece = 4.0;
constexpr double most_pieces = 4096.0;

bool is_finite(const giPoint3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

// A place on a cycle, in the order of the cycles and along each.
struct Place {
  int cycle;
  int node;
};

// The nodes of all live cycles, for finding those that may lie on an edge.
class BoundaryNodes {
 public:
  BoundaryNodes(const trTriBlock& block, const trCyclecoPageArr& cycles, double tol)
      : block_(block), tol_(tol), places_(places_of(cycles)), tree_(boxes_of(block, places_)), piece_(edges_a_piece * mean_edge(cycles)) {}

  // The places near the edge, ascending; none that the exact test would take is missing.
  const std::vector<int>& near(int s, int e) {
    found_.clear();
    if (tol_ < farthest) {
      search(block_.point(s), block_.point(e));
    } else {
      for (int k = 0; k < static_cast<int>(places_.size()); ++k) found_.push_back(k);
    }
    return found_;
  }

  const Place& place(int k) const { return places_[static_cast<std::size_t>(k)]; }

 private:
  static std::vector<Place> places_of(const trCyclecoPageArr& cycles) {
    std::vector<Place> places;
    for (int j = 0; j < cycles.count(); ++j) {
      for (trCycleIT it(&cycles.at(j)); ++it;) places.push_back({j, it.s_node()});
    }
    return places;
  }

  // Nodes without a finite place lie on no edge: their boxes are empty.
  static std::vector<giBox3> boxes_of(const trTriBlock& block, const std::vector<Place>& places) {
    std::vector<giBox3> boxes(places.size());
    for (std::size_t k = 0; k < places.size(); ++k) {
      const giPoint3& p = block.point(places[k].node);
      if (is_finite(p)) boxes[k].merge(p);
    }
    return boxes;
  }

  double mean_edge(const trCyclecoPageArr& cycles) const {
    double sum = 0.0;
    int edges = 0;
    for (int j = 0; j < cycles.count(); ++j) {
      for (trCycleIT it(&cycles.at(j)); ++it; ++edges) {
        const double length = block_.point(it.s_node()).distance(block_.point(it.e_node()));
        if (std::isfinite(length)) sum += length;
      }
    }
    return edges == 0 ? 0.0 : sum / edges;
  }

  void search(const giPoint3& a, const giPoint3& b) {
    const double length = a.distance(b);
    if (!std::isfinite(length)) return;
    const double step = piece_ + tol_;
    const int pieces = step > 0.0 ? static_cast<int>(std::min(most_pieces, std::floor(length / step) + 1.0)) : 1;
    giPoint3 from = a;
    for (int k = 1; k <= pieces; ++k) {
      const giPoint3 to = k == pieces ? b : gi_interpolate(a, b, static_cast<double>(k) / pieces);
      search_box(from, to);
      from = to;
    }
    if (pieces > 1 || found_.size() > 1) std::sort(found_.begin(), found_.end());
    found_.erase(std::unique(found_.begin(), found_.end()), found_.end());
  }

  void search_box(const giPoint3& from, const giPoint3& to) {
    giBox3 box(from, from);
    box.merge(to);
    double size = tol_;
    for (int k = 0; k < 3; ++k) size = std::max({size, std::fabs(from[k]), std::fabs(to[k])});
    box.grow(tol_ + rounding * size);
    tree_.visit_crossing(box, [this](int k) { found_.push_back(k); });
  }

  const trTriBlock& block_;
  double tol_;
  std::vector<Place> places_;
  BoxTree tree_;
  double piece_;
  std::vector<int> found_;
};

// One pass over all edges.
class EdgeSplitter {
 public:
  EdgeSplitter(trTriBlock& block, trCyclecoPageArr& cycles, double tol)
      : block_(block), cycles_(cycles), tol_(tol), nodes_(block, cycles, tol), limit_element_(block.element_count()) {}

  // `format` takes the number of edges that were visited, of all of them.
  void split_all(const char* format, int edges) {
    for (int i = 0; i < cycles_.count(); ++i) {
      for (trCycleIT it(&cycles_.at(i)); ++it;) {
        if (tr_interrupt()) return;
        if (visited_ % 100 == 0) tr_report_progress(format, visited_, visited_ * 100.0 / edges);
        ++visited_;
        if (it.edge_cancelled() || !has_free_edge(it.s_node(), it.e_node())) continue;
        find_nodes(i, it);
        if (on_nodes_.count() > 0) split(it.s_node(), it.e_node());
      }
    }
  }

  bool has_split() const { return deleted_ != 0 && created_ != 0; }

 private:
  bool has_free_edge(int s, int e) const {
    for (trIntListIT it(block_.node(s).a_edges); ++it;) {
      if (it() == e) return true;
    }
    return false;
  }

  // The nodes on the current edge of cycle i. They, and the edge when there are any, are used up; so no node is found twice.
  void find_nodes(int i, trCycleIT& it) {
    on_nodes_.clear(0);
    on_params_.clear(0);
    const int s = it.s_node(), e = it.e_node();
    for (const int k : nodes_.near(s, e)) {
      const Place& place = nodes_.place(k);
      if (place.cycle != i && !cycles_.at(i).box().crosses(cycles_.at(place.cycle).box(), tol_)) continue;
      double par = 0.0;
      if (block_.node(place.node).side == 0 || !block_.check_height_get_par(place.node, s, e, tol_, par)) continue;
      on_nodes_[on_nodes_.count()] = place.node;
      on_params_[on_params_.count()] = par;
      it.cancel_edge();
      block_.node(place.node).side = 0;
    }
  }

  // Elements that this pass made are not split again.
  void split(int s, int e) {
    for (trLoopIT around(&block_, s); ++around;) {
      if (tr_interrupt()) return;
      const int element = around();
      if (element >= limit_element_) continue;
      const int x = around.next_node(), p = around.prev_node();
      if (x < 0 || p < 0 || (x != e && p != e)) continue;
      block_.delete_element(element);
      ++deleted_;
      if (x == e) split_after(s, e, p);
      if (p == e) split_before(s, e, x);
    }
  }

  // Element (s, e, p) becomes a fan round p.
  void split_after(int s, int e, int p) {
    int last = s;
    for (ArrayIT it(on_params_.count(), &on_params_); ++it;) {
      create(p, last, on_nodes_[it.index]);
      last = on_nodes_[it.index];
    }
    create(p, last, e);
  }

  // Element (s, x, e) becomes a fan round x.
  void split_before(int s, int e, int x) {
    int last = s;
    for (ArrayIT it(on_params_.count(), &on_params_); ++it;) {
      create(last, x, on_nodes_[it.index]);
      last = on_nodes_[it.index];
    }
    create(last, x, e);
  }

  void create(int a, int b, int c) { created_ += block_.generate(a, b, c) > 0; }

  trTriBlock& block_;
  trCyclecoPageArr& cycles_;
  double tol_;
  BoundaryNodes nodes_;
  int limit_element_;
  intcoPageArr on_nodes_;     // the nodes on the current edge, in the order of the cycles
  doublecoPageArr on_params_;  // and where on it: 0 at its start, 1 at its end
  int visited_ = 0;
  int deleted_ = 0;
  int created_ = 0;
};

}  // namespace

int trCycleArray::superstitch(double tol) {
  if (block == nullptr) return 0;
  const int edges = detect();
  const std::string format = format_text(tr_brnknls("Stitch tolerance %.3f    Boundary edges %%3d/%d"), tol, edges);
  block->reference_elements();
  if (tr_interrupt()) return 0;
  EdgeSplitter splitter(*block, cycles, tol);
  splitter.split_all(format.c_str(), edges);
  block->force_changed_status(1);
  if (!splitter.has_split()) return 0;
  edge_count = -1;
  return 1;
}
