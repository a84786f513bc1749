#pragma once

#include <vector>

#include "analysis/triangle_cut.h"
#include "mesh/tri_block.h"
#include "platform/containers/large_vector.h"
#include "platform/spatial/box_blocks.h"

/// A run of positions in a list, or of numbers of any kind: first to last, both included.
struct Stretch {
  int first = 0;
  int last = -1;
  bool holds(int from, int to) const { return first <= from && to <= last; }
};

/// The elements of a block in the order in which pairs of them are searched, with all that the tests need side by side.
///
/// They come in groups, each in the order of a Morton curve: first those with a normal, then those without, then for
/// each hub (a node with very many elements) the elements that name it and no hub before. Two elements of a group other
/// than the first need not be compared through their boxes: those without normals never cut each other, and those at a
/// hub, whose boxes all meet there, are compared by FanSearch. Elements whose boxes do not cross that of the block are
/// left out. Memory: about 150 bytes an element, 250 while it is made.
class CutField {
 public:
  /// Nodes with more elements are hubs. Comparing all elements of a node with each other costs half as many tests for
  /// each element as it has; at a quarter of this number the extra work for hubs shows, at four times the tests do.
  static constexpr int hub_size = 64;

  /// Polls once for each element; interrupted, the field is empty.
  CutField(const trTriBlock& block, double tol);

  int count() const { return static_cast<int>(triangles_.size()); }
  const CutTriangle& triangle(int position) const { return triangles_[static_cast<std::size_t>(position)]; }
  /// The number of the element at that position.
  int element(int position) const { return elements_[static_cast<std::size_t>(position)]; }
  /// Over the element boxes grown by the tolerance; empty when no element has a normal, since then no two cut each
  /// other.
  const BoxBlocks& blocks() const { return blocks_; }
  const trTriBlock& block() const { return block_; }

  /// The elements that were left out: those whose coordinates are no numbers, and those that lie off the block's box.
  const std::vector<int>& left_out() const { return left_out_; }

  /// An element and where it stands in the order.
  struct Member {
    int element;
    int position;
  };
  /// What `box` crosses within the tolerance, in ascending order of the elements.
  std::vector<Member> members_crossing(const giBox3& box) const;

  int hub_count() const { return static_cast<int>(hub_nodes_.size()); }
  int hub_node(int hub) const { return hub_nodes_[static_cast<std::size_t>(hub)]; }
  /// The hub that a node is; -1 when it is none.
  int hub_at(int node) const { return hub_of_node_.empty() ? -1 : hub_of_node_[static_cast<std::size_t>(node)]; }
  /// The first of the hubs that two triangles share; -1 when there is none.
  int shared_hub(const CutTriangle& a, const CutTriangle& b) const;

  Stretch without_normal() const { return group(1); }
  /// The elements at a hub and at no hub before it.
  Stretch at_hub(int hub) const { return group(2 + hub); }
  /// All elements at each hub, by their positions.
  std::vector<std::vector<int>> fans() const;

 private:
  struct Gathered;

  Stretch group(int g) const {
    const auto at = static_cast<std::size_t>(g);
    return {group_start_[at], group_start_[at + 1] - 1};
  }
  void gather(Gathered& gathered);
  void number_hubs(const Gathered& gathered, const std::vector<int>& order);
  std::vector<int> grouped(const Gathered& gathered, const std::vector<int>& order);
  void take(const std::vector<int>& order, const Gathered& gathered);

  const trTriBlock& block_;
  double tol_;
  FloatFrame frame_;
  coLargeVector<CutTriangle> triangles_;
  std::vector<int> elements_;
  std::vector<int> left_out_;
  std::vector<int> group_start_ = {0, 0, 0};
  std::vector<int> hub_nodes_;
  std::vector<int> hub_of_node_;  // by node; empty when there is no hub
  BoxBlocks blocks_;
};
