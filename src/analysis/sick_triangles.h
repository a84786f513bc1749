#pragma once

#include <memory>

#include "mesh/containers.h"
#include "platform/utilities/export.h"

class giTriBlock;

/// Collects the edges of triangles and tells which ones more than two triangles share.
class MENDEX_EXPORT trSickTriangles {
 public:
  trSickTriangles();
  trSickTriangles(const trSickTriangles&) = delete;
  trSickTriangles& operator=(const trSickTriangles&) = delete;
  ~trSickTriangles();

  /// Enters an element on the edge between a and b; the direction makes no difference. Cost: O(1) expected.
  void enter(int elem, int a, int b);

  /// Appends the edges with more than two different elements, in the order in which they were first entered.
  void get_sick_triangles(trEdgeConnectioncoPageArr& out);

  /// Appends the crowded edges of a block, which is copied into a mesh of the library for the search; see
  /// trTriBlock::find_sick for `mode`.
  /// @return non-zero when `out` is not empty
  static int find_sick_triangles(const giTriBlock& tb, trEdgeConnectioncoPageArr& out, int mode);

 private:
  class Edges;
  std::unique_ptr<Edges> edges_;
};
