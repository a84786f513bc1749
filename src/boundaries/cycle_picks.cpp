// The picks on a cycle and the arc that they choose.

#include <cstdint>
#include <utility>

#include "boundaries/cycle.h"
#include "boundaries/cycle_it.h"

namespace {

// Where a picked node is met along the cycle, the last time if it is met more than once.
struct PickPlace {
  int node = -1;
  int position = -1;
  int before = -1;
  int after = -1;
};

void find_places(const trCycle& cycle, PickPlace (&places)[3]) {
  trCycleIT it(&cycle);
  int first = -1;
  int before = -1;
  for (int position = 0; ++it; ++position) {
    const int node = it.s_node();
    if (position == 0) first = node;
    for (PickPlace& place : places) {
      if (place.position == position - 1 && position > 0) place.after = node;
      if (place.node == node) place = PickPlace{node, position, before, -1};
    }
    before = node;
  }
  for (PickPlace& place : places) {
    if (place.position < 0) continue;
    if (place.after < 0) place.after = first;     // the last node is followed by the first
    if (place.before < 0) place.before = before;  // which it precedes
  }
}

// The picks chose two ends and a third node: the arc between the ends that holds the third is wanted; without a third,
// the shorter.
int choose_direction(const trCycle& cycle, const PickPlace (&places)[3]) {
  if (cycle.pick_mode == 0) return 1;
  if (cycle.pick_mode == 1) return 0;
  const std::int64_t from_first = places[2].position - places[0].position;
  const std::int64_t to_second = places[1].position - places[2].position;
  const std::int64_t side = from_first * to_second;
  if (side != 0) return side > 0;
  double total = 0.0, inside = 0.0, outside = 0.0;
  int reversed = 0;
  cycle.eval_length(places[0].node, places[1].node, total, inside, outside, reversed);
  return inside > outside ? 0 : 1;
}

}  // namespace

void trCycle::set_picks(int first, int second, int third) {
  picks[0] = first;
  picks[1] = second;
  picks[2] = third;
}

// The box describes the arc, so it is computed anew.
void trCycle::set_arc(int from, int to) {
  arc_start = from;
  arc_end = to;
  box_.reset();
}

int trCycle::add_holefilling_valid_node(int node, int allow_repeat) const {
  if (node < 1) return -1;
  if (!allow_repeat && valid_nodes.member(node)) return -2;
  self()->take_pick(node);
  return 0;
}

void trCycle::take_pick(int node) {
  pick_mode = 2;
  if (valid_nodes.count() >= 2 && (node == valid_nodes[0] || node == valid_nodes[1])) {
    pick_mode = arc_forward ? 1 : 0;
    arc_forward = !arc_forward;
  }
  if (valid_nodes.count() >= 3) valid_nodes.shrink(valid_nodes.count() == 3 ? 2 : 1);
  valid_nodes.append(node);
  const int n = valid_nodes.count();
  if (n <= 1) return set_picks(-1, -1, -1);
  if (valid_nodes[0] == valid_nodes[1]) return valid_nodes.shrink(n - 1);
  set_picks(valid_nodes[0], valid_nodes[1], valid_nodes[n == 2 ? 0 : 2]);
}

int trCycle::add_holefilling_picks(const intcoSet& nodes) const {
  if (nodes.count() == 0) return -2;
  if (!holds_entry(start)) return -1;
  const int first = rep.at(start).node;
  for (int i = start + 1; holds_entry(i); ++i) {
    const int node = rep.at(i).node;
    if (nodes.member(node)) {
      add_holefilling_valid_node(node, 1);
      return node;
    }
    if (node == first) break;
  }
  return -1;
}

int trCycle::add_holefilling_pick(int node) const {
  if (node < 1) return -2;
  return add_holefilling_picks(intcoSet{node}) == node ? 0 : -1;
}

int trCycle::add_holefilling_picked_edge(int node_a, int node_b) const {
  if (add_holefilling_pick(node_a) == 0) return 0;
  return add_holefilling_pick(node_b) == 0 ? 0 : -1;
}

void trCycle::enable_holefilling(int enable, int& start_node, int& after_start, int& before_end, int& end_node) {
  start_node = after_start = before_end = end_node = -1;
  if (!enable) return set_arc(-1, -1);
  if (picks[0] < 1 && picks[1] < 1 && picks[2] < 1) return;
  PickPlace places[3];
  for (int k = 0; k < 3; ++k) places[k].node = picks[k];
  find_places(*this, places);
  const int forward = choose_direction(*this, places);
  PickPlace& from = places[0];
  PickPlace& to = places[1];
  if (from.position > to.position) std::swap(from, to);
  start_node = from.node;
  after_start = from.after;
  before_end = to.before;
  end_node = to.node;
  set_arc(from.node, to.node);
  arc_forward = forward;
}

void trCycle::enable_holefilling(int enable) {
  int ends[4];
  enable_holefilling(enable, ends[0], ends[1], ends[2], ends[3]);
}

void trCycle::clear_holefilling_data() {
  set_picks(-1, -1, -1);
  valid_nodes.clear();
  enable_holefilling(0);
}

void trCycle::eval_length(int a, int b, double& total, double& inside, double& outside, int& reversed) const {
  enum class Part { before, within, behind };
  total = inside = 0.0;
  reversed = 0;
  Part part = a == -1 ? Part::within : Part::before;
  int last = b;
  trCycleIT it(this);
  while (++it) {
    const int s = it.s_node();
    if (part == Part::before && (s == a || s == b)) {
      part = Part::within;
      reversed = s != a;
      last = reversed ? a : b;
    } else if (part == Part::within && s == last) {
      part = Part::behind;
    }
    const double length = position(s).distance(position(it.e_node()));
    total += length;
    if (part == Part::within) inside += length;
  }
  outside = total - inside;
}

giPoint3 trCycle::holefilling_start_pick() const {
  return valid_nodes.count() > 0 ? position(valid_nodes[0]) : giPoint3();
}

void trCycle::set_subrange_nodes(const intcoPageArr& nodes) {
  intcoPageArr taken;
  taken.copy(nodes, nodes.count(), 0, 0);
  if (arc_forward) taken.reverse();
  subrange_nodes = taken;
}
