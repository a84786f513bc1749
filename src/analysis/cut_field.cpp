#include "analysis/cut_field.h"

#include <algorithm>

#include "analysis/element_box.h"
#include "platform/spatial/morton_order.h"
#include "platform/utilities/prefetch.h"
#include "progress/progress.h"

namespace {

FloatFrame frame_of(const trTriBlock& block) {
  std::vector<giPoint3> sample;
  for (int e = 1; e < block.element_count(); e += block.element_count() / 100 + 1) {
    if (block.element(e).valid()) sample.push_back(element_box(block, e).min());
  }
  return FloatFrame::about_middle(sample);
}

bool has_normal(const trTriBlock& block, const trElement& t, double tol) {
  const giPoint3& b = block.point(t[1]);
  return (b - block.point(t[0])).cross(block.point(t[2]) - b).length() > tol;
}

}  // namespace

// The elements that can cut others, in ascending order.
struct CutField::Gathered {
  std::vector<int> elements;
  coLargeVector<FloatBox> boxes;
  std::vector<char> has_normal;
  std::vector<int> uses;  // by node: the corners that name it
  bool any_normal = false;
};

CutField::CutField(const trTriBlock& block, double tol) : block_(block), tol_(tol), frame_(frame_of(block)) {
  Gathered gathered;
  gather(gathered);
  if (tr_interrupt() || !gathered.any_normal) return;
  const std::vector<int> order = morton_order(gathered.boxes);
  if (tr_interrupt()) return;
  number_hubs(gathered, order);
  take(grouped(gathered, order), gathered);
}

void CutField::gather(Gathered& gathered) {
  const giBox3 whole = block_.box();
  const auto expected = static_cast<std::size_t>(block_.element_count());
  gathered.elements.reserve(expected);
  gathered.boxes.reserve(expected);
  gathered.has_normal.reserve(expected);
  gathered.uses.resize(static_cast<std::size_t>(block_.node_count()));
  for (int e = 1; e < block_.element_count() && !tr_interrupt(); ++e) {
    block_.prefetch_corners(e + trTriBlock::corners_ahead);
    giBox3 box = element_box(block_, e);
    if (!box.crosses(whole, tol_)) {
      if (!box.is_empty()) left_out_.push_back(e);
      continue;
    }
    box.grow(tol_);
    const trElement& t = block_.element(e);
    const bool normal = has_normal(block_, t, tol_);
    gathered.elements.push_back(e);
    gathered.boxes.push_back(frame_.map(box.min(), box.max()));
    gathered.has_normal.push_back(normal);
    gathered.any_normal |= normal;
    for (int k = 0; k < 3; ++k) ++gathered.uses[static_cast<std::size_t>(t[k])];
  }
}

// In the order in which they are met along the curve, so that neighbouring hubs get neighbouring groups.
void CutField::number_hubs(const Gathered& gathered, const std::vector<int>& order) {
  const auto is_hub = [](int uses) { return uses > hub_size; };
  if (std::none_of(gathered.uses.begin(), gathered.uses.end(), is_hub)) return;
  hub_of_node_.assign(gathered.uses.size(), -1);
  for (const int i : order) {
    const trElement& t = block_.element(gathered.elements[static_cast<std::size_t>(i)]);
    for (int k = 0; k < 3; ++k) {
      const auto node = static_cast<std::size_t>(t[k]);
      if (!is_hub(gathered.uses[node]) || hub_of_node_[node] >= 0) continue;
      hub_of_node_[node] = hub_count();
      hub_nodes_.push_back(t[k]);
    }
  }
}

std::vector<int> CutField::grouped(const Gathered& gathered, const std::vector<int>& order) {
  std::vector<int> group_of(order.size());
  group_start_.assign(static_cast<std::size_t>(hub_count()) + 3, 0);
  for (std::size_t i = 0; i < order.size(); ++i) {
    int group = gathered.has_normal[i] ? 0 : 1;
    if (hub_count() > 0) {
      const trElement& t = block_.element(gathered.elements[i]);
      int first = hub_count();
      for (int k = 0; k < 3; ++k) {
        if (hub_at(t[k]) >= 0) first = std::min(first, hub_at(t[k]));
      }
      if (first < hub_count()) group = 2 + first;
    }
    group_of[i] = group;
    ++group_start_[static_cast<std::size_t>(group) + 1];
  }
  for (std::size_t g = 1; g < group_start_.size(); ++g) group_start_[g] += group_start_[g - 1];
  std::vector<int> next(group_start_.begin(), group_start_.end());
  std::vector<int> sorted(order.size());
  for (const int i : order) {
    int& place = next[static_cast<std::size_t>(group_of[static_cast<std::size_t>(i)])];
    sorted[static_cast<std::size_t>(place++)] = i;
  }
  return sorted;
}

void CutField::take(const std::vector<int>& order, const Gathered& gathered) {
  constexpr std::size_t corners_ahead = 16;
  constexpr std::size_t elements_ahead = 48;
  constexpr std::size_t boxes_ahead = 16;
  const auto box = [&](std::size_t i) -> const FloatBox& { return gathered.boxes[static_cast<std::size_t>(order[i])]; };
  const auto number = [&](std::size_t i) { return gathered.elements[static_cast<std::size_t>(order[i])]; };
  triangles_.resize(order.size());
  elements_.resize(order.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i % 1024 == 0 && tr_interrupt()) {
      triangles_.clear();
      elements_.clear();
      return;
    }
    if (i + elements_ahead < order.size()) {
      co_prefetch_for_reading(&block_.element(number(i + elements_ahead)));
    }
    if (i + corners_ahead < order.size()) block_.prefetch_corners(number(i + corners_ahead));
    elements_[i] = number(i);
    const trElement& t = block_.element(elements_[i]);
    triangles_[i].set(t, block_.point(t[0]), block_.point(t[1]), block_.point(t[2]), tol_);
  }
  blocks_ = BoxBlocks(order.size(), [&](std::size_t i) {
    if (i + boxes_ahead < order.size()) co_prefetch_for_reading(&box(i + boxes_ahead));
    return box(i);
  });
}

std::vector<CutField::Member> CutField::members_crossing(const giBox3& box) const {
  std::vector<Member> found;
  giBox3 grown = box;
  grown.grow(tol_);
  const FloatBox rough = frame_.map(grown.min(), grown.max());
  blocks_.visit_blocks(
      rough, [](int, int) { return false; },
      [&](int b) {
        for (unsigned lanes = blocks_.block(b).overlapping(rough); lanes != 0; lanes &= lanes - 1) {
          const int position = b * BoxBlock::width + lowest_bit(lanes);
          if (element_box(block_, triangle(position)).crosses(box, tol_)) found.push_back({element(position), position});
        }
      });
  std::sort(found.begin(), found.end(), [](const Member& a, const Member& b) { return a.element < b.element; });
  return found;
}

int CutField::shared_hub(const CutTriangle& a, const CutTriangle& b) const {
  int first = -1;
  for (const int node : a.nodes) {
    const int hub = hub_at(node);
    if (hub < 0 || std::count(b.nodes, b.nodes + 3, node) == 0) continue;
    if (first < 0 || hub < first) first = hub;
  }
  return first;
}

std::vector<std::vector<int>> CutField::fans() const {
  std::vector<std::vector<int>> fans(hub_nodes_.size());
  for (int i = group_start_[2]; i < count(); ++i) {
    for (const int node : triangle(i).nodes) {
      if (hub_at(node) < 0) continue;
      std::vector<int>& fan = fans[static_cast<std::size_t>(hub_at(node))];
      if (fan.empty() || fan.back() != i) fan.push_back(i);
    }
  }
  return fans;
}
