#include "oracles/sick_literal.h"

#include <algorithm>
#include <set>

namespace {

struct EdgeFromNode {
  int other;
  int first;
  int second;
  int count;
};

class LiteralChecker {
 public:
  LiteralChecker(const trTriBlock& block, int mode, std::vector<int>& result)
      : block_(block), mode_(mode), result_(result) {}

  void enter(int i, int e, int j) {
    if (j == i) return;
    for (EdgeFromNode& edge : edges_) {
      if (edge.other != j) continue;
      if (edge.second == 0) {
        edge.second = e;
        edge.count = 2;
      } else {
        enter_third(edge, e);
      }
      return;
    }
    edges_.push_back({j, e, 0, 1});
  }

 private:
  void enter_third(EdgeFromNode& edge, int e) {
    ++edge.count;
    if (edge.count == 3 && mode_ == 0) {
      result_.push_back(edge.first);
      result_.push_back(edge.second);
    }
    if (edge.count == 3 && mode_ != 0 && area(edge.first) > area(edge.second)) std::swap(edge.first, edge.second);
    if (mode_ == 0) {
      result_.push_back(e);
    } else if (area(e) > area(edge.second)) {
      result_.push_back(edge.first);
      edge.first = edge.second;
      edge.second = e;
    } else if (area(e) > area(edge.first)) {
      result_.push_back(edge.first);
      edge.first = e;
    } else {
      result_.push_back(e);
    }
  }
  double area(int e) const { return block_.area_element(e); }

  const trTriBlock& block_;
  int mode_;
  std::vector<int>& result_;
  std::vector<EdgeFromNode> edges_;
};

bool on_edge(const trElement& t, int a, int b) {
  for (int k = 0; k < 3; ++k) {
    const int from = t[k];
    const int to = t[(k + 1) % 3];
    if ((from == a && to == b) || (from == b && to == a)) return true;
  }
  return false;
}

bool runs(const trElement& t, int a, int b) {
  return (t[0] == a && t[1] == b) || (t[1] == a && t[2] == b) || (t[2] == a && t[0] == b);
}

int link_literal(const trTriBlock& block, int t, int a, int b) {
  if (a == b) return -1;
  for (int pass = 0; pass < 2; ++pass) {
    for (int u = 1; u < block.element_count(); ++u) {
      if (u == t || !block.element(u).valid()) continue;
      if (pass == 0 ? runs(block.element(u), b, a) : on_edge(block.element(u), a, b)) return u;
    }
  }
  return -1;
}

}  // namespace

std::vector<int> reported_sick_literal(const trTriBlock& block, int mode, int node_end) {
  std::vector<int> result;
  for (int i = 1; i < node_end; ++i) {
    if (block.node(i).invalid) continue;
    LiteralChecker checker(block, mode, result);
    std::vector<int> list;
    for (trIntListIT it(block.node(i).elements); ++it;) list.push_back(it());
    for (auto at = list.begin(); at != list.end(); ++at) {
      const trElement& t = block.element(*at);
      if (t[0] == 0) continue;
      if (std::find(at + 1, list.end(), *at) != list.end()) break;
      if (t[0] != i && t[1] != i && t[2] != i) continue;
      for (int k = 0; k < 3; ++k) checker.enter(i, *at, t[k]);
    }
  }
  return result;
}

std::vector<int> sick_literal(const trTriBlock& block, int mode) {
  const std::vector<int> reported = reported_sick_literal(block, mode, block.node_count());
  const std::set<int> sorted(reported.begin(), reported.end());
  return {sorted.begin(), sorted.end()};
}

std::vector<LiteralEdge> sick_edges_literal(const trTriBlock& block, int mode) {
  const int offset = mode ? -1 : 0;
  std::vector<LiteralEdge> edges;
  for (int e : sick_literal(block, 0)) {
    for (int k = 0; k < 3; ++k) {
      const int a = block.element(e)[k] + offset;
      const int b = block.element(e)[(k + 1) % 3] + offset;
      auto at = std::find_if(edges.begin(), edges.end(), [&](const LiteralEdge& edge) {
        return (edge.start == a && edge.end == b) || (edge.start == b && edge.end == a);
      });
      if (at == edges.end()) at = edges.insert(at, {a, b, {}});
      if (std::count(at->elements.begin(), at->elements.end(), e + offset) == 0) at->elements.push_back(e + offset);
    }
  }
  edges.erase(
      std::remove_if(edges.begin(), edges.end(), [](const LiteralEdge& edge) { return edge.elements.size() < 3; }),
      edges.end());
  return edges;
}

std::vector<std::vector<int>> links_literal(const trTriBlock& block) {
  std::vector<std::vector<int>> links(1, {-1, -1, -1});
  for (int t = 1; t < block.element_count(); ++t) {
    std::vector<int> link(3, -1);
    for (std::size_t k = 0; k < 3 && block.element(t).valid(); ++k) {
      const int side = static_cast<int>(k);
      link[k] = link_literal(block, t, block.element(t)[side], block.element(t)[(side + 1) % 3]);
    }
    links.push_back(link);
  }
  return links;
}

std::vector<int> fins_literal(const trTriBlock& block) {
  const std::vector<std::vector<int>> links = links_literal(block);
  std::set<int> fins;
  for (const LiteralEdge& edge : sick_edges_literal(block, 0)) {
    for (int t : edge.elements) {
      int open = 0;
      bool seen = false;
      for (int link : links[static_cast<std::size_t>(t)]) {
        open += link == -1;
        seen |= link != -1 && std::count(edge.elements.begin(), edge.elements.end(), link) > 0;
        if (open == 3 || (open == 2 && seen)) fins.insert(t);
      }
    }
  }
  return {fins.begin(), fins.end()};
}
