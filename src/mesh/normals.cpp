// Node normals and the angle between neighbouring elements.

#include <algorithm>
#include <unordered_map>

#include "mesh/measures.h"
#include "mesh/tri_block.h"
#include "progress/progress.h"

namespace {

// Cross vectors up to this length (in model units squared) have no direction worth using.
constexpr double degenerate_cross = 1e-6;

int element_normal(const trTriBlock& block, int e, giVector3& n) {
  const trElement& t = block.element(e);
  return tr_compute_normal(block.point(t[0]), block.point(t[1]), block.point(t[2]), degenerate_cross, n);
}

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

// Finds the element across a directed edge; lists longer than a bound are indexed by the node that precedes the hub.
class NeighbourSearch {
 public:
  explicit NeighbourSearch(const trTriBlock& block) : block_(block) {}

  // The first valid element other than i in u's list that has v immediately followed by u; 0 when there is none.
  int find(int i, int u, int v) {
    int steps = 0;
    trLoopIT around(&block_, u);
    while (++around) {
      if (around() != i && runs(around(), v, u)) return around();
      if (++steps > longest_walk) return find_in_hub(i, u, v);
    }
    return 0;
  }

 private:
  static constexpr int longest_walk = 64;

  bool runs(int j, int from, int to) const {
    const trElement& t = block_.element(j);
    if (!t.valid()) return false;
    return (t[0] == from && t[1] == to) || (t[1] == from && t[2] == to) || (t[2] == from && t[0] == to);
  }

  // For each node the first two elements that run from it to the hub: one of them is other than i.
  struct FirstTwo {
    int first = 0;
    int second = 0;
  };
  using Hub = std::unordered_map<int, FirstTwo>;

  int find_in_hub(int i, int u, int v) {
    const auto inserted = hubs_.try_emplace(u);
    Hub& hub = inserted.first->second;
    if (inserted.second) enter_elements(hub, u);
    const auto found = hub.find(v);
    if (found == hub.end()) return 0;
    return found->second.first != i ? found->second.first : found->second.second;
  }

  void enter_elements(Hub& hub, int u) {
    trIntListIT it(block_.node(u).elements);
    while (++it) {
      const trElement& t = block_.element(it());
      if (!t.valid()) continue;
      for (int k = 0; k < 3; ++k) {
        if (t[(k + 1) % 3] == u) enter(hub[t[k]], it());
      }
    }
  }

  static void enter(FirstTwo& entry, int e) {
    if (entry.first == 0) {
      entry.first = e;
    } else if (entry.second == 0 && e != entry.first) {
      entry.second = e;
    }
  }

  const trTriBlock& block_;
  std::unordered_map<int, Hub> hubs_;
};

}  // namespace

void trTriBlock::compute_node_normals() {
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
