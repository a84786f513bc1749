#include "analysis/sick_triangles.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "mesh/memory_guard.h"
#include "platform/spatial/hash_mix.h"
#include "progress/progress.h"

// Most collected edges are ordinary ones at the side of a sick triangle: only a third element makes a connection of
// them.
class trSickTriangles::Edges {
 public:
  void enter(int elem, int a, int b) {
    const auto inserted = places_.try_emplace(key(a, b), edges_.size());
    if (inserted.second) {
      edges_.push_back({a, b, elem, no_element, -1});
    } else {
      add(edges_[inserted.first->second], elem);
    }
  }

  void append_crowded(trEdgeConnectioncoPageArr& out) const {
    for (const Edge& edge : edges_) {
      if (edge.connection >= 0) out[out.count()] = connections_.at(edge.connection);
    }
  }

 private:
  static constexpr std::int64_t no_element = INT64_MIN;

  struct Edge {
    int a;
    int b;
    std::int64_t first;
    std::int64_t second;
    int connection;  // where it stands among the connections; -1: not there, since it has no third element
  };

  struct KeyHash {
    std::size_t operator()(std::uint64_t k) const { return static_cast<std::size_t>(mix_hash(k)); }
  };

  static std::uint64_t key(int a, int b) {
    return (std::uint64_t{static_cast<std::uint32_t>(std::min(a, b))} << 32) |
           static_cast<std::uint32_t>(std::max(a, b));
  }

  void add(Edge& edge, int elem) {
    if (edge.connection >= 0) {
      connections_.at(edge.connection).add_triangle(elem);
    } else if (elem == edge.first || elem == edge.second) {
      return;
    } else if (edge.second == no_element) {
      edge.second = elem;
    } else {
      edge.connection = connections_.count();
      trEdgeConnection& fresh = connections_[edge.connection];
      fresh = trEdgeConnection(edge.a, edge.b);
      fresh.add_triangle(static_cast<int>(edge.first));
      fresh.add_triangle(static_cast<int>(edge.second));
      fresh.add_triangle(elem);
    }
  }

  std::unordered_map<std::uint64_t, std::size_t, KeyHash> places_;  // both ends -> entry
  std::vector<Edge> edges_;                                         // in the order of first entry
  trEdgeConnectioncoPageArr connections_;
};

trSickTriangles::trSickTriangles() : edges_(new Edges) {}

trSickTriangles::~trSickTriangles() = default;

void trSickTriangles::enter(int elem, int a, int b) { edges_->enter(elem, a, b); }

void trSickTriangles::get_sick_triangles(trEdgeConnectioncoPageArr& out) { edges_->append_crowded(out); }

void trTriBlock::find_sick(trEdgeConnectioncoPageArr& out, int mode) const {
  if (!coMemoryScope::is_open()) return tr_guarded(this, [&] { find_sick(out, mode); });
  intcoPageArr sick;
  find_sick(sick, 0);
  const int offset = mode ? -1 : 0;
  trSickTriangles edges;
  for (int k = 0; k < sick.count(); ++k) {
    if (tr_interrupt()) return;
    const trElement& t = element(sick[k]);
    for (int corner = 0; corner < 3; ++corner) {
      edges.enter(sick[k] + offset, t[corner] + offset, t[(corner + 1) % 3] + offset);
    }
  }
  edges.get_sick_triangles(out);
}
