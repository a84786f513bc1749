#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"
#include "mesh/memory_guard.h"
#include "progress/progress.h"

std::int64_t trCycleArray::resets_ = 0;

namespace {

// Collects cycles while it moves the free edges from the second list of their nodes back to the first.
class CycleWalker {
 public:
  CycleWalker(trTriBlock& block, trCyclecoPageArr& cycles) : block_(block), cycles_(cycles), entries_(trCycle::rep) {}

  // A list can only run dry when a host changed edges behind the block's back: then the cycle is closed where it
  // stands.
  void walk_from(int s) {
    trCycle& cycle = cycles_[cycles_.count()];
    cycle.start = entries_.count();
    cycle.block = &block_;
    enter(s);
    int c = s;
    do {
      trNode& node = block_.node(c);
      c = node.d_edges.empty() ? s : take_oldest(node);
      enter(c);
      ++edges_;
    } while (c != s);
  }

  int edges() const { return edges_; }

 private:
  static int take_oldest(trNode& node) {
    const int next = node.d_edges.remove_front();
    node.a_edges.insert_front(next);
    return next;
  }

  void enter(int n) {
    entries_[entries_.count()] = trCycleRep(n, 1);
    block_.node(n).side = 1;
  }

  trTriBlock& block_;
  trCyclecoPageArr& cycles_;
  trCycleRepcoPageArr& entries_;
  int edges_ = 0;
};

}  // namespace

int trCycleArray::detected() const {
  return block != nullptr && block->edges_built && !block->changed && reset_ != 0 && reset_ == resets_ &&
         block_revision_ == block->topology_revision_;
}

int trCycleArray::detect() const {
  if (!coMemoryScope::is_open()) return tr_guarded(block, edge_count, [&] { return detect(); });
  if (block != nullptr && !detected()) self()->detect_again();
  return edge_count;
}

void trCycleArray::reset() {
  trCycle::rep.clear(1);
  cycles.clear(1);
  edge_count = -1;
  block_revision_ = -1;
  reset_ = ++resets_;
}

void trCycleArray::detect_again() {
  block->build_edges();
  if (tr_interrupt()) return;
  reset();
  block->a_to_d();
  // Edges that were not walked stay in the second lists: the block's lists are then as good as not built.
  if (!walk_free_edges()) block->edges_built = 0;
  if (tr_interrupt()) return;
  block->changed = 0;
  block_revision_ = block->topology_revision_;
}

// Returns whether it came to the end.
bool trCycleArray::walk_free_edges() {
  CycleWalker walker(*block, cycles);
  bool stopped = false;
  for (int s = 1; s < block->node_count() && !stopped; ++s) {
    const trNode& node = block->node(s);
    stopped = tr_interrupt();
    if (stopped || node.invalid) continue;
    while (!node.d_edges.empty()) walker.walk_from(s);
  }
  edge_count = walker.edges();
  return !stopped;
}

int trCycleArray::num_boundaries() const {
  detect();
  int n = 0;
  for (int i = 0; i < cycles.count(); ++i) n += cycles.at(i).start != -1;
  return n;
}

int trCycleArray::num_edges() const {
  detect();
  if (edge_count >= 0) return edge_count;
  int n = 0;
  for (int i = 0; i < cycles.count(); ++i) n += cycles.at(i).size();
  return self()->edge_count = n;
}

giBox3 trCycleArray::box() {
  detect();
  giBox3 all;
  for (int i = 0; i < cycles.count(); ++i) {
    if (tr_interrupt()) break;
    if (cycles.at(i).start != -1) all.merge(cycles.at(i).box());
  }
  return all;
}
