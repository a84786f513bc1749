// Splitting boundary edges where boundary nodes lie on them.

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "boundaries/array_it.h"
#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "boundaries/free_edge.h"
#include "mesh/loop_it.h"
#include "mesh/memory_guard.h"
#include "platform/spatial/live_tree.h"
#include "platform/spatial/near_lists.h"
#include "progress/message.h"
#include "progress/progress.h"

namespace {

// Bounds of what rounding can do, relative to the numbers involved; generous, since they only decide what is looked at closely.
constexpr double relative_rounding = 1e-12;
constexpr double place_rounding = 4e-16;
// Squares of lengths below this lose digits, or are 0.
constexpr double least_length = 1e-150;

// Turns down boxes in which no point lies on the edge from s to e, its ends left out, within the tolerance.
class OffEdge {
 public:
  OffEdge(const giPoint3& s, const giPoint3& e, double tol) : start_(s), along_(e - s), length_sq_(along_.length_sq()), near_(s, s) {
    double size = tol;
    for (int k = 0; k < 3; ++k) size = std::max({size, std::fabs(s[k]), std::fabs(e[k])});
    reach_ = tol + relative_rounding * size + least_length;
    near_.merge(e);
    near_.grow(reach_);
  }

  // Where not, every point is off the edge.
  bool is_regular() const { return length_sq_ > 0.0 && std::isfinite(length_sq_); }

  // Comparisons are false where something overflows, and then nothing is turned down.
  bool operator()(const giBox3& box) const {
    double mid = 0.0, half = 0.0, size = 0.0, centre_sq = 0.0, radius_sq = 0.0;
    for (int k = 0; k < 3; ++k) {
      const double low = box.min()[k], high = box.max()[k];
      if (high < near_.min()[k] || low > near_.max()[k]) return true;
      const double c = 0.5 * low + 0.5 * high - start_[k];
      const double h = 0.5 * high - 0.5 * low + place_rounding * (std::fabs(low) + std::fabs(high) + std::fabs(start_[k]));
      mid += c * along_[k];
      half += h * std::fabs(along_[k]);
      size += std::fabs(c * along_[k]);
      centre_sq += c * c;
      radius_sq += h * h;
    }
    const double slack = relative_rounding * (size + half + length_sq_) + least_length * least_length;
    if (mid + half < -slack || mid - half > length_sq_ + slack) return true;
    const double reach = std::sqrt(radius_sq) + reach_;
    return centre_sq - mid * mid / length_sq_ > reach * reach + relative_rounding * centre_sq;
  }

 private:
  giPoint3 start_;
  giVector3 along_;
  double length_sq_;
  double reach_ = 0.0;
  giBox3 near_;
};

// A place on a cycle, in the order of the cycles and along each; with the edge that leaves it.
struct Place {
  int cycle;
  int node;
  int next_node;
};

// The nodes of all live cycles, for finding those that may lie on an edge.
class BoundaryNodes {
 public:
  BoundaryNodes(const trTriBlock& block, const trCyclecoPageArr& cycles, double tol)
      : block_(block), tol_(tol), places_(places_of(block, cycles)), tree_(points_of(block, places_)), ahead_(places_.size()) {
    search_ahead();
  }

  // The places near the edge that leaves place k, ascending; none that the exact test would take is missing, and none of them is
  // cancelled.
  const std::vector<int>& near(int k) {
    found_.clear();
    cancelled_.clear();
    const auto take = [this](int other) {
      const bool is_cancelled = block_.node(place(other).node).side == 0;
      (is_cancelled ? cancelled_ : found_).push_back(other);
    };
    if (ahead_.has(k)) {
      ahead_.visit(k, take);  // what was taken out since is cancelled
    } else if (const OffEdge is_off = off_edge(k); is_off.is_regular()) {
      tree_.visit(is_off, [&](int other) { return take(other), true; });
    }
    for (const int other : cancelled_) tree_.remove(other);
    std::sort(found_.begin(), found_.end());
    return found_;
  }

  int count() const { return static_cast<int>(places_.size()); }
  const Place& place(int k) const { return places_[static_cast<std::size_t>(k)]; }
  void remove(int k) { tree_.remove(k); }

 private:
  // What lies at no finite place lies on no edge.
  static std::vector<Place> places_of(const trTriBlock& block, const trCyclecoPageArr& cycles) {
    std::vector<Place> places;
    for (int j = 0; j < cycles.count(); ++j) {
      for (trCycleIT it(&cycles.at(j)); ++it;) {
        if (has_boundary_node(block, it.s_node()) && is_finite(block.point(it.s_node()))) places.push_back({j, it.s_node(), it.e_node()});
      }
    }
    return places;
  }

  static std::vector<giPoint3> points_of(const trTriBlock& block, const std::vector<Place>& places) {
    std::vector<giPoint3> points;
    points.reserve(places.size());
    for (const Place& place : places) points.push_back(block.point(place.node));
    return points;
  }

  static bool is_finite(const giPoint3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

  OffEdge off_edge(int k) const { return OffEdge(block_.point(place(k).node), block_.point(place(k).next_node), tol_); }

  // An edge that leads nowhere is not searched.
  void search_ahead() {
    if (!(tol_ > 0.0)) return;
    tree_.visit_along_curve([&](int k) {
      if (tr_interrupt()) return false;
      if (!has_boundary_node(block_, place(k).next_node)) return true;
      const OffEdge is_off = off_edge(k);
      if (is_off.is_regular()) ahead_.fill(k, [&](auto take) { tree_.visit(is_off, take); });
      return true;
    });
  }

  const trTriBlock& block_;
  double tol_;
  std::vector<Place> places_;
  LiveTree<giPoint3> tree_;  // of the places; those found cancelled are taken out
  NearLists ahead_;          // for the edge that leaves each place, the others near it
  std::vector<int> found_;
  std::vector<int> cancelled_;
};

// One pass over all edges.
class EdgeSplitter {
 public:
  EdgeSplitter(trTriBlock& block, trCyclecoPageArr& cycles, double tol)
      : block_(block), cycles_(cycles), tol_(tol), nodes_(block, cycles, tol), limit_element_(block.element_count()) {}

  // `format` takes the number of edges that were visited, of all of them.
  void split_all(const char* format, int edges) {
    int next_place = 0;
    for (int i = 0; i < cycles_.count(); ++i) {
      for (trCycleIT it(&cycles_.at(i)); ++it;) {
        const int place = is_at(next_place, i, it.s_node()) ? next_place++ : -1;
        if (tr_interrupt()) return;
        if (visited_ % 100 == 0) tr_report_progress(format, visited_, visited_ * 100.0 / edges);
        ++visited_;
        if (it.edge_cancelled() || !is_free(it.s_node(), it.e_node())) continue;
        find_nodes(place, it);
        if (on_nodes_.count() > 0) split(it.s_node(), it.e_node());
      }
    }
  }

  bool has_split() const { return deleted_ != 0 && created_ != 0; }

 private:
  bool is_at(int k, int cycle, int node) const {
    return k < nodes_.count() && nodes_.place(k).cycle == cycle && nodes_.place(k).node == node;
  }

  bool is_free(int s, int e) const {
    return has_boundary_node(block_, s) && has_boundary_node(block_, e) && has_free_edge(block_, s, e);
  }

  // The nodes on the edge that leaves place k; -1: it leaves from nowhere. They, and the edge when there are any, are used up; so no
  // node is found twice.
  void find_nodes(int k, trCycleIT& it) {
    on_nodes_.clear(0);
    on_params_.clear(0);
    if (k < 0 || !(tol_ > 0.0)) return;
    const int i = nodes_.place(k).cycle, s = it.s_node(), e = it.e_node();
    for (const int other : nodes_.near(k)) {
      const Place& place = nodes_.place(other);
      if (place.cycle != i && !cycles_.at(i).box().crosses(cycles_.at(place.cycle).box(), tol_)) continue;
      double par = 0.0;
      if (block_.node(place.node).side == 0 || !block_.check_height_get_par(place.node, s, e, tol_, par)) continue;
      on_nodes_[on_nodes_.count()] = place.node;
      on_params_[on_params_.count()] = par;
      it.cancel_edge();
      block_.node(place.node).side = 0;
      nodes_.remove(other);
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
  if (!coMemoryScope::is_open()) return tr_guarded(block, 0, [&] { return superstitch(tol); });
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
