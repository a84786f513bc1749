#include "mesh/neighbour_search.h"

int NeighbourSearch::find(int i, int u, int v) {
  int steps = 0;
  trIntListIT it(block_.node(u).elements);
  while (++it) {
    if (it() != i && runs(it(), v, u)) return it();
    if (++steps > longest_walk) return find_in_hub(i, u, v);
  }
  return 0;
}

void NeighbourSearch::entered(int e) {
  if (hubs_.empty()) return;
  const trElement& t = block_.element(e);
  for (int k = 0; k < 3; ++k) {
    const auto found = hubs_.find(t[k]);
    if (found != hubs_.end()) found->second.insert_front(t[(k + 2) % 3], e);
  }
}

// Deleted elements at the head of a chain are dropped for good, so that each costs one look.
int NeighbourSearch::find_in_hub(int i, int u, int v) {
  const auto inserted = hubs_.try_emplace(u);
  Hub& hub = inserted.first->second;
  if (inserted.second) fill(hub, u);
  const auto found = hub.chain_from.find(v);
  if (found == hub.chain_from.end()) return 0;
  int& head = found->second;
  while (head != 0 && !block_.element(hub.entries[head].element).valid()) head = hub.entries[head].next;
  for (int k = head; k != 0; k = hub.entries[k].next) {
    const int j = hub.entries[k].element;
    if (j != i && block_.element(j).valid()) return j;
  }
  return 0;
}

void NeighbourSearch::fill(Hub& hub, int u) const {
  std::vector<int> listed;
  trIntListIT it(block_.node(u).elements);
  while (++it) {
    if (block_.element(it()).valid()) listed.push_back(it());
  }
  for (std::size_t k = listed.size(); k-- > 0;) {
    const trElement& t = block_.element(listed[k]);
    for (int c = 0; c < 3; ++c) {
      if (t[c] == u) hub.insert_front(t[(c + 2) % 3], listed[k]);
    }
  }
}
