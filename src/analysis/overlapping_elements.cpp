// Neighbouring elements that are folded onto each other.

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "analysis/edge_fan.h"
#include "mesh/memory_guard.h"
#include "mesh/neighbour_search.h"
#include "platform/containers/flat_array.h"
#include "progress/progress.h"

namespace {

constexpr double pi = 3.14159265358979323846;

// The angle that two neighbours enclose, from the scalar product of their unit normals: 180 degrees less the angle between these.
double enclosed_angle(double dot) { return std::acos(-std::max(-1.0, std::min(1.0, dot))); }

// Whether an angle lies below a tolerance, decided by the cosine wherever that is certain.
class AngleBound {
 public:
  explicit AngleBound(double radians) : radians_(radians > 0.0 ? radians : 0.0), dot_(-std::cos(std::min(pi, radians_))) {}

  bool exceeds_angle_of(double dot) const {
    if (dot > dot_ + slack) return false;
    return dot < dot_ - slack || enclosed_angle(dot) < radians_;
  }

 private:
  static constexpr double slack = 1e-9;  // of the cosine; its rounding and that of the scalar product stay below 1e-15
  double radians_;
  double dot_;
};

// Unit normals of all elements; not a number where there is no element or no direction.
class FacetNormals {
 public:
  explicit FacetNormals(int elements) : components_(3 * static_cast<std::size_t>(elements)) {
    if (!allocated()) co_entry_lost();
  }

  /// Whether there was memory for them.
  bool allocated() const { return components_.size() > 0; }
  void set(int e, const giVector3& n) {
    double* c = at(e);
    for (int k = 0; k < 3; ++k) c[k] = n[k];
  }
  void set_none(int e) { at(e)[0] = std::numeric_limits<double>::quiet_NaN(); }
  double dot(int e, int f) const {
    const double* a = at(e);
    const double* b = at(f);
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
  }
  void prefetch(int e) const {
    co_prefetch_for_reading(at(e));
    co_prefetch_for_reading(at(e) + 2);  // may lie across two cache lines
  }

 private:
  const double* at(int e) const { return &components_[3 * static_cast<std::size_t>(e)]; }
  double* at(int e) { return &components_[3 * static_cast<std::size_t>(e)]; }
  coFlatArray<double> components_;
};

// Compares each element with the neighbour across each of its sides: the first other element in the list of the node where the side
// starts that runs the side back. Elements without a normal enclose no angle.
class OverlapSearch {
 public:
  OverlapSearch(const trTriBlock& block, const giAngle& tol)
      : block_(block), bound_(tol.radians()), normals_(block.element_count()), listed_(static_cast<std::size_t>(block.element_count())) {}

  /// Whether it ran to the end.
  bool run() { return normals_.allocated() && compute_normals() && EdgeFan(block_).visit_nodes(*this); }

  giAngle sharpest() const {
    return least_dot_ > 1.0 ? giAngle::from_degrees(180.0) : giAngle::from_radians(enclosed_angle(least_dot_));
  }
  void list(intcoPageArr& out) const {
    if (!any_listed_) return;
    for (std::size_t e = 0; e < listed_.size(); ++e) {
      if (listed_[e]) out[out.count()] = static_cast<int>(e);
    }
  }

  void passes(int node) const { tr_report_nodes(node, block_.node_count(), 50.0, 100.0); }
  void fetch(int e) const { normals_.prefetch(e); }
  void pair(const EdgeUse& side, int neighbour, bool same) {
    if (!same) compare(side.element, neighbour);
  }

  void crowd_at(const EdgeUse* first, const EdgeUse* last) {
    const auto returns = [](const EdgeUse& use) { return !use.leaves; };
    const EdgeUse* const nearest = std::find_if(first, last, returns);
    if (nearest == last) return;
    const EdgeUse* const second =
        std::find_if(nearest, last, [&](const EdgeUse& use) { return !use.leaves && use.element != nearest->element; });
    for (const EdgeUse* use = first; use != last; ++use) {
      if (!use->leaves) continue;
      const EdgeUse* const across = nearest->element != use->element ? nearest : second;
      if (across != last) compare(use->element, across->element);
    }
  }

 private:
  bool compute_normals() {
    const int n = block_.element_count();
    for (int e = 0; e < n; ++e) {
      if (tr_interrupt()) return false;
      tr_report_triangles(e, n, 0.0, 50.0);
      block_.prefetch_corners(e + trTriBlock::corners_ahead);
      giVector3 normal;
      if (block_.element(e).valid() && element_normal(block_, e, normal)) {
        normals_.set(e, normal);
      } else {
        normals_.set_none(e);
      }
    }
    return true;
  }

  void compare(int e, int f) {
    const double dot = normals_.dot(e, f);
    if (std::isnan(dot)) return;
    if (dot < least_dot_) least_dot_ = dot;
    if (!bound_.exceeds_angle_of(dot)) return;
    listed_[static_cast<std::size_t>(e)] = true;
    listed_[static_cast<std::size_t>(f)] = true;
    any_listed_ = true;
  }

  const trTriBlock& block_;
  AngleBound bound_;
  FacetNormals normals_;
  std::vector<bool> listed_;
  bool any_listed_ = false;
  double least_dot_ = 2.0;  // above any scalar product until there are neighbours
};

}  // namespace

giAngle trTriBlock::find_overlapping(const giAngle& tol, intcoPageArr& out) const {
  const giAngle none = giAngle::from_degrees(180.0);
  if (!coMemoryScope::is_open()) return tr_guarded(this, none, [&] { return find_overlapping(tol, out); });
  out.clear(0);
  reference_elements();
  if (tr_interrupt()) return none;
  OverlapSearch search(*this, tol);
  search.run();
  search.list(out);
  return search.sharpest();
}
