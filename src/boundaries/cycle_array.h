#pragma once

#include <cstdint>
#include <cstdio>

#include "boundaries/cycle.h"
#include "platform/geometry/length.h"
#include "platform/geometry/unit_vec3.h"

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

 protected:
  /// Finds the cycles unless that is done. Returns the number of free edges; interrupted before it began, the former
  /// one.
  ///
  /// Cycles begin at the lowest node that has a free edge left, and follow from each node the free edge that was made
  /// first. Cost: O(nodes), beside building the edges where they are not.
  int detect() const;
  /// Discards the cycles of this set, and the node sequences of all.
  void reset();

 private:
  friend class trControl;
  friend class trCycle;

  trCycleArray* self() const { return const_cast<trCycleArray*>(this); }
  static std::int64_t geometry_revision(const trTriBlock& of) { return of.geometry_revision_; }
  void detect_again();
  bool walk_free_edges();
  void select_cycle(int id, double& average_length, const int (&single_picks)[3], const intcoSet& picks);

  static std::int64_t resets_;        // of all sets so far
  std::int64_t reset_ = 0;            // number of the reset that this set's entries follow; 0: none
  std::int64_t block_revision_ = -1;  // the block's topology revision at the last detection that ran to its end
};
