#include "platform/spatial/box_tree.h"

#include <utility>

#include "platform/spatial/morton_order.h"

namespace {

// A point that stray boxes do not draw away: along each axis the middle one of a few least corners.
giPoint3 middle_corner(const std::vector<giBox3>& boxes) {
  giPoint3 middle;
  const std::size_t stride = boxes.size() / 100 + 1;
  for (int k = 0; k < 3; ++k) {
    std::vector<double> sample;
    for (std::size_t i = 0; i < boxes.size(); i += stride) {
      if (!boxes[i].is_empty() && std::isfinite(boxes[i].min()[k])) sample.push_back(boxes[i].min()[k]);
    }
    std::sort(sample.begin(), sample.end());
    if (!sample.empty()) middle[k] = sample[sample.size() / 2];
  }
  return middle;
}

std::vector<FloatBox> mapped(const std::vector<giBox3>& boxes, const FloatFrame& frame) {
  std::vector<FloatBox> rough;
  rough.reserve(boxes.size());
  for (const giBox3& box : boxes) rough.push_back(frame.map(box.min(), box.max()));
  return rough;
}

}  // namespace

BoxTree::BoxTree(std::vector<giBox3> boxes)
    : boxes_(std::move(boxes)),
      frame_(middle_corner(boxes_)),
      order_(morton_order(mapped(boxes_, frame_))),
      blocks_(in_order()) {}

std::vector<FloatBox> BoxTree::in_order() const {
  std::vector<FloatBox> rough;
  rough.reserve(boxes_.size());
  for (const int i : order_) rough.push_back(frame_.map(box(i).min(), box(i).max()));
  return rough;
}
