#pragma once

#include <vector>

#include "analysis/cut_field.h"

/// Finds, among the elements round one node, the pairs that are worth the exact test.
///
/// Where two triangles share only this node, one cuts the other only through the side opposite to the node. Seen from
/// the node, such a side then covers a direction in which the other triangle lies. So each triangle is bounded by the
/// box of the directions (points of the unit sphere) that its opposite side covers, wide enough for the tolerances of
/// the exact test, and only triangles whose boxes overlap are tested: in an ordinary fan none but near neighbours,
/// however many there are. Triangles that share two nodes do not cut each other. Those with three or more matches of
/// nodes are found by sorting. Cost: O(n log n) for n elements whose directions do not pile up.
class FanSearch {
 public:
  /// What is done with the pairs; positions are those of the field.
  class Visitor {
   public:
    virtual ~Visitor() = default;
    /// Asked now and then; the search ends when it says so.
    virtual bool stops() = 0;
    virtual bool is_settled(int position) const = 0;
    virtual void test(int i, int j) = 0;
  };

  FanSearch(const CutField& field, int hub, const std::vector<int>& positions, double tol);

  /// Calls visitor.test for pairs that share this hub and none before it, each pair once. Pairs of settled positions
  /// may be left out.
  void run(Visitor& visitor);

 private:
  struct Member {
    int position;
    int others[2];  // the nodes beside the hub; where it stands in several corners it is among them
    bool single;    // names the hub once
  };
  struct Partner {
    int node;
    int member;
    bool operator<(const Partner& p) const { return node != p.node ? node < p.node : member < p.member; }
  };
  class DirectionWalk;

  const CutTriangle& triangle(int member) const {
    return field_.triangle(members_[static_cast<std::size_t>(member)].position);
  }
  double greatest_distance() const;
  std::vector<FloatBox> direction_boxes() const;
  FloatBox direction_box(const Member& member, double reach) const;
  std::vector<int> groups() const;
  void test_one_shared(Visitor& visitor) const;
  void test_equal_triangles(Visitor& visitor) const;
  void test_run(const std::vector<int>& positions, Visitor& visitor) const;
  void test_collapsed(Visitor& visitor) const;
  void test_if_ours(int i, int j, Visitor& visitor) const;

  const CutField& field_;
  int hub_;
  int node_;
  double tol_;
  std::vector<Member> members_;
  std::vector<Partner> partners_;  // members by the other nodes that they name, sorted, each once
};
