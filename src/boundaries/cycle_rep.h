#pragma once

#include "platform/utilities/export.h"

/// One entry of a cycle's sequence of nodes.
class MENDEX_EXPORT trCycleRep {
 public:
  trCycleRep() = default;
  trCycleRep(int node_number, int is_active) : node(node_number), active(is_active) {}

  int node = 0;    ///< node of the block
  int active = 0;  ///< 1 while the edge that leaves this entry is live, 0 once it was cancelled
};
