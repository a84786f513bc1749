#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

#include "boundaries/cycle.h"
#include "platform/geometry/length.h"
#include "platform/geometry/unit_vec3.h"
#include "platform/triangulation/at2_plane.h"

/// The boundary of one block as a set of closed cycles of free edges.
///
/// Every query first detects the cycles, which costs nothing while the block's edges are built and the block is
/// unchanged since. Detection discards all cycles with their picks and marks, but keeps the `selection`. The node
/// sequences of all sets share one array, so of several sets only the one that detected last holds good; the others
/// detect again when they are asked. Interrupted detection leaves some of the cycles and is done again by the next
/// query. Queries are const but detect through self(): never define an object of this class as const.
class MENDEX_EXPORT trCycleArray {
 public:
  /// A set bound to a block, which stays the caller's; nothing is detected yet.
  explicit trCycleArray(trTriBlock* of) : block(of) {}
  trCycleArray(const trCycleArray&) = delete;
  trCycleArray& operator=(const trCycleArray&) = delete;
  ~trCycleArray() = default;

  trCyclecoPageArr cycles;  ///< by cycle number, from 0; removed cycles stay, with a start of -1
  trTriBlock* block;        ///< not owned
  int edge_count = -1;      ///< number of free edges; -1: not known
  intcoSet selection;  ///< numbers of the selected cycles; detection keeps them, so they may name cycles that are gone

  /// Whether the cycles are those of the block as it is now.
  int detected() const;
  /// Number of cycles, removed ones excepted.
  int num_boundaries() const;
  /// Number of free edges of those cycles.
  int num_edges() const;
  /// Box of all cycles; interrupted, of some.
  giBox3 box();

  /// Prints the boundary report, with register commands to `file` when there is one; the file stays open. How many
  /// boundaries have how many edges is told for verbose blocks and with `detailed`. Interrupted, the report ends where
  /// it is.
  void info(std::FILE* file, int detailed) const;
  /// Writes the boundaries as polylines, in the commands of picture files, and closes the file. Each has a point more
  /// than edges.
  void write(std::FILE* file) const;

  /// Adds cycles to the selection, or with `select` 0 removes them. Numbers that name no cycle are passed over.
  ///
  /// Selecting a cycle for the first time only marks it. Selecting it again records picks on it: `pick`, and when that
  /// was not accepted a node of `picks`, then an end of the edge. A successful pick from the set is followed by the
  /// edge as well.
  /// @param average_length  receives the mean edge length of the last cycle selected; 0 without one
  /// @return the first number that was changed, in the order of the set; -1 when there is none
  int select_cycles(const intcoSet& ids, const int& select, double& average_length, int pick, const intcoSet& picks,
                    int edge_start, int edge_end) const;
  void clear_selection_list() { selection.clear(); }

  /// The boundary node nearest to the line through `point` along `direction`; -1 without boundaries. Of nodes as near
  /// within `tol` the one that lies first along the line. Coordinates that are not numbers are passed over. Cost:
  /// O(free edges).
  int closest_node(const giPoint3& point, const giUnitVec3& direction, double tol) const;
  /// The same for points of boundary edges; the origin without boundaries.
  giPoint3 closest_edge_point(const giPoint3& point, const giUnitVec3& direction, double tol);

  /// The gap between a boundary node and a boundary edge that it is no end of: `from` is the node's position, `to` the
  /// nearest point of the edge; both have an invalid x, and the length no value, when there is no such pair.
  ///
  /// Edges and cycles are compared only when their boxes, grown by the least distance so far, hold the `from` of that
  /// distance: the result is a local least gap, and the least of all only where gaps lie close to one another. Cost:
  /// about n log n for n free edges.
  giLength measure_distance(giPoint3& from, giPoint3& to);

  // --- stitching ----------------------------------------------------------------------------------------------------
  /// Joins boundary nodes to boundary edges by triangles: a node and an edge that make a triangle of less than `tol` in
  /// height. Each node and each edge is used once, pairs being taken in the order of the walk along the cycles. The
  /// height is not bounded along the edge: any node in line with it will do.
  /// @return 1 when a pair was found, also when its edge had vanished before its turn. Cost: about n log n for n free edges, and a test for
  /// each pair of cycles within `tol` of which one keeps nodes that nothing takes; up to 150 bytes a cycle and 40 a free edge meanwhile.
  int stitch(double tol);
  /// Splits the elements on boundary edges where boundary nodes lie on the edge, strictly between its ends and nearer
  /// than `tol`, into fans through those nodes. Elements made by this pass are not split again by it.
  /// @return 1 when elements were deleted and made. Cost: about n log n for n free edges; up to 170 bytes a free edge meanwhile.
  int superstitch(double tol);
  /// Merges boundary nodes that lie within `tol` of each other, inclusive: the one met first along the cycles stays, its
  /// attributes averaged with those of the others. Elements that collapse are deleted.
  /// @return 1 when a node was merged; 0 also when interrupted
  int unduplicate_nodes(double tol);

  // --- filling and capping: the selected cycles, in the order of the selection, which is empty afterwards ------------
  /// Closes each cycle, or its arc chosen by picks, by one triangle, two, or a fan round its centre.
  ///
  /// The centre's attributes are the sums of those of the cycle's nodes. With `curvature` a cycle that no surface can be
  /// fitted to stays open, but counts as filled; the centre lies at the mean of the nodes all the same.
  /// @return 1 when a cycle was filled. Cost: O(edges of the cycles), beside current edges and element lists.
  int fill_holes(const int& curvature);
  /// Closes each cycle, or its arc, by triangles in the plane fitted to it with nodes at about `spacing`, model units.
  /// With `curvature` the new nodes lie on a surface fitted to the mesh round the hole. A hole that fails stays open.
  /// New nodes inside a hole drop all node attributes of the block, for good.
  /// @param second_tol  not used
  /// @param error       receives that of the last cycle tried that came so far as to be triangulated; 0 for none
  /// @return 1 when a cycle was tried; 0 also when interrupted
  int cap_holes(double spacing, double second_tol, at2PlaneError& error, const int& curvature);
  /// The same for one cycle. `progress_index` is its place among those selected, of whose progress it takes its share.
  /// @return 1 when it was closed
  int cap_hole(int progress_index, int cycle, double spacing, int curvature, at2PlaneError& error);

 protected:
  /// Finds the cycles unless that is done. Returns the number of free edges; interrupted before it began, the former
  /// one.
  ///
  /// Cycles begin at the lowest node that has a free edge left, and follow from each node the free edge that was made
  /// first. Cost: O(nodes), beside building the edges where they are not.
  int detect() const;
  /// Discards the cycles of this set, and the node sequences of all.
  void reset();

  /// Closes a loop of nodes by a fan round its centre. 0; -1 when there was to be a surface and none could be fitted.
  int generate_n(int* nodes, int n, const int& curvature) const;
  /// Makes nodes on the line between the two picks of a cycle, which from then on close its arc. `ends` holds what
  /// enable_holefilling gives. 1; 0 without picks. A second row, between the neighbours of the picks, stays loose.
  int create_hole_subdivision_nodes(trCycle& cycle, int* const ends, double max_length, const giVector3& direction);
  /// Fits a surface to the cycle. The first fifth of the progress from low to high is the fit's; the rest remains set.
  int enable_curvature_adjust(const trCycle& cycle, double percent_low, double percent_high);
  void disable_curvature_adjust();
  /// The best plane through the nodes of a cycle or its arc. 1 for success.
  int cycle_fit_plane(const trCycle& cycle, giPoint3& origin, giVector3& normal);
  /// Caps one cycle in a plane; 1 when `error` is 0.
  int cap_cycle(int cycle, const giPoint3& origin, const giVector3& normal, double spacing, at2PlaneError& error);
  /// Sets the progress range of hole `index` of those selected, and its message; low and high receive the former range.
  void cap_hole_progress_init(int index, double& low, double& high);

 private:
  friend class trControl;
  friend class trCycle;

  trCycleArray* self() const { return const_cast<trCycleArray*>(this); }
  static std::int64_t geometry_revision(const trTriBlock& of) { return of.geometry_revision_; }
  void detect_again();
  std::vector<int> merge_boundary_nodes(double tol, intcoPageArr& slots);
  bool walk_free_edges();
  int fill_hole(trCycle& cycle, std::vector<int>& nodes, int curvature);
  void select_cycle(int id, double& average_length, const int (&single_picks)[3], const intcoSet& picks);

  static std::int64_t resets_;        // of all sets so far
  std::int64_t reset_ = 0;            // number of the reset that this set's entries follow; 0: none
  std::int64_t block_revision_ = -1;  // the block's topology revision at the last detection that ran to its end
};
