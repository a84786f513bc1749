#include "boundaries/cycle.h"

#include "boundaries/cycle_array.h"
#include "boundaries/cycle_it.h"

namespace {

// 32 KB a page: large enough to come from slabs, where a mesh has very many free edges.
constexpr int rep_page_shift = 12;

// Initialised before any code runs and never destroyed: a host's global objects may be made earlier, and live longer,
// than any of ours.
union EntryStore {
  constexpr EntryStore() : entries(rep_page_shift, 5, 10) {}
  ~EntryStore() {}
  trCycleRepcoPageArr entries;
};
EntryStore entry_store;

}  // namespace

trCycleRepcoPageArr& trCycle::rep = entry_store.entries;

giPoint3 trCycle::position(int node) const {
  const bool known = block != nullptr && node >= 0 && node < block->node_count();
  return known ? block->point(node) : giPoint3();
}

int trCycle::size() const {
  int n = 0;
  trCycleIT it(this);
  while (++it) ++n;
  return n;
}

const giBox3& trCycle::box() const {
  if (block == nullptr) return box_;
  const auto revision = static_cast<std::uint32_t>(trCycleArray::geometry_revision(*block));
  if (!box_.is_empty() && box_revision_ == revision) return box_;
  box_.reset();
  box_revision_ = revision;
  trCycleIT it(this);
  while (++it) {
    if (it.arc_index < 0) box_.merge(position(it.s_node()));
  }
  return box_;
}

double trCycle::average_length() const {
  if (block == nullptr) return 0.0;
  double total = 0.0;
  int edges = 0;
  trCycleIT it(this);
  while (++it) {
    total += position(it.s_node()).distance(position(it.e_node()));
    ++edges;
  }
  return edges == 0 ? 0.0 : total / edges;
}
