#include "platform/digitiser/delete_triangles.h"

#include <cstddef>
#include <vector>

namespace {

// For each old number the new one; -1: deleted.
class Numbering {
 public:
  explicit Numbering(int count) : places_(static_cast<std::size_t>(count), -1) {}

  void keep(int number, int place) { places_[static_cast<std::size_t>(number)] = place; }
  void keep_next(int number) { keep(number, next_++); }
  int count() const { return static_cast<int>(places_.size()); }
  int place(int number) const {
    return number >= 0 && number < count() ? places_[static_cast<std::size_t>(number)] : -1;
  }

  void enter_in(intintcoTable* map) const {
    if (map == nullptr) return;
    for (int k = 0; k < count(); ++k) {
      if (place(k) >= 0 && place(k) != k) map->set(k, place(k));
    }
  }

 private:
  std::vector<int> places_;
  int next_ = 0;
};

// Moves the entries to their new numbers, none of which is higher than the old one. Optional arrays may be shorter.
template <class T>
void close_gaps(coPageArr<T>& array, const Numbering& numbering) {
  int kept = 0;
  for (int k = 0; k < array.count(); ++k) {
    const int to = numbering.place(k);
    if (to < 0) continue;
    if (to != k) array.at(to) = array.at(k);
    kept = to + 1;
  }
  array.shrink(kept, 0);
}

void renumber_links(giLinkcoPageArr& links, const Numbering& numbering) {
  for (int t = 0; t < links.count(); ++t) {
    for (int side = 0; side < 3; ++side) {
      const bool deleted = numbering.place(t) < 0;
      links[t][side] = deleted ? -1 : numbering.place(links[t][side]);
    }
  }
}

Numbering used_nodes(const giTrianglecoPageArr& triangles, int node_count) {
  std::vector<bool> used(static_cast<std::size_t>(node_count));
  for (int t = 0; t < triangles.count(); ++t) {
    for (int k = 0; k < 3; ++k) {
      const int i = triangles[t][k];
      if (i >= 0 && i < node_count) used[static_cast<std::size_t>(i)] = true;
    }
  }
  Numbering numbering(node_count);
  for (int i = 0; i < node_count; ++i) {
    if (used[static_cast<std::size_t>(i)]) numbering.keep_next(i);
  }
  return numbering;
}

void delete_unused_nodes(giTriBlock& block, giTrianglecoPageArr& triangles, intintcoTable* node_map) {
  giNodeXYZ points;
  if (!block.find(points)) return;
  const Numbering numbering = used_nodes(triangles, points.data()->points.count());
  for (int t = 0; t < triangles.count(); ++t) {
    for (int k = 0; k < 3; ++k) {
      if (numbering.place(triangles[t][k]) >= 0) triangles[t][k] = numbering.place(triangles[t][k]);
    }
  }
  close_gaps(points.data()->points, numbering);
  points.data()->box_stale = 1;
  giBoxArrPoint2coFeature plane_points;
  if (block.find(plane_points)) {
    close_gaps(plane_points.data()->points, numbering);
    plane_points.data()->box_stale = 1;
  }
  giNormArrcoFeature normals;
  if (block.find(normals)) close_gaps(normals.data()->normals, numbering);
  numbering.enter_in(node_map);
}

}  // namespace

int digDeleteTriangles::delete_triangles(int delete_nodes, int keep_links, intintcoTable* node_map,
                                         intintcoTable* elem_map) const {
  giTriArrcoFeature feature;
  if (!block_.find(feature)) return 1;
  giTrianglecoPageArr& triangles = feature.data()->triangles;
  const bool in_place = block_.delete_in_place(triangles_) != 0;
  Numbering numbering(triangles.count());
  for (int t = 0; t < triangles.count(); ++t) {
    if (triangles_.member(t)) continue;
    in_place ? numbering.keep(t, t) : numbering.keep_next(t);
  }
  giLinkArrcoFeature links;
  const bool has_links = keep_links && block_.find(links);
  if (has_links) renumber_links(links.data()->links, numbering);
  if (in_place) return 0;
  if (has_links) close_gaps(links.data()->links, numbering);
  close_gaps(triangles, numbering);
  giTriCols colours;
  if (block_.find(colours)) close_gaps(*colours.data(), numbering);
  numbering.enter_in(elem_map);
  if (delete_nodes) delete_unused_nodes(block_, triangles, node_map);
  return 0;
}
