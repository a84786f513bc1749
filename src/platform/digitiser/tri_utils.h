#pragma once

#include "platform/geometry/tri_block_base.h"
#include "platform/utilities/export.h"

/// Questions about the triangles of a block.
class MENDEX_EXPORT digTriUtils {
 public:
  /// The triangles across the three sides of every triangle, by element number; side k runs from corner k to the next.
  ///
  /// The links are made anew in the block's `giLinkArrcoFeature` and stay there until the next call. Two triangles that
  /// share an edge, whatever their orientation, are neighbours. On an edge of more, each side names the lowest-numbered
  /// other triangle that runs the edge the other way, or, where there is none, the lowest-numbered other triangle: so a
  /// side is open (-1) only when no other triangle lies on its edge, and a link across a crowded edge always stays on
  /// that edge, but need not be mutual. Sides with equal ends are open; so deleted triangles have no neighbours, nor
  /// have slots that were never written. Cost: O(n log n) time, 48 bytes a triangle while it runs.
  static giLinkcoPageArr& get_tri_links(giTriBlock& block);
};
