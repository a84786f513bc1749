#include "platform/spatial/point_order.h"

#include <algorithm>

#include "platform/spatial/hash_mix.h"

bool PointOrder::less(int a, int b) const {
  const double xa = nodes_[static_cast<std::size_t>(a)].x;
  const double xb = nodes_[static_cast<std::size_t>(b)].x;
  return xa != xb ? xa < xb : a < b;
}

void PointOrder::update(int node) {
  Node& n = nodes_[static_cast<std::size_t>(node)];
  n.least = node;
  if (n.left >= 0) n.least = std::min(n.least, nodes_[static_cast<std::size_t>(n.left)].least);
  if (n.right >= 0) n.least = std::min(n.least, nodes_[static_cast<std::size_t>(n.right)].least);
}

// Makes the child the parent of its parent; returns the child.
int PointOrder::rotate_up(int child, int parent) {
  Node& c = nodes_[static_cast<std::size_t>(child)];
  Node& p = nodes_[static_cast<std::size_t>(parent)];
  if (p.left == child) {
    p.left = c.right;
    c.right = parent;
  } else {
    p.right = c.left;
    c.left = parent;
  }
  update(parent);
  update(child);
  return child;
}

void PointOrder::insert(double x) {
  const int fresh = static_cast<int>(nodes_.size());
  nodes_.push_back({x, static_cast<std::uint32_t>(mix_hash(static_cast<std::uint64_t>(fresh))), -1, -1, fresh});
  path_.clear();
  for (int at = root_; at >= 0;) {
    path_.push_back(at);
    const Node& n = nodes_[static_cast<std::size_t>(at)];
    at = less(fresh, at) ? n.left : n.right;
  }
  if (path_.empty()) {
    root_ = fresh;
    return;
  }
  Node& parent = nodes_[static_cast<std::size_t>(path_.back())];
  (less(fresh, path_.back()) ? parent.left : parent.right) = fresh;
  const std::uint32_t priority = nodes_[static_cast<std::size_t>(fresh)].priority;
  while (!path_.empty() && nodes_[static_cast<std::size_t>(path_.back())].priority < priority) {
    const int above = path_.back();
    path_.pop_back();
    rotate_up(fresh, above);
    if (path_.empty()) {
      root_ = fresh;
    } else {
      Node& top = nodes_[static_cast<std::size_t>(path_.back())];
      (top.left == above ? top.left : top.right) = fresh;
    }
  }
  for (; !path_.empty(); path_.pop_back()) update(path_.back());
}

// Least insertion number among the keys from low to high, both included.
int PointOrder::least_between(int low, int high) const {
  const auto node = [this](int k) -> const Node& { return nodes_[static_cast<std::size_t>(k)]; };
  const auto least = [&](int k) { return k < 0 ? static_cast<int>(nodes_.size()) : node(k).least; };
  int split = root_;
  while (less(split, low) || less(high, split)) split = less(split, low) ? node(split).right : node(split).left;
  int result = split;
  for (int at = node(split).left; at >= 0;) {
    if (less(at, low)) {
      at = node(at).right;
      continue;
    }
    result = std::min({result, at, least(node(at).right)});
    at = node(at).left;
  }
  for (int at = node(split).right; at >= 0;) {
    if (less(high, at)) {
      at = node(at).left;
      continue;
    }
    result = std::min({result, at, least(node(at).left)});
    at = node(at).right;
  }
  return result;
}

bool PointOrder::precedes(int a, int b) const {
  if (a == b) return false;
  const bool a_is_low = less(a, b);
  const int high = a_is_low ? b : a;
  const bool high_first = least_between(a_is_low ? a : b, high) == high;
  return a_is_low ? !high_first : high_first;
}
