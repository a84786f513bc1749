// The ring of nodes round a boundary.

#include "mesh/tri_block.h"
#include "mesh/memory_guard.h"
#include "platform/containers/int_set.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

// Nodes appended to a list, each once. What is listed is marked in a set, so that the cost follows the list and not the mesh.
class RingCollector {
 public:
  RingCollector(const trTriBlock& block, intcoPageArr& out, const intcoPageArr* exclude) : block_(block), out_(out) {
    mark(out);
    if (exclude != nullptr) mark(*exclude);
  }

  // The element lists of the block must be current.
  void collect_round(int node) {
    if (node < 1 || node >= block_.node_count()) return;
    trLoopIT around(&block_, node);
    while (++around) {
      const trElement& t = block_.element(around());
      if (!t.valid() || around.index_node(t) == 3) continue;
      for (int k = 0; k < 3; ++k) append(t[k]);
    }
  }

 private:
  void mark(const intcoPageArr& nodes) {
    for (int k = 0; k < nodes.count(); ++k) taken_.add(nodes[k]);
  }

  // Corners are not checked when elements are made: a number that the block does not have is no node.
  void append(int n) {
    if (n < block_.node_count() && taken_.add(n)) out_[out_.count()] = n;
  }

  const trTriBlock& block_;
  intcoPageArr& out_;
  intcoSet taken_;
};

void report_ring(double percent) { tr_report_progress(tr_brnknls("Filling Holes - Preparing data..."), percent); }

}  // namespace

int trTriBlock::get_surrounding_nodes(const intcoPageArr& nodes, intcoPageArr& out) const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, -1, [&] { return get_surrounding_nodes(nodes, out); });
  report_ring(0.0);
  reference_elements();
  RingCollector ring(*this, out, &nodes);
  for (int k = 0; k < nodes.count(); ++k) {
    if (tr_interrupt()) return -1;
    report_ring(100.0 * k / nodes.count());
    ring.collect_round(nodes[k]);
  }
  report_ring(100.0);
  return 0;
}

int trTriBlock::get_surrounding_nodes(int node, intcoPageArr& out, const intcoPageArr* exclude) const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, -1, [&] { return get_surrounding_nodes(node, out, exclude); });
  reference_elements();
  if (tr_interrupt()) return -1;
  RingCollector(*this, out, exclude).collect_round(node);
  return 0;
}
