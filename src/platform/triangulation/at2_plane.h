#pragma once

#include <memory>
#include <vector>

#include "platform/geometry/box2.h"
#include "platform/geometry/point2.h"
#include "platform/utilities/export.h"

class WorkMeter;

/// Results of the planar area triangulator. Where several apply, the one found first in the order of this list of steps
/// is given: the lengths, the edges as a graph, the positions, the box, zero area, nodes that coincide, edges that
/// touch or cross, the direction, the number of nodes.
enum at2PlaneError {
  at2_success = 0,
  at2_bad_length = 1,        ///< a length is zero, negative or not a number
  at2_open_loop = 2,         ///< there are no edges, or as many edges do not start as end at a node
  at2_not_finite = 3,        ///< a position or a corner of the box is infinite or not a number
  at2_interrupted = 4,       ///< `progress_feedback` asked to stop
  at2_repeated_node = 5,     ///< a loop passes a node twice, two loops share a node, or an edge ends where it starts
  at2_several_failed = 6,    ///< not given here: for hosts that triangulate several areas and report on all
  at2_outside_box = 7,       ///< a node lies outside the working box
  at2_zero_area = 8,         ///< all nodes lie on one line
  at2_coincident_nodes = 9,  ///< two nodes have the same position
  at2_touching_loops = 10,   ///< an edge runs through a node or along another edge
  at2_crossing_loops = 11,   ///< two edges cross
  at2_wrong_direction = 12,  ///< the inside is not on the left of every edge: an outer loop runs clockwise, say, or a
                             ///< hole counter-clockwise
  at2_too_many_nodes = 13,   ///< the spacing asks for more than 10^7 interior nodes
  at2_no_memory = 14,        ///< memory ran out while working
  at2_node_refused = 15      ///< `make_node` returned a negative number; the nodes made before it stay
};

/// Fills the area between directed loops of edges with triangles and, if wanted, interior nodes at about a spacing.
///
/// Derive, give the edges by node numbers with the area on their left (outer loops counter-clockwise, holes clockwise,
/// any number of both, nested as deep as one likes), then call `generate_interior_nodes` and `triangulate`, or
/// `triangulate` alone for a triangulation of the given nodes only. Each edge becomes the side of exactly one triangle,
/// whole and in its direction; the triangles turn counter-clockwise, are Delaunay as far as the edges allow, and cover
/// the area between the loops exactly.
///
/// Local spacing at a point p: let l(v) be the length of the shorter of the two edges at a node v. It is `spacing`, but
/// at most l(v) + d(v, p) / 4 for each v (to within a fifteenth), and, where those do not lower it, at least l(v) - 3 d(v, p) / 2. (The slopes
/// 1/4 and 3/2 are those of `grading` = `spacing`; they are in proportion to spacing / grading, which counts as at
/// least 1/8 and at most 8.) Interior nodes are about the local spacing apart, and none is nearer to an edge than half
/// of it. They are refused, none being made, from a spacing that is at least the diagonal of the box. Where no edge is
/// longer than the local spacing and no corner sharper than a right angle, the angles of the triangles are at least
/// about 25 degrees.
///
/// Nothing is made before all has been worked out: `make_node` and then `make_triangle` are called only at the end of
/// `triangulate`. The result is the same on every machine and does not depend on the order of the edges beyond the
/// numbering. Method: constrained Delaunay triangulation with exact decisions; nodes of a hexagonal grid where the
/// local spacing is `spacing`; circumcentres of triangles that are too large (L. P. Chew, Guaranteed-quality triangular
/// meshes, 1989); then some smoothing. Cost: O(n log n) expected time, about 250 bytes a node while it works.
class MENDEX_EXPORT at2Plane {
 public:
  /// @param box      must hold all nodes when the work starts; may be set later
  /// @param spacing  distance of interior nodes, model units, above 0
  /// @param grading  how gently the spacing changes away from edges of another length, model units, above 0: over this distance it
  ///                 grows by a quarter of `spacing`, or shrinks by one and a half of it
  at2Plane(const giBox2& box, double spacing, double grading);
  at2Plane(const at2Plane&) = delete;
  at2Plane& operator=(const at2Plane&) = delete;

  void set_box(const giBox2& box);
  /// Adds the edge from node a to node b, the area on its left.
  void add_edge(int a, int b);
  /// Works out the loops and the interior nodes; makes nothing. `data` is handed on to `progress_feedback`.
  at2PlaneError generate_interior_nodes(void* data);
  /// Works out the triangles and makes nodes and triangles. Without interior nodes when those were not generated, or
  /// not successfully, since the last call.
  at2PlaneError triangulate(void* data);

  /// Where a node is. Asked once for each node of the edges, by each of the two operations that starts from the edges.
  virtual giPoint2 position(int node) = 0;
  /// Makes an interior node and returns its number, not negative.
  virtual int make_node(giPoint2 p) = 0;
  /// Makes a triangle, counter-clockwise.
  virtual void make_triangle(int a, int b, int c) = 0;
  /// Stage 0: an operation starts, `message` (const char*) says which; stage 1: `value` percent of it are done, from 0
  /// to 100 and never falling. Anything but 0 stops the work, but for the calls while nodes and triangles are made,
  /// whose result is not heeded.
  virtual int progress_feedback(int stage, int value, const void* message, void* data) = 0;
  virtual ~at2Plane();

 private:
  struct Work;
  at2PlaneError prepare(WorkMeter& meter);
  at2PlaneError read_nodes(Work& work);
  at2PlaneError make_nodes(WorkMeter& meter, std::vector<int>& numbers);
  void make_triangles(WorkMeter& meter, const std::vector<int>& numbers);
  WorkMeter start_operation(const char* message, void* data);

  struct Edge {
    int start, end;
  };
  giBox2 box_;
  double spacing_;
  double grading_;
  std::vector<Edge> edges_;
  std::unique_ptr<Work> work_;  // what generate_interior_nodes leaves for triangulate
};
