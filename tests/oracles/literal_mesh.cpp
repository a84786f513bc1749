#include "oracles/literal_mesh.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "oracles/shape_literal.h"

namespace {

double distance(const giPoint3& a, const giPoint3& b) {
  return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y) + (a.z - b.z) * (a.z - b.z));
}

double storable(double x) { return x == DBL_MAX || x == -DBL_MAX ? std::nextafter(x, 0.0) : x; }

void push_front(std::vector<int>& list, int v) { list.insert(list.begin(), v); }

template <class T>
void grow(std::vector<T>& v, int index, const T& fresh) {
  if (static_cast<std::size_t>(index) >= v.size()) v.resize(static_cast<std::size_t>(index) + 1, fresh);
}

}  // namespace

LiteralMesh::LiteralMesh() : nodes(1), elements(1) {}

void LiteralMesh::init_node(int i) {
  grow(nodes, i, Node());
  node_count = std::max(node_count, i + 1);
}

void LiteralMesh::invalidate(int i) { at(nodes, i) = Node(); }

void LiteralMesh::set_node(int i, const giPoint3& p) {
  reports.push_back(i);
  for (int k = node_count; k < i; ++k) {
    init_node(k);
    reports.push_back(k);
    invalidate(k);
  }
  init_node(i);
  Node& n = at(nodes, i);
  if (n.invalid || !edges_built) n.a_edges.clear();
  if (n.invalid || !elements_referenced) n.elements.clear();
  n.p = giPoint3(storable(p.x), storable(p.y), storable(p.z));
  n.invalid = 0;
  undup_tol = 0.0;
}

void LiteralMesh::delete_node(int i) {
  reports.push_back(i);
  invalidate(i);
}

int LiteralMesh::generate_node(const giPoint3& p) {
  const int i = node_count;
  set_node(i, p);
  return i;
}

giPoint3 LiteralMesh::to_work(const giPoint3& p) const {
  return use_workplane && !workplane.origin().invalid() ? workplane.to_work(p) : p;
}

giPoint3 LiteralMesh::to_world(const giPoint3& p) const {
  return use_workplane && !workplane.origin().invalid() ? workplane.to_world(p) : p;
}

int LiteralMesh::interpolate_node(int a, int b, double t) {
  const giPoint3 p = to_work(at(nodes, a).p);
  const giPoint3 q = to_work(at(nodes, b).p);
  const giPoint3 m(p.x + t * (q.x - p.x), p.y + t * (q.y - p.y), p.z + t * (q.z - p.z));
  const int made = generate_node(to_world(m));
  if (data_size == 0) return made;
  for (int k = 0; k < data_size; ++k) {
    const std::size_t v = static_cast<std::size_t>(k);
    const double mixed = (1.0 - t) * tuple(a).values[v] + t * tuple(b).values[v];
    tuple(made).values[v] = mixed;
  }
  tuple(made).weight = 1;
  return made;
}

int LiteralMesh::generate(int a, int b, int c) {
  if (a == b || b == c || c == a) return -1;
  const int e = element_count;
  set_element(e, a, b, c);
  return e;
}

void LiteralMesh::set_element(int e, int a, int b, int c) {
  reports.push_back(-e);
  if (e >= element_count) {
    grow(elements, e, Element{UNSET_ELEMENT, 0, 0});
    for (int k = element_count; k < e; ++k) {
      if (at(elements, k)[0] == UNSET_ELEMENT) at(elements, k) = {0, 0, 0};
      if (at(elements, k)[0] == 0) continue;
      reports.push_back(-k);
      at(elements, k) = {0, 0, 0};
    }
    element_count = e + 1;
  } else if (valid(e)) {
    delete_element(e);
  }
  at(elements, e) = {a, b, c};
  if (elements_referenced) {
    for (int n : {a, b, c}) push_front(at(nodes, n).elements, e);
  }
  if (edges_built) {
    link(a, b);
    link(b, c);
    link(c, a);
  }
}

void LiteralMesh::delete_element(int e) {
  reports.push_back(-e);
  if (!valid(e)) return;
  const Element t = at(elements, e);
  if (edges_built) {
    link(t[1], t[0]);
    link(t[0], t[2]);
    link(t[2], t[1]);
  }
  at(elements, e) = {0, 0, 0};
}

void LiteralMesh::reverse_element(int e) {
  reports.push_back(-e);
  const auto [a, b, c] = at(elements, e);
  if (edges_built) {
    link(b, a);
    link(a, c);
    link(c, b);
  }
  at(elements, e) = {a, c, b};
  if (edges_built) {
    link(a, c);
    link(c, b);
    link(b, a);
  }
  changed = 1;
}

int LiteralMesh::generate3(int a, int b, int c) {
  const auto length = [&](int from, int to) { return distance(at(nodes, from).p, at(nodes, to).p); };
  int p = a, q = b, r = c;
  double longest = length(a, b);
  if (longest < length(b, c)) {
    p = b, q = c, r = a;
    longest = length(b, c);
  }
  if (longest < length(c, a)) p = c, q = a, r = b;
  for (int e : at(nodes, p).elements) {
    const Element& t = at(elements, e);
    const int k = static_cast<int>(std::find(t.begin(), t.end(), p) - t.begin());
    if (!valid(e) || k == 3) continue;
    const int s = t[static_cast<std::size_t>(k + 1) % 3];
    if (t[static_cast<std::size_t>(k + 2) % 3] != q || s == 0) continue;
    if (!check_dela_literal(at(nodes, s).p, at(nodes, p).p, at(nodes, q).p, at(nodes, r).p)) break;
    delete_element(e);
    generate(s, q, r);
    return generate(r, p, s);
  }
  return generate(p, q, r);
}

int LiteralMesh::generate4(int a, int b, int c, int d) {
  if (check_dela_literal(at(nodes, a).p, at(nodes, d).p, at(nodes, b).p, at(nodes, c).p)) {
    generate(a, b, c);
    return generate(c, d, a);
  }
  generate(c, d, b);
  return generate(a, b, d);
}

void LiteralMesh::split_element(int e) {
  reports.push_back(-e);
  const Element c = at(elements, e);
  if (edges_built) {
    link(c[1], c[0]);
    link(c[0], c[2]);
    link(c[2], c[1]);
  }
  double l[3];
  for (int k = 0; k < 3; ++k) {
    const giVector3 v =
        at(nodes, c[static_cast<std::size_t>(k + 1) % 3]).p - at(nodes, c[static_cast<std::size_t>(k)]).p;
    l[k] = (use_workplane && !workplane.origin().invalid() ? workplane.to_work(v) : v).length();
  }
  int k = 2;
  if (l[0] < l[1]) {
    k = l[1] < l[2] ? 1 : 0;
  } else if (l[0] < l[2]) {
    k = 1;
  }
  const int from[3] = {k, (k + 1) % 3, (k + 2) % 3};
  const int A = c[static_cast<std::size_t>(from[0])];
  const int B = c[static_cast<std::size_t>(from[1])];
  const int C = c[static_cast<std::size_t>(from[2])];
  const double ab = l[from[0]], bc = l[from[1]], ca = l[from[2]];
  const int M = ab < ca ? interpolate_node(C, B, ab / bc) : interpolate_node(B, C, ca / bc);
  at(elements, e) = {A, B, M};
  if (elements_referenced) push_front(at(nodes, M).elements, e);
  if (edges_built) {
    link(A, B);
    link(B, M);
    link(M, A);
  }
  generate(A, M, C);
  if (edges_built) {
    link(A, M);
    link(M, C);
    link(C, A);
  }
  changed = 1;
}

void LiteralMesh::delete_collapsed_elements() {
  for (int e = 1; e < element_count; ++e) {
    const Element t = at(elements, e);
    if (valid(e) && (t[0] == t[1] || t[1] == t[2] || t[2] == t[0])) delete_element(e);
  }
}

void LiteralMesh::reverse() {
  for (int e = 0; e < element_count; ++e) {
    if (valid(e)) reverse_element(e);
  }
}

void LiteralMesh::link(int a, int b) {
  std::vector<int>& of_b = at(nodes, b).a_edges;
  const auto opposite = std::find(of_b.begin(), of_b.end(), a);
  if (opposite != of_b.end()) {
    of_b.erase(opposite);
  } else {
    push_front(at(nodes, a).a_edges, b);
  }
}

void LiteralMesh::build_edges() {
  if (edges_built) return;
  for (int i = 1; i < node_count; ++i) {
    if (!at(nodes, i).invalid) at(nodes, i).a_edges.clear();
  }
  for (int e = 1; e < element_count; ++e) {
    const Element t = at(elements, e);
    if (!valid(e)) continue;
    link(t[0], t[1]);
    link(t[1], t[2]);
    link(t[2], t[0]);
  }
  edges_built = 1;
}

void LiteralMesh::reference_elements() {
  if (elements_referenced) return;
  for (int i = 1; i < node_count; ++i) {
    if (!at(nodes, i).invalid) at(nodes, i).elements.clear();
  }
  for (int e = 1; e < element_count; ++e) {
    if (!valid(e)) continue;
    for (int n : at(elements, e)) push_front(at(nodes, n).elements, e);
  }
  elements_referenced = 1;
}

void LiteralMesh::reference_new_nodes(const std::vector<int>& map) {
  for (int e = 1; e < element_count; ++e) {
    Element& t = at(elements, e);
    const auto deleted = [&](int n) { return at(nodes, n).invalid != 0; };
    if (!valid(e) || std::none_of(t.begin(), t.end(), deleted)) continue;
    reports.push_back(-e);
    for (int& n : t) {
      if (!deleted(n) || static_cast<std::size_t>(n) >= map.size() || at(map, n) == 0) continue;
      n = at(map, n);
      if (elements_referenced) push_front(at(nodes, n).elements, e);
    }
  }
}

// The first other element in the list of i's first node that repeats i, or cancels it; 0 when there is none.
int LiteralMesh::find_match(int i, int same) const {
  const Element& t = at(elements, i);
  for (int j : at(nodes, t[0]).elements) {
    if (j == i || !valid(j)) continue;
    const Element& u = at(elements, j);
    int k = -1;
    for (int corner = 0; corner < 3; ++corner) {
      if (u[static_cast<std::size_t>(corner)] == t[0]) k = corner;
    }
    if (k < 0) continue;
    const int next = u[static_cast<std::size_t>(k + 1) % 3];
    const int prev = u[static_cast<std::size_t>(k + 2) % 3];
    if (same ? t[1] == next && t[2] == prev : t[1] == prev && t[2] == next) return j;
  }
  return 0;
}

int LiteralMesh::remove_repeats(int same, int both) {
  reference_elements();
  int removed = 0;
  for (int i = 0; i < element_count; ++i) {
    const int j = valid(i) ? find_match(i, same) : 0;
    if (j == 0) continue;
    removed += !same && both ? 2 : 1;
    if (!same && both) delete_element(j);
    delete_element(i);
  }
  if (same && removed) changed = 1;
  return removed > 0;
}

void LiteralMesh::alter() {
  edges_built = 0;
  changed = 1;
  undup_tol = 0.0;
}

void LiteralMesh::renumber() {
  std::vector<int> map(static_cast<std::size_t>(node_count));
  int last_node = 0;
  for (int i = 1; i < node_count; ++i) {
    if (!at(nodes, i).invalid) at(map, i) = ++last_node;
  }
  int j = 0;
  for (int i = 1; i < element_count; ++i) {
    if (!valid(i)) continue;
    ++j;
    Element& t = at(elements, i);
    const Element renamed = {at(map, t[0]), at(map, t[1]), at(map, t[2])};
    const bool reported = renamed != t;
    if (reported) reports.push_back(-i);
    t = renamed;
    if (i <= j) continue;
    if (!reported) reports.push_back(-i);
    reports.push_back(-j);
    if (element_colour(j) != element_colour(i)) set_element_colour(j, element_colour(i));
    at(elements, j) = t;
  }
  for (int k = 1; k < node_count; ++k) {
    if (at(nodes, k).invalid || at(map, k) >= k) continue;
    reports.push_back(k);
    reports.push_back(at(map, k));
    at(nodes, at(map, k)).p = at(nodes, k).p;
    at(nodes, at(map, k)).invalid = 0;
    invalidate(k);
    if (data_size > 0) {
      const Tuple moved = tuple(k);
      tuple(at(map, k)) = moved;
    }
  }
  node_count = last_node + 1;
  element_count = j + 1;
  elements_referenced = 0;
  const double kept = undup_tol;
  alter();
  undup_tol = kept;
}

void LiteralMesh::transform(const giXform3& x) {
  for (int i = 1; i < node_count; ++i) {
    if (!at(nodes, i).invalid) set_node(i, x.apply(at(nodes, i).p));
  }
  undup_tol = 0.0;
  changed = 0;
}

void LiteralMesh::average(int dst, int src) {
  const Tuple from = tuple(src);
  Tuple& to = tuple(dst);
  if (from.weight == 0 && to.weight == 0) return;
  for (std::size_t k = 0; k < 5; ++k) {
    to.values[k] = (from.values[k] * from.weight + to.values[k] * to.weight) / (from.weight + to.weight);
  }
  to.weight += from.weight;
}

int LiteralMesh::unduplicate_nodes(double tol) {
  if (!(tol > undup_tol)) return 0;
  std::vector<int> map(static_cast<std::size_t>(node_count));
  std::vector<int> kept;
  int merged = 0;
  for (int i = 1; i < node_count; ++i) {
    if (at(nodes, i).invalid) continue;
    const auto coincides = [&](int k) {
      const giPoint3 a = at(nodes, k).p;
      const giPoint3 b = at(nodes, i).p;
      return tol * tol >= (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y) + (a.z - b.z) * (a.z - b.z);
    };
    const auto survivor = std::find_if(kept.begin(), kept.end(), coincides);
    if (survivor == kept.end()) {
      kept.push_back(i);
      continue;
    }
    ++merged;
    if (data_size > 0) {
      reports.push_back(*survivor);
      average(*survivor, i);
    }
    delete_node(i);
    at(map, i) = *survivor;
  }
  if (merged > 0) {
    reference_new_nodes(map);
    alter();
    delete_collapsed_elements();
  }
  undup_tol = tol;
  return merged > 0;
}

LiteralMesh::Tuple& LiteralMesh::tuple(int i) {
  grow(tuples, i, Tuple());
  return at(tuples, i);
}

void LiteralMesh::set_node_data(int i, const Tuple& value) { tuple(i) = value; }

void LiteralMesh::set_element_colour(int e, int colour) {
  if (colours.empty()) colours.push_back(colour);
  grow(colours, e, NO_COLOUR);
  at(colours, e) = colour;
}

int LiteralMesh::element_colour(int e) const {
  if (colours.empty()) return NO_COLOUR;
  return static_cast<std::size_t>(e) < colours.size() ? at(colours, e) : colours[0];
}
