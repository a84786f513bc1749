#pragma once

#include "mesh/containers.h"
#include "mesh/tri_block.h"
#include "platform/triangulation/at2_plane.h"

/// Fills a hole of a block by triangles in a plane, with new nodes at about a spacing.
///
/// In the coordinates of the plane the normal is the z axis and the origin is 0. New nodes lie in the plane or, while
/// the block adjusts new nodes to its fitted surface, where they meet it along the normal.
class MENDEX_EXPORT trTriPlane : public at2Plane {
 public:
  /// @param of       stays the caller's
  /// @param distance of new nodes, model units; checked by the triangulation
  /// @param at       a point of the plane
  /// @param up       of length 1; the triangles turn counter-clockwise when seen against it. Within 1e-4 of the z axis or
  ///                 its opposite the plane is not tilted: it is parallel to the axes x and y, and coordinates keep
  ///                 their bits but for the origin.
  trTriPlane(trTriBlock* of, double distance, const giPoint3& at, const giVector3& up);

  /// Fills the area between the edges in `pairs`; to be called once. The block is untouched but for success. Half-way,
  /// at 40 % of the progress range, nodes are known and triangles are not; the range is left as it was.
  at2PlaneError go();

  giPoint2 position(int node) override;
  int make_node(giPoint2 p) override;
  void make_triangle(int a, int b, int c) override;
  int progress_feedback(int stage, int value, const void* message, void* data) override;

  trTriBlock* block;
  double spacing;
  giPoint3 origin;
  giVector3 normal;
  giXform3 to_plane;      ///< space to plane
  giXform3 from_plane;    ///< and back
  trPaircoPageArr pairs;  ///< the edges that the triangles must have, each from first to second, the area on their left
};
