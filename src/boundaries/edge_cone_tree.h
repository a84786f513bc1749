#pragma once

#include <utility>
#include <vector>

#include "platform/geometry/point3.h"

/// The edges of one cycle in their order, for finding the first that makes a low triangle with a point.
///
/// The triangle of an edge and a point has a height below `tol` over its longest side where the point lies near the edge, but also
/// where it lies far away in line with it; so the edges are bounded by where they are (a sphere round groups of them) and by where
/// they point to (a cone of directions). For a point at distance d from the centre of a sphere of radius r, in a direction that leaves
/// the cone by an angle w, wherever in the sphere one looks from, no edge of length l or more makes a height below
/// l (d - r) sin(w) / max(2 r, d + r). The same holds for all points of a sphere, whose radius r then includes.
/// Cost: O(n) to build, 24 bytes an edge; O(log n) a search where edges are not in line with the point. What is not finite makes
/// no height and is not found.
class EdgeConeTree {
 public:
  struct Edge {
    int start, end;
    int entry;  // for the caller
  };

  /// @param point_of  point_of(node) is the position of a node
  template <class PointOf>
  EdgeConeTree(std::vector<Edge> edges, PointOf point_of) : edges_(std::move(edges)), is_active_(edges_.size(), 1) {
    std::vector<Cone> leaves;
    for (std::size_t k = 0; k < edges_.size(); k += edges_a_leaf) {
      Cone leaf;
      for (std::size_t m = k; m < k + edges_a_leaf && m < edges_.size(); ++m) {
        const Cone edge = cone_of(point_of(edges_[m].start), point_of(edges_[m].end));
        leaf = m == k ? edge : joined(leaf, edge);
      }
      leaves.push_back(leaf);
    }
    build(std::move(leaves));
  }

  /// The first active edge in their order for which accepts(edge) holds; -1 when there is none. Edges that cannot make a height below
  /// `tol` with p may be passed over.
  template <class Accepts>
  int first(const giPoint3& p, double tol, Accepts accepts) const {
    std::vector<std::size_t>& stack = stack_;
    stack.assign(1, 1);
    while (!stack.empty()) {
      const std::size_t n = stack.back();
      stack.pop_back();
      if (active_[n] == 0 || is_beyond(cones_[n], p, 0.0, tol)) continue;
      if (n < leaf_count_) {
        stack.push_back(2 * n + 1);
        stack.push_back(2 * n);
        continue;
      }
      const std::size_t from = (n - leaf_count_) * edges_a_leaf;
      for (std::size_t k = from; k < from + edges_a_leaf && k < edges_.size(); ++k) {
        if (is_active_[k] && accepts(edges_[k])) return static_cast<int>(k);
      }
    }
    return -1;
  }

  /// Calls visit(k), ascending, for the edges at whose start a point may lie that makes a height below `tol` with the edge from a to
  /// b; active or not.
  template <class Visit>
  void visit_starts(const giPoint3& a, const giPoint3& b, double tol, Visit visit) const {
    const Cone target = cone_of(a, b);
    std::vector<std::size_t>& stack = stack_;
    stack.assign(1, 1);
    while (!stack.empty()) {
      const std::size_t n = stack.back();
      stack.pop_back();
      const std::size_t from = first_leaf(n) * edges_a_leaf;
      if (from >= edges_.size() || cones_[n].is_empty() || is_beyond(target, cones_[n].centre, cones_[n].radius, tol)) continue;
      if (n < leaf_count_) {
        stack.push_back(2 * n + 1);
        stack.push_back(2 * n);
        continue;
      }
      for (std::size_t k = from; k < from + edges_a_leaf && k < edges_.size(); ++k) visit(static_cast<int>(k));
    }
  }

  int count() const { return static_cast<int>(edges_.size()); }
  const Edge& edge(int k) const { return edges_[static_cast<std::size_t>(k)]; }
  /// Takes an edge out of all later searches.
  void deactivate(int k);

 private:
  // Bounds of the edges below a node of the tree.
  struct Cone {
    bool is_empty() const { return radius < 0.0; }
    giPoint3 centre;
    double radius = -1.0;
    giVector3 axis;       // unit
    double spread = 0.0;  // angle between the axis and any edge, whichever way it runs
    double cos_spread = 1.0, sin_spread = 0.0;
    double shortest = 0.0;
  };
  static constexpr std::size_t edges_a_leaf = 8;

  static Cone cone_of(const giPoint3& a, const giPoint3& b);
  static Cone joined(const Cone& a, const Cone& b);
  // Whether no point nearer to p than `reach` makes a height below `tol` with an edge in the cone.
  static bool is_beyond(const Cone& cone, const giPoint3& p, double reach, double tol);
  std::size_t first_leaf(std::size_t n) const {
    while (n < leaf_count_) n *= 2;
    return n - leaf_count_;
  }
  void build(std::vector<Cone> leaves);

  std::vector<Edge> edges_;
  std::vector<char> is_active_;
  std::size_t leaf_count_ = 1;  // a power of two; leaf k is node leaf_count_ + k, the children of n are 2n and 2n + 1
  std::vector<Cone> cones_;
  std::vector<int> active_;  // active edges below each node
  mutable std::vector<std::size_t> stack_;
};
