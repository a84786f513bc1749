// The search of a host's own pool for edges with too many triangles: it needs a whole controller, which takes the pool over.

#include "analysis/sick_triangles.h"
#include "control/control.h"

int trSickTriangles::find_sick_triangles(const giTriBlock& block, trEdgeConnectioncoPageArr& out, int mode) {
  trControl control;
  control.action_fill_triblock(const_cast<giTriBlock&>(block));  // which only reads the pool
  control.triblock().find_sick(out, mode);
  return out.count() != 0;
}
