#pragma once

#include <cstdio>

#include "boundaries/containers.h"
#include "mesh/tri_block.h"
#include "platform/common/undo_history_data.h"
#include "platform/common/workplane.h"
#include "platform/geometry/arrays.h"
#include "platform/geometry/axis.h"

/// The cut of a mesh with a plane across an axis, as polylines: closed loops where the mesh is closed, open chains
/// where the cut runs out of the mesh.
///
/// Lengths up to 1e-5 are as good as zero. The cut keeps the points and segments that it was made of until the next
/// one.
class MENDEX_EXPORT trSection {
 public:
  explicit trSection(const trTriBlock* of);
  trSection(const trSection&) = delete;
  trSection& operator=(const trSection&) = delete;
  virtual ~trSection();

  const trTriBlock* block;   ///< not owned
  giPoint3coPageArr points;  ///< ends of segments, two for each; an invalid x marks one that was merged
  trSectionBoundarycoDynArrPrgcoPrgcoDynArr boundaries;  ///< indices of points along each polyline
  intcoPageArr edge_start;                               ///< by segment: its points; both -1 once it is cancelled
  intcoPageArr edge_end;
  ccUndoHistoryData history;  ///< for the host
  giWorkplane3 workplane;     ///< frame of the cut; none while its origin is invalid

  /// Cuts where the coordinate along `axis` is `value`, in the frame of the workplane when there is one.
  ///
  /// A node counts as below when it is by more than 1e-5, so an element that only touches the plane from above adds
  /// nothing. Segments follow the orientation of their elements; coincident ends are merged, the first of them staying.
  /// Open chains are traced from their beginning, and a closed polyline names its first point again at the end. Cost:
  /// about n log n.
  void section(gi_Axis axis, double value);

  int n_boundaries() const { return boundaries.count(); }
  /// Number of points of a polyline; 0 when there is none of that number.
  int n_boundary_points(int b) const;
  /// Point i of polyline b; an invalid point when there is none.
  const giPoint3& boundary_point(int b, int i) const;

  /// Draws the polylines, in the commands of picture files, and closes the file. Each ends with its first point.
  void write_pic(std::FILE* file) const;
  void reset();
  void set_workplane(const ccWorkplane& plane) { workplane = plane.workplane(); }

 protected:
  /// Adds the segment in which the element crosses the plane; whether it does.
  int section_element(int element, gi_Axis axis, double value);
  void add_edge(const giPoint3& from, const giPoint3& to);
  /// The live segment with which to go on from a point: the one that `out_edge` names, else the lowest; -1 when there
  /// is none.
  int next_edge(int point, const intcoPageArr& out_edge);
  void unduplicate_nodes();
  void trace_boundaries();
  /// Appends the polyline that begins with a segment, and cancels its segments.
  void trace_boundary(int edge, const intcoPageArr& out_edge, intcoPageArr& balance);
  int edge_cancelled(int edge) const { return edge_start.at(edge) == -1; }
  void cancel_edge(int edge);
  void cancel_edge(int edge, intcoPageArr& balance);

 private:
  giPoint3 node_point(int node) const;
  void index_starts();
  int lowest_edge_from(int point);

  // The segments that start at a point, ascending: the first of them, and the next of each. Cancelled ones are dropped
  // from the front.
  intcoPageArr first_from_;
  intcoPageArr next_from_;
};
