#include "platform/triangulation/spacing_field.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t leaf_size = 4;
// The spacing that short edges leave may come out larger by this share: in the middle of a round area all edges are about equally
// far, and to tell which is nearest would take a look at each.
constexpr double good_enough = 15.0 / 16.0;
constexpr std::size_t stack_size = 80;  // the tree's depth is at most 32, and each step down leaves one entry behind

double distance_sq(const giPoint2& a, const giPoint2& b) {
  const double dx = a.x - b.x, dy = a.y - b.y;
  return dx * dx + dy * dy;
}

double segment_distance_sq(const giPoint2& a, const giPoint2& b, const giPoint2& p) {
  const double ux = b.x - a.x, uy = b.y - a.y;
  const double along = (p.x - a.x) * ux + (p.y - a.y) * uy;
  const double length_sq = ux * ux + uy * uy;
  if (along <= 0.0) return distance_sq(a, p);
  if (along >= length_sq) return distance_sq(b, p);
  const double across = ux * (p.y - a.y) - uy * (p.x - a.x);
  return across * across / length_sq;
}

}  // namespace

SpacingField::SpacingField(const std::vector<giPoint2>& points, const std::vector<int>& next, double spacing,
                           Slopes slopes)
    : spacing_(spacing), least_(spacing), slopes_(slopes) {
  const std::size_t n = points.size();
  edges_.resize(n);
  std::vector<double> length(n);
  for (std::size_t i = 0; i < n; ++i) {
    const giPoint2& end = points[static_cast<std::size_t>(next[i])];
    length[i] = std::sqrt(distance_sq(points[i], end));
    edges_[i] = {points[i], end, length[i]};
  }
  for (std::size_t i = 0; i < n; ++i) {
    Edge& following = edges_[static_cast<std::size_t>(next[i])];
    following.length = std::min(following.length, length[i]);
  }
  for (const Edge& edge : edges_) least_ = std::min(least_, edge.length);

  leaves_ = (n + leaf_size - 1) / leaf_size;
  tree_.resize(2 * leaves_);
  for (std::size_t leaf = 0; leaf < leaves_; ++leaf) tree_[leaves_ + leaf] = leaf_node(leaf);
  for (std::size_t i = leaves_ - 1; i > 0; --i) {
    const TreeNode &left = tree_[2 * i], &right = tree_[2 * i + 1];
    tree_[i] = {left.box, std::min(left.shortest, right.shortest), std::max(left.longest, right.longest)};
    tree_[i].box.merge(right.box);
  }
}

SpacingField::TreeNode SpacingField::leaf_node(std::size_t leaf) const {
  TreeNode node{giBox2(), edges_[leaf * leaf_size].length, 0.0};
  const std::size_t end = std::min(edges_.size(), (leaf + 1) * leaf_size);
  for (std::size_t i = leaf * leaf_size; i < end; ++i) {
    node.box.merge(edges_[i].start);
    node.box.merge(edges_[i].end);
    node.shortest = std::min(node.shortest, edges_[i].length);
    node.longest = std::max(node.longest, edges_[i].length);
  }
  return node;
}

double SpacingField::box_distance_sq(const giBox2& box, const giPoint2& p) {
  const double dx = std::max({box.min().x - p.x, 0.0, p.x - box.max().x});
  const double dy = std::max({box.min().y - p.y, 0.0, p.y - box.max().y});
  return dx * dx + dy * dy;
}

double SpacingField::at(const giPoint2& p) const {
  double upper = spacing_, lower = spacing_;
  std::size_t stack[stack_size];
  stack[0] = 1;
  for (std::size_t depth = 1; depth > 0;) {
    const std::size_t i = stack[--depth];
    const TreeNode& node = tree_[i];
    const double distance = std::sqrt(box_distance_sq(node.box, p));
    if (node.shortest + slopes_.growth * distance >= good_enough * upper && node.longest - slopes_.shrinkage * distance <= lower)
      continue;
    if (i < leaves_) {
      const bool is_left_nearer = box_distance_sq(tree_[2 * i].box, p) < box_distance_sq(tree_[2 * i + 1].box, p);
      stack[depth++] = 2 * i + is_left_nearer;
      stack[depth++] = 2 * i + !is_left_nearer;
      continue;
    }
    const std::size_t end = std::min(edges_.size(), (i - leaves_ + 1) * leaf_size);
    for (std::size_t k = (i - leaves_) * leaf_size; k < end; ++k) {
      const double from_node = std::sqrt(distance_sq(edges_[k].start, p));
      upper = std::min(upper, edges_[k].length + slopes_.growth * from_node);
      lower = std::max(lower, edges_[k].length - slopes_.shrinkage * from_node);
    }
  }
  return upper < spacing_ ? upper : lower;
}

bool SpacingField::is_clear(const giPoint2& p, double distance) const {
  const double limit_sq = distance * distance;
  std::size_t stack[stack_size];
  stack[0] = 1;
  for (std::size_t depth = 1; depth > 0;) {
    const std::size_t i = stack[--depth];
    if (box_distance_sq(tree_[i].box, p) >= limit_sq) continue;
    if (i < leaves_) {
      stack[depth++] = 2 * i;
      stack[depth++] = 2 * i + 1;
      continue;
    }
    const std::size_t end = std::min(edges_.size(), (i - leaves_ + 1) * leaf_size);
    for (std::size_t k = (i - leaves_) * leaf_size; k < end; ++k) {
      if (segment_distance_sq(edges_[k].start, edges_[k].end, p) < limit_sq) return false;
    }
  }
  return true;
}
