#include "analysis/sick_triangles.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "mesh/memory_guard.h"
#include "platform/spatial/hash_mix.h"
#include "progress/progress.h"

// Most collected edges are ordinary ones at the side of a sick triangle, and there may be millions of them: flat arrays
// hold them, which are gone at once when a search is stopped.
class trSickTriangles::Edges {
 public:
  void enter(int elem, int a, int b) {
    if (2 * edges_.size() >= places_.size()) rebuild();
    int& place = places_[slot_of(a, b)];
    if (place < 0) {
      edges_.push_back({a, b, elem, elem, -1});
      place = static_cast<int>(edges_.size()) - 1;
    } else {
      add(edges_[static_cast<std::size_t>(place)], elem);
    }
  }

  void append_crowded(trEdgeConnectioncoPageArr& out) const {
    for (const Edge& edge : edges_) {
      if (edge.last < 0) continue;
      trEdgeConnection& crowded = out[out.count()];
      crowded = trEdgeConnection(edge.a, edge.b);
      crowded.add_triangle(edge.first);
      crowded.add_triangle(edge.second);
      const int front = further(edge.last).next;
      int k = front;
      do {
        crowded.add_triangle(further(k).elem);
        k = further(k).next;
      } while (k != front);
    }
  }

 private:
  struct Edge {
    int a;
    int b;
    int first;
    int second;  // the same as the first: there is none yet
    int last;    // the last one of the others; -1: there is none, the edge is not crowded
  };
  // The others of an edge, in a ring: the last one is followed by the first one. One may be there more than once.
  struct Further {
    int elem;
    int next;
  };

  const Further& further(int k) const { return further_[static_cast<std::size_t>(k)]; }

  void add(Edge& edge, int elem) {
    if (elem == edge.first || elem == edge.second) return;
    if (edge.second == edge.first) {
      edge.second = elem;
      return;
    }
    const int place = static_cast<int>(further_.size());
    further_.push_back({elem, edge.last < 0 ? place : further(edge.last).next});
    if (edge.last >= 0) further_[static_cast<std::size_t>(edge.last)].next = place;
    edge.last = place;
  }

  // Where an edge stands among the places, or the empty place for it.
  std::size_t slot_of(int a, int b) const {
    const std::uint64_t low = static_cast<std::uint32_t>(std::min(a, b));
    const std::uint64_t ends = (low << 32) | static_cast<std::uint32_t>(std::max(a, b));
    const std::size_t mask = places_.size() - 1;
    std::size_t slot = static_cast<std::size_t>(mix_hash(ends)) & mask;
    while (places_[slot] >= 0 && !joins(edges_[static_cast<std::size_t>(places_[slot])], a, b)) slot = (slot + 1) & mask;
    return slot;
  }
  static bool joins(const Edge& edge, int a, int b) {
    return (edge.a == a && edge.b == b) || (edge.a == b && edge.b == a);
  }

  void rebuild() {
    places_.assign(std::max<std::size_t>(64, 4 * edges_.size()), -1);
    for (std::size_t k = 0; k < edges_.size(); ++k) places_[slot_of(edges_[k].a, edges_[k].b)] = static_cast<int>(k);
  }

  std::vector<int> places_;  // open addressing by both ends: which edge; -1: none. At most half of them are taken.
  std::vector<Edge> edges_;  // in the order of first entry
  std::vector<Further> further_;
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
