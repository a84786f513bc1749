#pragma once

#include <cstdint>
#include <vector>

#include "platform/geometry/point2.h"

/// A triangulation of a rectangle in which chosen edges are fixed, Delaunay but for those: no node that a triangle can
/// see across edges that are not fixed lies inside its circle.
///
/// Half-edges are numbered 3 t + k, k = 0, 1, 2 counter-clockwise around triangle t. Nodes 0 to 3 are the corners of
/// the rectangle, the next ones are numbered as they are inserted; triangles are never deleted. Coordinates are such as
/// exact_predicates.h asks for. All topological decisions are exact; ties are decided by the order of insertion.
/// Members may throw std::bad_alloc.
class PlanarMesh {
 public:
  static constexpr int none = -1;
  static constexpr int corner_nodes = 4;

  /// Where a point lies: in a triangle (any half-edge of it), on an edge (one of its halves), on a node, or nowhere.
  enum class PlaceKind { in_triangle, on_edge, on_node, outside };
  struct Place {
    PlaceKind kind;
    int half;
  };
  enum class EdgeResult { fixed, touches, crosses };
  enum class Region : std::uint8_t { unknown, inside, outside };

  /// A rectangle of two triangles; every later point must lie inside it.
  PlanarMesh(const giPoint2& low, const giPoint2& high);

  void reserve(int nodes);
  int node_count() const { return static_cast<int>(points_.size()); }
  int triangle_count() const { return static_cast<int>(region_.size()); }
  const giPoint2& point(int node) const { return points_[at(node)]; }

  static int triangle(int half) { return half / 3; }
  static int next(int half) { return half % 3 == 2 ? half - 2 : half + 1; }
  static int previous(int half) { return half % 3 == 0 ? half + 2 : half - 1; }
  int start(int half) const { return start_[at(half)]; }
  int end(int half) const { return start_[at(next(half))]; }
  int apex(int half) const { return start_[at(previous(half))]; }
  /// The other half of the edge, `none` on the rim of the rectangle.
  int mate(int half) const { return mate_[at(half)]; }
  bool is_fixed(int half) const { return side_[at(half)] != Side::loose; }
  /// Some half-edge that starts at the node.
  int leaving(int node) const { return leaving_[at(node)]; }
  /// The half-edge that leaves the same node next, counter-clockwise; `none` behind the rim.
  int next_leaving(int half) const { return mate(previous(half)); }
  Region region(int triangle) const { return region_[at(triangle)]; }

  /// Finds a point by walking from `from_triangle`; a few steps when that is near.
  Place locate(const giPoint2& p, int from_triangle);
  /// The triangle that holds `target`, walking straight from inside `from_triangle`; `outside` when a fixed edge bars
  /// the way.
  Place locate_straight(const giPoint2& target, int from_triangle) const;

  /// Inserts a point where `locate` found it, in a triangle or on an edge that is not fixed, and restores the Delaunay
  /// property. The new triangles belong to the region of the old. Returns the node's number.
  int insert(const giPoint2& p, const Place& place);
  /// Makes the edge from a to b one of the triangulation and fixes it, with the inside on its left. `touches` when it
  /// runs through a node or along a fixed edge, `crosses` when it crosses one; nothing has changed then. Cost: the
  /// number of edges crossed, and the turns of edges needed to restore the Delaunay property.
  EdgeResult fix_edge(int a, int b);
  /// Sorts the triangles into regions by the fixed edges, starting from the rectangle's rim as outside; false when an
  /// edge has the same region on both sides or the inside on its right.
  bool mark_regions();

  /// Moves a node to where all its triangles keep their turn; the Delaunay property waits for `restore_around`.
  void move(int node, const giPoint2& p) { points_[at(node)] = p; }
  void restore_around(int node);

 private:
  enum class Side : std::uint8_t { loose, inside_left, inside_right };
  struct Cavity;

  static std::size_t at(int index) { return static_cast<std::size_t>(index); }
  int add_triangle(Region region);
  void set_triangle(int triangle, int a, int b, int c);
  void join(int half, int other);
  void turn(int half);
  void turn_around(int node);
  void turn_pending();
  Place place_in(int triangle, const double* side) const;
  Place search_all(const giPoint2& p) const;
  int exit_towards(const giPoint2& target, const giPoint2& from, const double* side, int triangle) const;

  EdgeResult fix_existing(int half);
  int first_crossed(int a, int b, EdgeResult& result) const;
  EdgeResult collect_cavity(int crossed, int a, int b, Cavity& cavity) const;
  void mark_links(Cavity& cavity);
  bool fill_side(Cavity& cavity, const std::vector<int>& chain, int last, int& base);
  void link_chains(const Cavity& cavity);

  std::vector<giPoint2> points_;
  std::vector<int> leaving_;    // by node
  std::vector<int> start_;      // by half-edge: its first node
  std::vector<int> mate_;       // by half-edge
  std::vector<Side> side_;      // by half-edge: fixed, and where the inside is
  std::vector<Region> region_;  // by triangle
  std::vector<int> pending_;    // half-edges to be tested
  std::vector<int> link_of_;    // by half-edge: scratch of fix_edge, `none` outside it
  std::uint32_t random_ = 1;    // chooses between two ways of a walk, so that no walk goes in circles for ever
};
