// Node normals and the angle between neighbouring elements.

#include <algorithm>

#include "mesh/neighbour_search.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "progress/progress.h"

namespace {

giVector3 mean_normal(const trTriBlock& block, int i) {
  double sum[3] = {0.0, 0.0, 0.0};
  int found = 0;
  trLoopIT around(&block, i);
  while (++around) {
    const trElement& t = block.element(around());
    giVector3 n;
    if (!t.valid() || around.index_node(t) == 3 || !element_normal(block, around(), n)) continue;
    sum[0] += n.x();
    sum[1] += n.y();
    sum[2] += n.z();
    ++found;
  }
  if (found == 0) return giVector3(0.0, 0.0, 1.0);
  giVector3 mean(sum[0] / found, sum[1] / found, sum[2] / found);
  mean.make_unit();
  return mean;
}

}  // namespace

void trTriBlock::compute_node_normals() {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { compute_node_normals(); });
  if (normals_built && normals_edit_count_ == edit_count_) return;
  normals_built = 0;
  check_out(normals_feature_);
  normals_ = &normals_feature_.data()->normals;
  reference_elements();
  const int size = node_data_size();
  for (int i = 0; i < node_count(); ++i) {
    if (tr_interrupt()) return;
    (*normals_)[i] = attribute_or_mean_normal(i, size);
  }
  normals_built = 1;
  normals_edit_count_ = edit_count_;
}

// Attributes that hold a normal are taken as given, without being made a unit vector.
giVector3 trTriBlock::attribute_or_mean_normal(int i, int data_size) const {
  const giVector3 z_axis(0.0, 0.0, 1.0);
  if (node(i).invalid) return z_axis;
  if (data_size >= 3 && i < node_data_->tuples.count()) {
    const double* v = node_data(i).values;
    if (v[0] != 0.0 || v[1] != 0.0 || v[2] != 0.0) return giVector3(v[0], v[1], v[2]);
  }
  return mean_normal(*this, i);
}

double trTriBlock::min_dotp(double limit, int& count) const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0.0, [&] { return min_dotp(limit, count); });
  count = 0;
  double least = 1.0;
  reference_elements();
  NeighbourSearch neighbours(*this);
  for (int i = 1; i < element_count(); ++i) {
    if (tr_interrupt()) return least;
    giVector3 n;
    if (!element(i).valid() || !element_normal(*this, i, n)) continue;
    const trElement& t = element(i);
    for (int k = 0; k < 3; ++k) {
      const int j = neighbours.find(i, t[k], t[(k + 1) % 3]);
      giVector3 across;
      if (j == 0 || !element_normal(*this, j, across)) continue;
      const double d = n.dot(across);
      least = std::min(least, d);
      count += d < limit;
    }
  }
  return std::max(-1.0, std::min(1.0, least));
}
