#include "platform/spatial/box_tree.h"

#include <utility>

#include "platform/spatial/morton_order.h"

namespace {

FloatFrame frame_of(const std::vector<giBox3>& boxes) {
  std::vector<giPoint3> sample;
  for (std::size_t i = 0; i < boxes.size(); i += boxes.size() / 100 + 1) {
    if (!boxes[i].is_empty()) sample.push_back(boxes[i].min());
  }
  return FloatFrame::about_middle(sample);
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
      frame_(frame_of(boxes_)),
      order_(morton_order(mapped(boxes_, frame_))),
      blocks_(in_order()) {}

std::vector<FloatBox> BoxTree::in_order() const {
  std::vector<FloatBox> rough;
  rough.reserve(boxes_.size());
  for (const int i : order_) rough.push_back(frame_.map(box(i).min(), box(i).max()));
  return rough;
}
