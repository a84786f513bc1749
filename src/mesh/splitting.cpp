// Edits that make two triangles out of four nodes, choosing the diagonal by shape.

#include "mesh/aspect_utils.h"
#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"

namespace {

double edge_length(const trTriBlock& block, int a, int b) { return (block.point(b) - block.point(a)).length(); }

int position_of(const trElement& t, int node) {
  int k = 0;
  while (k < 3 && t[k] != node) ++k;
  return k;
}

int corner_after(const trElement& t, int node) { return t[(position_of(t, node) + 1) % 3]; }

bool runs(const trTriBlock& block, int e, int from, int to) {
  const trElement& t = block.element(e);
  const int k = position_of(t, to);
  return t.valid() && k < 3 && t[(k + 2) % 3] == from && t[(k + 1) % 3] != 0;
}

// The newest element, in the list of `to`, that has the directed edge; 0 without one. The lists of both ends are walked side by side,
// and the shorter decides where it names at most one: an edge at the hub of a great many elements costs no more than another.
int element_on_edge(const trTriBlock& block, int from, int to) {
  trIntListIT at_to(block.node(to).elements);
  trIntListIT at_from(block.node(from).elements);
  int found = 0;
  int last = 0;
  bool both = true;
  while (++at_to) {
    if (runs(block, at_to(), from, to)) return at_to();
    if (!both) continue;
    both = ++at_from;
    if (!both && found < 2) return last;
    if (!both || !runs(block, at_from(), from, to)) continue;
    ++found;
    last = at_from();
  }
  return 0;
}

// The corners of (a, b, c), rotated so that the longest edge comes first.
struct LongestFirst {
  int p, q, r;
};

LongestFirst longest_edge_first(const trTriBlock& block, int a, int b, int c) {
  const double ab = edge_length(block, a, b);
  const double bc = edge_length(block, b, c);
  const double ca = edge_length(block, c, a);
  LongestFirst corners{a, b, c};
  double longest = ab;
  if (longest < bc) {
    corners = {b, c, a};
    longest = bc;
  }
  if (longest < ca) corners = {c, a, b};
  return corners;
}

// The corner opposite the longest edge, by edge lengths; edge k runs from corner k to the next. Equal edges give corner 2.
int apex_opposite_longest(const double length[3]) {
  if (length[0] < length[1]) return length[1] < length[2] ? 1 : 0;
  return length[0] < length[2] ? 1 : 2;
}

}  // namespace

int trTriBlock::generate3(int a, int b, int c) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, -1, [&] { return generate3(a, b, c); });
  const LongestFirst t = longest_edge_first(*this, a, b, c);
  const int across = element_on_edge(*this, t.q, t.p);
  if (across != 0) {
    const int s = corner_after(element(across), t.p);
    if (trAspectUtils::check_dela(point(s), point(t.p), point(t.q), point(t.r))) {
      delete_element(across);
      generate(s, t.q, t.r);
      return generate(t.r, t.p, s);
    }
  }
  return generate(t.p, t.q, t.r);
}

int trTriBlock::generate4(int a, int b, int c, int d) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, -1, [&] { return generate4(a, b, c, d); });
  if (trAspectUtils::check_dela(point(a), point(d), point(b), point(c))) {
    generate(a, b, c);
    return generate(c, d, a);
  }
  generate(c, d, b);
  return generate(a, b, d);
}

// With A the corner opposite the longest edge BC, the new node lies on BC at the distance of the shorter side's length from the
// end that belongs to the other side: at |AB| from C when AB is shorter than CA, else at |CA| from B.
// Where edges are built, the second element is linked twice.
void trTriBlock::split_element(int e) {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { split_element(e); });
  report_element(e);
  const trElement t = element(e);
  if (!t.valid()) return;
  if (edges_built) unlink_element(t[0], t[1], t[2]);
  double length[3];
  for (int k = 0; k < 3; ++k) {
    length[k] = check_use_workplane(point(t[(k + 1) % 3]) - point(t[k])).length();
  }
  const int k = apex_opposite_longest(length);
  const int a = t[k];
  const int b = t[(k + 1) % 3];
  const int c = t[(k + 2) % 3];
  const double ab = length[k];
  const double bc = length[(k + 1) % 3];
  const double ca = length[(k + 2) % 3];
  const int middle = ab < ca ? interpolate_node(c, b, ab / bc) : interpolate_node(b, c, ca / bc);
  element(e).set(a, b, middle);
  if (elements_referenced) {
    elements_referenced = 0;
    node(middle).elements.insert_front(e);
    elements_referenced = 1;
  }
  if (edges_built) link_element(a, b, middle);
  generate(a, middle, c);
  if (edges_built) link_element(a, middle, c);
  mark_changed();
}
