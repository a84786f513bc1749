#include "analysis/remove_simple_fin.h"

#include "mesh/memory_guard.h"
#include "platform/digitiser/delete_triangles.h"
#include "platform/digitiser/tri_utils.h"
#include "progress/progress.h"

namespace {

bool is_fin(const giLink& link, const intcoSet& on_edge) {
  int open_sides = 0;
  bool has_neighbour_on_edge = false;
  for (int side = 0; side < 3; ++side) {
    if (link[side] < 0) {
      ++open_sides;
    } else {
      has_neighbour_on_edge |= on_edge.member(link[side]) != 0;
    }
  }
  return open_sides == 3 || (open_sides == 2 && has_neighbour_on_edge);
}

// The first two triangles of an edge that stay; -1: none.
struct Staying {
  int first = -1;
  int second = -1;

  Staying(const intcoSet& on_edge, const intcoSet& fins) {
    intcoSet::coIterator it(on_edge);
    while (second < 0 && ++it) {
      if (fins.member(it())) continue;
      (first < 0 ? first : second) = it();
    }
  }
  int other_than(int triangle) const { return first != triangle ? first : second; }
};

int mapped(const intintcoTable& map, int number) { return map.value(number, number); }

}  // namespace

trRemoveSimpleFin::trRemoveSimpleFin(const trEdgeConnectioncoPageArr& edge_list, giTriBlock* block)
    : triblock(block), edges(utCopy(), edge_list) {}

int trRemoveSimpleFin::remove_fins(intintcoTable* node_map, intintcoTable* elem_map) const {
  if (edges.count() == 0) return 0;
  const intcoSet fins = find_fins(digTriUtils::get_tri_links(*triblock));
  intintcoTable own_node_map(4, 50);
  intintcoTable own_elem_map(4, 50);
  if (node_map == nullptr) node_map = &own_node_map;
  if (elem_map == nullptr) elem_map = &own_elem_map;
  if (fins.count() == 0) return 0;
  if (digDeleteTriangles(*triblock, fins).delete_triangles(0, 1, node_map, elem_map) == 0) {
    relink(fins, *node_map, *elem_map);
  }
  return fins.count();
}

intcoSet trRemoveSimpleFin::find_fins(const giLinkcoPageArr& links) const {
  intcoSet fins(4, 50);
  for (int k = 0; k < edges.count(); ++k) {
    const intcoSet& on_edge = edges[k].triangles();
    intcoSet::coIterator it(on_edge);
    while (++it) {
      const bool exists = it() >= 0 && it() < links.count();
      if (exists && is_fin(links[it()], on_edge)) fins.add(it());
    }
  }
  return fins;
}

void trRemoveSimpleFin::relink(const intcoSet& fins, const intintcoTable& node_map,
                               const intintcoTable& elem_map) const {
  giLinkArrcoFeature link_feature;
  giTriArrcoFeature triangle_feature;
  if (!triblock->find(link_feature) || !triblock->find(triangle_feature)) return;
  giLinkcoPageArr& links = link_feature.data()->links;
  const giTrianglecoPageArr& triangles = triangle_feature.data()->triangles;
  for (int k = 0; k < edges.count(); ++k) {
    const int ends[2] = {mapped(node_map, edges[k].start_node()), mapped(node_map, edges[k].end_node())};
    const Staying staying(edges[k].triangles(), fins);
    intcoSet::coIterator it(edges[k].triangles());
    while (++it) {
      if (fins.member(it()) || staying.other_than(it()) < 0) continue;
      const int t1 = mapped(elem_map, it());
      const int t2 = mapped(elem_map, staying.other_than(it()));
      if (t1 < 0 || t1 >= links.count() || t2 < 0 || t2 >= links.count()) continue;
      const int side1 = find_bad_edge_side(triangles[t1], ends);
      const int side2 = find_bad_edge_side(triangles[t2], ends);
      if (side1 < 0 || side2 < 0) continue;
      links[t1][side1] = t2;
      links[t2][side2] = t1;
    }
  }
}

int trRemoveSimpleFin::find_bad_edge_side(const giTriangle& tri, const int* edge) const {
  for (int k = 0; k < 3; ++k) {
    if (tri[k] != edge[0]) continue;
    if (tri[(k + 1) % 3] == edge[1]) return k;
    if (tri[(k + 2) % 3] == edge[1]) return (k + 2) % 3;
  }
  return -1;
}

int trTriBlock::cure_sick_fins() {
  if (!coMemoryScope::is_open()) return tr_guarded(this, 0, [&] { return cure_sick_fins(); });
  trEdgeConnectioncoPageArr edges;
  find_sick(edges, 0);
  if (tr_interrupt()) return 0;
  const int removed = trRemoveSimpleFin(edges, this).remove_fins(nullptr, nullptr);
  if (removed) alter(0);
  return removed;
}
