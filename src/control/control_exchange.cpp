// Meshes that the host hands over in memory.

#include <algorithm>
#include <vector>

#include "control/control.h"
#include "mesh/memory_guard.h"
#include "platform/digitiser/tri_mask.h"

namespace {

// The host's pool, read without making features that it does not have.
class HostMesh {
 public:
  explicit HostMesh(const coFeaturePool& pool) {
    pool.find(points_);
    pool.find(triangles_);
    pool.find(mask_);
  }

  int point_count() const { return points_.valid() ? points_.data()->points.count() : 0; }
  const giPoint3& point(int k) const { return points_.data()->points.at(k); }
  const giPoint3coPageArr* points() const { return points_.valid() ? &points_.data()->points : nullptr; }
  int triangle_count() const { return triangles_.valid() ? triangles_.data()->triangles.count() : 0; }
  const giTriangle& triangle(int k) const { return triangles_.data()->triangles.at(k); }
  // Triangles that the host masked, or that name points it does not have, stay with the host.
  bool is_taken(int k) const {
    if (mask_.valid() && mask_.data()->test(k)) return false;
    const giTriangle& t = triangle(k);
    return has_point(t[0]) && has_point(t[1]) && has_point(t[2]);
  }

 private:
  bool has_point(int k) const { return k >= 0 && k < point_count(); }

  giNodeXYZ points_;
  giTriArrcoFeature triangles_;
  pmTriMaskArrcoFeature mask_;
};

bool has_colours(const trTriBlock& block) {
  for (int e = 1; e < block.element_count(); ++e) {
    if (block.element(e).valid() && block.get_element_colour(e) != NO_COLOUR) return true;
  }
  return false;
}

// The mesh of a block of this library, whose reserved slots and deleted entities are no part of it, as a host would hold it.
void copy_mesh(const trTriBlock& block, giTriBlock& out) {
  giNodeXYZ points;
  out.check_out(points);
  std::vector<int> places(static_cast<std::size_t>(block.node_count()), -1);
  for (int i = 1; i < block.node_count(); ++i) {
    if (block.node(i).invalid) continue;
    const int place = points.data()->points.count();
    places[static_cast<std::size_t>(i)] = place;
    points.data()->points[place] = block.point(i);
  }
  giTriArrcoFeature triangles;
  out.check_out(triangles);
  giTriCols colours;
  if (has_colours(block)) out.check_out(colours);
  for (int e = 1; e < block.element_count(); ++e) {
    const trElement& t = block.element(e);
    if (!t.valid()) continue;
    const int place = triangles.data()->triangles.count();
    for (int k = 0; k < 3; ++k) {
      const auto corner = static_cast<std::size_t>(static_cast<unsigned>(t[k]));
      triangles.data()->triangles[place][k] = corner < places.size() ? places[corner] : -1;
    }
    if (colours.valid()) (*colours.data())[place] = tr_decode_colour(block.get_element_colour(e));
  }
}

}  // namespace

void trControl::action_fill_triblock(coFeaturePool& pool) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_fill_triblock(pool); });
  if (&pool == &triblock_) return;
  if (const auto* const block = dynamic_cast<const trTriBlock*>(&pool)) {
    giTriBlock copy;
    copy_mesh(*block, copy);
    action_fill_triblock(copy);
    return;
  }
  triblock_.clear();
  const HostMesh host(pool);
  take_host_mesh(pool);
  // The reserved slot of the coordinates, so that a box over the whole array is that of the host's points; node 0 stays invalid.
  if (host.point_count() > 0) (*triblock_.points_)[0] = host.point(0);
  action_fill_triblock_colours(pool);
  undo_hist_.reset("");
  triblock_changed_ = 0;
  triangle_update(1);
}

void trControl::action_append_triblock(coFeaturePool& pool) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_append_triblock(pool); });
  if (&pool == &triblock_) return;
  if (const auto* const block = dynamic_cast<const trTriBlock*>(&pool)) {
    giTriBlock copy;
    copy_mesh(*block, copy);
    action_append_triblock(copy);
    return;
  }
  if (triblock_.node_count() < 2) {
    action_fill_triblock(pool);
  } else {
    append_mesh(pool);
  }
  undo_hist_.reset("");
  triblock_changed_ = 0;
  triangle_update(1);
}

// The host's points and triangles behind those that there are.
void trControl::take_host_mesh(coFeaturePool& pool) {
  const HostMesh host(pool);
  const int first_node = triblock_.node_count();
  if (host.points() != nullptr) triblock_.append_points(*host.points());
  triblock_.begin_triangles();
  for (int k = 0; k < host.triangle_count(); ++k) {
    if (!host.is_taken(k)) continue;
    const giTriangle& t = host.triangle(k);
    triblock_.append_element(first_node + t[0], first_node + t[1], first_node + t[2]);
  }
}

void trControl::append_mesh(coFeaturePool& pool) {
  const int first_element = triblock_.element_count();
  take_host_mesh(pool);
  action_append_triblock_colours(pool, first_element);
}

void trControl::action_fill_triblock_colours(coFeaturePool& pool) {
  if (!coMemoryScope::is_open()) return tr_guarded(&triblock_, [&] { action_fill_triblock_colours(pool); });
  action_append_triblock_colours(pool, 0);
}

void trControl::action_append_triblock_colours(coFeaturePool& pool, int first) {
  giTriCols colours;
  if (!pool.find(colours)) return;
  if (first == 0) {
    triblock_.set_element_colour(0, NO_COLOUR);
    first = 1;
  }
  const HostMesh host(pool);
  const giColourcoPageArr& list = *colours.data();
  const int count = std::min(list.count(), host.triangle_count());
  for (int k = 0; k < count; ++k) {
    if (host.is_taken(k)) triblock_.set_element_colour(first++, tr_encode_colour(list.at(k)));
  }
}
