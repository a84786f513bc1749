// Closing the selected cycles with triangles on their nodes.

#include <vector>

#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "platform/geometry/point_average3.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

constexpr double fit_share = 0.2;  // of the progress of capping a hole: fitting the surface

// The nodes of the cycle or its arc. Those of a row that closes the arc are not of the mesh round the hole: they stand on a
// straight line until the surface moves them.
void list_nodes(const trCycle& cycle, intcoPageArr& nodes) {
  nodes.clear(0);
  trCycleIT it(&cycle);
  while (++it) {
    if (it.arc_index < 0) nodes[nodes.count()] = it.s_node();
  }
}

bool fit_surface(const trTriBlock& block, const int* nodes, int n) {
  intcoPageArr loop;
  for (int i = 0; i < n; ++i) loop[i] = nodes[i];
  return block.enable_curvature_adjust(&loop, 0) == 0;
}

// Each attribute is the sum of those of the loop's nodes.
void sum_attributes(trTriBlock& block, int centre, const int* nodes, int n) {
  const int size = block.node_data_size();
  if (size < 1) return;
  trNodeDataTuple& sums = block.node_data(centre);
  sums = trNodeDataTuple();
  sums.weight = 1;
  for (int i = 0; i < n; ++i) {
    const trNodeDataTuple& tuple = block.node_data(nodes[i]);
    for (int k = 0; k < size && k < trNodeDataTuple::max_values; ++k) sums.values[k] += tuple.values[k];
  }
}

}  // namespace

int trCycleArray::fill_holes(const int& curvature) {
  if (!coMemoryScope::is_open()) return tr_guarded(block, 0, [&] { return fill_holes(curvature); });
  detect();
  if (block == nullptr || tr_interrupt()) return 0;
  block->reference_elements();
  if (tr_interrupt()) return 0;
  int filled = 0;
  std::vector<int> nodes;  // of one hole after another
  intcoSetcoIterator it(selection);
  while (++it) {
    if (tr_interrupt()) break;
    if (it() >= 0 && it() < cycles.count()) filled += fill_hole(cycles.at(it()), nodes, curvature);
  }
  block->force_changed_status(1);
  edge_count = -1;
  clear_selection_list();
  return filled > 0;
}

// The triangles run against the cycle, so that their edges cancel the free ones.
int trCycleArray::fill_hole(trCycle& cycle, std::vector<int>& nodes, int curvature) {
  if (cycle.start == -1) return 0;
  cycle.enable_holefilling(1);
  nodes.clear();
  trCycleIT it(&cycle);
  while (++it) nodes.push_back(it.s_node());
  edge_count = -1;
  const int* const v = nodes.data();
  if (nodes.size() == 3) {
    block->generate3(v[2], v[1], v[0]);
  } else if (nodes.size() == 4) {
    block->generate4(v[3], v[2], v[1], v[0]);
  } else {
    generate_n(nodes.data(), static_cast<int>(nodes.size()), curvature);
  }
  cycle.start = -1;
  cycle.enable_holefilling(0);
  return 1;
}

int trCycleArray::generate_n(int* nodes, int n, const int& curvature) const {
  if (n < 2) return 0;
  giPointAverage3 mean;
  for (int i = 0; i < n; ++i) mean.add(block->point(nodes[i]));
  if (curvature && !fit_surface(*block, nodes, n)) return -1;
  block->disable_curvature_adjust(1);
  const int centre = block->generate_node_private(mean.average(), giVector3(0.0, 0.0, 0.0), 0);
  for (int i = 0; i < n; ++i) block->generate(nodes[i + 1 < n ? i + 1 : 0], nodes[i], centre);
  sum_attributes(*block, centre, nodes, n);
  return 0;
}

int trCycleArray::enable_curvature_adjust(const trCycle& cycle, double percent_low, double percent_high) {
  const double fitted = percent_low + fit_share * (percent_high - percent_low);
  tr_set_percent_range(percent_low, fitted);
  intcoPageArr nodes;
  list_nodes(cycle, nodes);
  const int failed = block->enable_curvature_adjust(&nodes, 0);
  tr_set_percent_range(fitted, percent_high);
  return failed == 0;
}

void trCycleArray::disable_curvature_adjust() { block->disable_curvature_adjust(1); }

void trCycleArray::cap_hole_progress_init(int index, double& low, double& high) {
  low = tr_get_percent_inf_range();
  high = tr_get_percent_sup_range();
  const double step = selection.count() > 0 ? 100.0 / selection.count() : 100.0;
  tr_set_percent_range(index * step, (index + 1) * step);
  tr_set_default_feedback_message(utString(tr_brnknls("Filling Holes")));
}
