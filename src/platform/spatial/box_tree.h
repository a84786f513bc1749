#pragma once

#include <vector>

#include "platform/geometry/box3.h"
#include "platform/spatial/box_blocks.h"

/// Boxes of fixed places, for finding those that overlap a given one.
///
/// Method: the boxes are sorted along a Morton curve and bounded eight by eight in single precision; what the bounds
/// let through is compared exactly. Nothing recurses. Coordinates of any kind survive; an empty box, or one with a
/// corner that is not a number, overlaps nothing. Cost: O(n) to build, about O(log n + found) a search where the boxes
/// are small and do not pile up; 80 bytes a box.
class BoxTree {
 public:
  explicit BoxTree(std::vector<giBox3> boxes);

  /// Calls visit(i) once for each box i, counted from 0 as they were given, that overlaps `query`, inclusive, in no
  /// stated order.
  template <class Visit>
  void visit_crossing(const giBox3& query, Visit visit) const {
    const FloatBox rough = frame_.map(query.min(), query.max());
    blocks_.visit_blocks(
        rough, [](int, int) { return false; },
        [&](int b) {
          for (unsigned found = blocks_.block(b).overlapping(rough); found != 0; found &= found - 1) {
            const int item = order_[static_cast<std::size_t>(b * BoxBlock::width + lowest_bit(found))];
            if (overlap(boxes_[static_cast<std::size_t>(item)], query)) visit(item);
          }
        });
  }

  int count() const { return static_cast<int>(boxes_.size()); }
  const giBox3& box(int i) const { return boxes_[static_cast<std::size_t>(i)]; }

 private:
  static bool overlap(const giBox3& a, const giBox3& b) {
    for (int k = 0; k < 3; ++k) {
      if (!(a.min()[k] <= b.max()[k] && b.min()[k] <= a.max()[k])) return false;
    }
    return true;
  }
  std::vector<FloatBox> in_order() const;

  std::vector<giBox3> boxes_;
  FloatFrame frame_;
  std::vector<int> order_;
  BoxBlocks blocks_;
};
