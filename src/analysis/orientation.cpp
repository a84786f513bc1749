// Making the elements of each piece face the same way, and the whole mesh face outward.

#include <cmath>
#include <vector>

#include "analysis/orient_group.h"
#include "mesh/measures.h"
#include "mesh/memory_guard.h"
#include "progress/progress.h"

namespace {

// The valid nodes of greatest z, ascending; whether the host let it finish.
bool find_top_nodes(const trTriBlock& block, std::vector<int>& top) {
  double highest = -HUGE_VAL;
  for (int i = 1; i < block.node_count(); ++i) {
    if (tr_interrupt()) return false;
    if (block.node(i).invalid) continue;
    const double z = block.point(i).z;
    if (z > highest) {
      top.clear();
      highest = z;
    }
    if (z == highest) top.push_back(i);
  }
  return true;
}

// The lower of the two corners of t other than k; of equal ones the one before k.
int lower_other_corner(const trTriBlock& block, const trElement& t, int k) {
  const int after = t[(k + 1) % 3];
  const int before = t[(k + 2) % 3];
  return block.point(after).z < block.point(before).z ? after : before;
}

// Whether the topmost element faces down. One without a normal tells nothing.
bool faces_down(const trTriBlock& block, int e) {
  const trElement& t = block.element(e);
  giVector3 n;
  return tr_compute_normal(block.point(t[0]), block.point(t[1]), block.point(t[2]), 1e-5, n) && n.z() < 0.0;
}

}  // namespace

int trTriBlock::orient_normals() {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0, [&] { return orient_normals(); });
  reference_elements();
  if (tr_interrupt()) return 0;
  trOrienter orienter(this);
  int reversed = 0;
  for (;;) {
    if (tr_interrupt()) return 0;
    trOrientGroup group(&orienter);
    group.find_seed();
    if (tr_interrupt() || group.no_seed()) break;
    group.find_connected_group();
    if (tr_interrupt()) break;
    if (group.do_reversals()) reversed = 1;
  }
  if (tr_interrupt()) return reversed;
  const int top = find_top_element();
  if (top >= 0 && faces_down(*this, top)) {
    reverse();
    reversed = 1;
  }
  return reversed;
}

int trTriBlock::find_top_element() const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, -2, [&] { return find_top_element(); });
  reference_elements();
  std::vector<int> top;
  if (!find_top_nodes(*this, top)) return -2;
  int winner = -1;
  double highest = -HUGE_VAL;
  for (int i : top) {
    trLoopIT around(this, i);
    while (++around) {
      if (tr_interrupt()) return -2;
      const trElement& t = element(around());
      const int k = around.index_node(t);
      if (!t.valid() || k == 3) continue;
      const double z = point(lower_other_corner(*this, t, k)).z;
      if (winner >= 0 && !(z > highest)) continue;
      winner = around();
      highest = z;
    }
  }
  return winner;
}
