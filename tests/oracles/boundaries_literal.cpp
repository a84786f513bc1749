#include "oracles/boundaries_literal.h"

#include <algorithm>
#include <cfloat>
#include <list>

namespace {

using Lists = std::vector<std::list<int>>;

std::list<int>& list_of(Lists& lists, int node) { return lists[static_cast<std::size_t>(node)]; }

void link(Lists& lists, int a, int b) {
  std::list<int>& opposite = list_of(lists, b);
  const auto found = std::find(opposite.begin(), opposite.end(), a);
  if (found != opposite.end()) {
    opposite.erase(found);
  } else {
    list_of(lists, a).push_front(b);
  }
}

giBox3 grown_box(const giPoint3& a, const giPoint3& b, double by) {
  giBox3 box;
  box.merge(a);
  box.merge(b);
  box.grow(by);
  return box;
}

giPoint3 nearest_point(const giPoint3& n, const giPoint3& a, const giPoint3& b) {
  const giVector3 u = b - a;
  double t = u.length() < 1e-6 ? 0.5 : (n - a).dot(u) / u.length_sq();
  if (t < 1e-6) t = 0.0;
  if (t > 1.0 - 1e-6) t = 1.0;
  return gi_interpolate(a, b, t);
}

// Meets one node with the edges of one cycle.
void meet(const trTriBlock& block, int n, const std::vector<int>& cycle, GapLiteral& gap) {
  const giPoint3 p = block.point(n);
  for (std::size_t k = 0; k < cycle.size(); ++k) {
    const int s = cycle[k];
    const int e = cycle[(k + 1) % cycle.size()];
    if (s == n || e == n) continue;
    const giPoint3 a = block.point(s);
    const giPoint3 b = block.point(e);
    if (gap.distance < DBL_MAX && !grown_box(a, b, gap.distance).contains(gap.from, 1e-5)) continue;
    const giPoint3 q = nearest_point(p, a, b);
    if (p.distance(q) < gap.distance) gap = {p.distance(q), p, q};
  }
}

}  // namespace

std::vector<std::vector<int>> cycles_literal(const trTriBlock& block) {
  Lists lists(static_cast<std::size_t>(block.node_count()));
  for (int e = 1; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    if (!t.valid()) continue;
    for (int k = 0; k < 3; ++k) link(lists, t[k], t[(k + 1) % 3]);
  }
  std::vector<std::vector<int>> cycles;
  for (int s = 1; s < block.node_count(); ++s) {
    while (!list_of(lists, s).empty()) {
      cycles.emplace_back();
      int c = s;
      do {
        cycles.back().push_back(c);
        const int next = list_of(lists, c).back();
        list_of(lists, c).pop_back();
        c = next;
      } while (c != s);
    }
  }
  return cycles;
}

GapLiteral measure_distance_literal(const trTriBlock& block, const std::vector<std::vector<int>>& cycles) {
  const giPoint3 none(-DBL_MAX, 0, 0);
  GapLiteral gap{DBL_MAX, none, none};
  for (const std::vector<int>& cycle : cycles) {
    giBox3 box;
    for (int n : cycle) box.merge(block.point(n));
    box.grow(gap.distance < DBL_MAX ? gap.distance : 0.0);
    if (gap.distance < DBL_MAX && !box.contains(gap.from, 1e-5)) continue;
    for (int n : cycle) {
      for (const std::vector<int>& other : cycles) meet(block, n, other, gap);
    }
  }
  return gap;
}

std::vector<std::vector<int>> trace_literal(std::vector<std::pair<int, int>> segments, int points) {
  std::vector<std::vector<int>> chains;
  const int n = static_cast<int>(segments.size());
  const auto at = [&](int e) -> std::pair<int, int>& { return segments[static_cast<std::size_t>(e)]; };
  std::vector<int> out_edge(static_cast<std::size_t>(points), -2);
  for (int e = 0; e < n; ++e) {
    if (at(e).first >= 0) out_edge[static_cast<std::size_t>(at(e).first)] = e;
  }
  const auto balance = [&](int p) {
    int sum = 0;
    for (const auto& s : segments) sum += (s.second == p) - (s.first == p);
    return sum;
  };
  const auto next_edge = [&](int p) {
    const int named = out_edge[static_cast<std::size_t>(p)];
    if (named == -2 || at(named).first >= 0) return named == -2 ? -1 : named;
    for (int e = 0; e < n; ++e) {
      if (e != named && at(e).first == p) return e;
    }
    return -1;
  };
  for (;;) {
    int least = n;
    int start = -1;
    for (int e = 0; e < n; ++e) {
      if (at(e).first < 0 || balance(at(e).first) >= least) continue;
      least = balance(at(e).first);
      start = e;
    }
    if (start < 0) return chains;
    chains.emplace_back();
    const int first = at(start).first;
    for (int e = start; e >= 0;) {
      chains.back().push_back(at(e).first);
      const int end = at(e).second;
      at(e) = {-1, -1};
      e = end == first ? -1 : next_edge(end);
      if (e < 0) chains.back().push_back(end);
    }
  }
}
