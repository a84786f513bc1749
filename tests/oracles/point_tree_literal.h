#pragma once

#include <memory>

#include "platform/geometry/point3.h"

/// The unbalanced tree of points as its rule is worded: recursive, one comparison after the other.
class PointTreeLiteral {
 public:
  /// @param follow_conditions  whether a search heeds the conditions on x; without, it looks everywhere but below an entry whose x
  ///                           is NaN, which no search passes
  PointTreeLiteral(double tol, bool follow_conditions) : tol_(tol), follow_conditions_(follow_conditions) {}

  /// The index of the first match; or -1, and then the point is inserted.
  int add(const giPoint3& p, int index) {
    if (const int found = find(root_.get(), p); root_ != nullptr && found != -1) return found;
    insert(root_, p, index);
    return -1;
  }

  int find(const giPoint3& p) const { return find(root_.get(), p); }

 private:
  struct Entry {
    giPoint3 point;
    int index;
    std::unique_ptr<Entry> left, right;
  };

  static void insert(std::unique_ptr<Entry>& root, const giPoint3& p, int index) {
    if (root == nullptr) {
      root = std::make_unique<Entry>();
      root->point = p;
      root->index = index;
    } else if (root->point.x > p.x) {
      insert(root->left, p, index);
    } else {
      insert(root->right, p, index);
    }
  }

  int find(const Entry* e, const giPoint3& p) const {
    if (e == nullptr) return -1;
    const double dx = e->point.x - p.x, dy = e->point.y - p.y, dz = e->point.z - p.z;
    if (tol_ * tol_ >= dx * dx + dy * dy + dz * dz) return e->index;
    const bool everywhere = !follow_conditions_ && e->point.x == e->point.x;
    int found = -1;
    if (e->left != nullptr && (everywhere || e->point.x + tol_ >= p.x)) found = find(e->left.get(), p);
    if (found == -1 && e->right != nullptr && (everywhere || p.x >= e->point.x - tol_)) found = find(e->right.get(), p);
    return found;
  }

  double tol_;
  bool follow_conditions_;
  std::unique_ptr<Entry> root_;
};
