#pragma once

#include <vector>

#include "platform/geometry/box2.h"
#include "platform/geometry/point2.h"

/// How far apart interior nodes shall be, place by place, and how near the boundary is.
///
/// The definition stands at at2Plane. A tree of boxes over the boundary's edges in the order of the loops answers both
/// questions; in the inside of an area, at the full spacing, it is left after a few steps.
class SpacingField {
 public:
  struct Slopes {
    double growth;     // away from shorter edges, per unit of distance
    double shrinkage;  // away from longer ones
  };

  /// `points` are the boundary's nodes in the order of the loops and `next` the one that follows each; at least one.
  /// Cost: O(n).
  SpacingField(const std::vector<giPoint2>& points, const std::vector<int>& next, double spacing, Slopes slopes);

  double spacing() const { return spacing_; }
  /// No more than any local spacing.
  double least() const { return least_; }
  /// The local spacing at p, up to a fifteenth larger where shorter edges lower it.
  double at(const giPoint2& p) const;
  /// Whether no edge is nearer to p than `distance`.
  bool is_clear(const giPoint2& p, double distance) const;

 private:
  struct Edge {
    giPoint2 start, end;
    double length;  // of the shorter edge at `start`
  };
  struct TreeNode {
    giBox2 box;  // of the edges' ends
    double shortest, longest;
  };
  static double box_distance_sq(const giBox2& box, const giPoint2& p);
  TreeNode leaf_node(std::size_t leaf) const;

  std::vector<Edge> edges_;
  std::vector<TreeNode>
      tree_;  // node i has the children 2 i and 2 i + 1; the leaves start at leaves_, each of leaf_size edges
  std::size_t leaves_ = 0;
  double spacing_;
  double least_;
  Slopes slopes_;
};
