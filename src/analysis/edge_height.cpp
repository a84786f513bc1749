// The distance of a node from an edge, as stitching needs it.

#include "mesh/tri_block.h"

int trTriBlock::check_height_get_par(int n, int s, int e, double tol, double& par) const {
  const giPoint3& start = point(s);
  const giVector3 along = point(e) - start;
  const double length_sq = along.length_sq();
  if (length_sq == 0.0) return 0;
  par = (point(n) - start).dot(along) / length_sq;
  if (par <= 0.0 || par >= 1.0) return 0;
  return point(n).distance(start + par * along) < tol;
}
