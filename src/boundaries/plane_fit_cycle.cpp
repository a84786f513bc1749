#include "boundaries/plane_fit_cycle.h"

int trPlaneFitCycle::size() const { return cycle->size(); }

void trPlaneFitCycle::restart() {
  it.cur = -1;
  it.arc_index = -1;
  iter_index = -1;
}

void trPlaneFitCycle::set_iter(int i) {
  if (i <= 0 && i != iter_index) restart();
  if (i < iter_index) restart();
  while (iter_index < i) {
    if (!++it) return restart();
    ++iter_index;
  }
}

const giPoint3& trPlaneFitCycle::data_point(int i) const {
  static const giPoint3 origin;
  self()->set_iter(i);
  const int node = it.s_node();
  return iter_index >= 0 && node >= 0 && node < block->node_count() ? block->point(node) : origin;
}

int trPlaneFitCycle::fit(giPoint3& origin, giVector3& normal) const {
  double residual = 0.0;
  return ccPlaneFit::fit(origin, normal, residual);
}
