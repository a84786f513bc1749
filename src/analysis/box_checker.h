#pragma once

#include "analysis/box_cache.h"
#include "mesh/element.h"
#include "platform/containers/number_arrays.h"
#include "platform/utilities/export.h"

/// The elements of one box, and the test of their pairs; too many elements are dealt out to the octants of the box.
///
/// The root makes the cache of element boxes and owns it; the checkers of octants borrow it and must not outlive their
/// parent.
class MENDEX_EXPORT trBoxChecker {
 public:
  /// A root without a box. `limit` is the largest number of elements that are tested pair by pair, `tol` the tolerance
  /// of all tests.
  trBoxChecker(const trTriBlock* block, int limit, double tol);
  /// The checker of octant 1 to 8 of the parent's box, with those of the parent's elements that cross it.
  trBoxChecker(const trBoxChecker* parent, int octant);
  trBoxChecker(const trBoxChecker&) = delete;
  trBoxChecker& operator=(const trBoxChecker&) = delete;
  ~trBoxChecker();

  /// Gathers the available elements whose boxes cross `box` within the tolerance, ascending. Polls for each.
  void reset(const giBox3& box);
  int num_box_elements() const { return elements_.count(); }
  /// The elements that a box may gather from: all of the block, slot 0 included, or what the parent gathered.
  int total_num_elements() const { return parent_ != nullptr ? parent_->num_box_elements() : cache_->size(); }
  int ith_element(int i) const { return parent_ != nullptr ? parent_->elements_.at(i) : i; }

  /// Appends both numbers of each intersecting pair of the box and returns how many pairs these were. A pair that lies
  /// in several octants is appended for each.
  ///
  /// More than `limit` elements are tested octant by octant; but a box of twice the tolerance, or one whose octants
  /// would hold twice as many pairs, is tested as it is. Polls for each pair and each octant.
  int check_intersecting(intcoPageArr& out);

  /// Whether elements a and b cut each other. Those that share an edge do not; of those that share a node only the
  /// sides that do not touch it are looked at. Coplanar elements do when the middle of a side of one lies in the other.
  /// An element whose area is as good as zero has sides but no inside.
  static int tr_elements_intersect(const trTriBlock* block, int a, int b, double tol);
  /// Whether the segment from p to q meets the triangle with unit normal n; dp and dq are the signed distances of its
  /// ends from the triangle's plane.
  static int tr_span_x_tri(const giPoint3& p, const giPoint3& q, double dp, double dq, giPoint3* const tri,
                           const giVector3& n, double tol);
  /// The number of pairs of equal nodes; `common` receives the last match and stays as it is when there is none.
  static int nodes_shared(const trElement& a, const trElement& b, int& common);

 private:
  int test_pairs(intcoPageArr& out) const;
  bool split_pays() const;

  giBox3 box_;
  trBoxCache* cache_;
  intcoPageArr elements_;
  const trBoxChecker* parent_;
  int limit_;
  int depth_;
  double tol_;
};
