#pragma once

#include "platform/geometry/point3.h"
#include "platform/utilities/export.h"

/// One entry of an unbalanced binary tree of points, keyed on x: left lie the entries with a smaller x, right all others. An empty
/// tree is a null root, held by the caller.
///
/// Cost: as deep as the insertions make it, and a search looks at everything within the tolerance in x. The library's own merging
/// uses `PointIndex`, which gives the same answers at O(1) a point.
class MENDEX_EXPORT trPointTree {
 public:
  trPointTree(int index_of_point, const giPoint3* p) : point(p), index(index_of_point) {}
  trPointTree(const trPointTree&) = delete;
  trPointTree& operator=(const trPointTree&) = delete;
  /// Deletes both subtrees, but no points. Cost: O(entries) time, no memory.
  ~trPointTree();

  /// The index of the entry that `find` meets first; when there is none, inserts (index, p) and returns -1. Without memory nothing
  /// is inserted.
  static int add_node(trPointTree*& root, int index, const giPoint3* p, double tol);

  /// Inserts below `root`, after entries of the same x. An empty root becomes the new entry.
  static void insert_node(trPointTree*& root, int index, const giPoint3* p);

  /// The index of the first entry within tol of p, equality included, or -1. The entry itself comes before its left subtree, which
  /// is searched when x + tol is at least p's x, and that before its right subtree, which is searched when p's x is at least
  /// x - tol. The first match wins, not the nearest. Distances compare as squares.
  int find(const giPoint3* p, double tol) const;

  const giPoint3* point;  ///< not owned; must outlive the tree
  int index;              ///< the caller's number for the point
  trPointTree* left = nullptr;
  trPointTree* right = nullptr;
};
