#pragma once

#include "mesh/element.h"
#include "mesh/features.h"
#include "platform/geometry/tri_block_base.h"
#include "platform/utilities/export.h"
#include "platform/utilities/prefetch.h"

/// The arrays that a mesh consists of, by number, and how they are looked at. Slot 0 of each is always invalid.
/// Only the mesh itself changes them.
class MENDEX_EXPORT trMeshArrays : public giTriBlock {
 public:
  /// Counts of the arrays, slot 0 included.
  int node_count() const { return nodes_->count(); }
  int element_count() const { return elements_->count(); }

  /// The node of that number, without bounds check or growth.
  trNode& node(int i) const { return nodes_->at(i); }
  /// The element of that number, without bounds check or growth.
  trElement& element(int e) const { return static_cast<trElement&>(elements_->at(e)); }
  const giPoint3& point(int i) const { return points_->at(i); }
  const giPoint3coPageArr& points() const { return *points_; }

  /// How many elements ahead a loop over all elements does well to call prefetch_corners.
  static constexpr int corners_ahead = 16;
  /// Starts fetching the coordinates of element e's corners; any number is allowed. In a mesh whose elements lie in no spatial order
  /// each corner is a cache miss.
  void prefetch_corners(int e) const {
    if (e >= element_count()) return;
    const trElement& t = element(e);
    for (int k = 0; k < 3; ++k) {
      if (!has_node(t[k])) continue;
      const giPoint3* const p = &points_->at(t[k]);
      co_prefetch_for_reading(p);
      co_prefetch_for_reading(&p->z);  // every fourth point lies across two cache lines
    }
  }

  /// Values of each node's attributes; 0 without any.
  int node_data_size() const { return node_data_ == nullptr ? 0 : node_data_->size(); }
  /// The attributes of a node; only while there are any. The const form does not grow: it needs has_node_data, whether the node's
  /// attributes were ever touched.
  bool has_node_data(int i) const { return node_data_ != nullptr && i >= 0 && i < node_data_->tuples.count(); }
  trNodeDataTuple& node_data(int i) { return node_data_->data(i); }
  const trNodeDataTuple& node_data(int i) const { return static_cast<const trNodeDataBlock*>(node_data_)->data(i); }

  /// The colour of an element: its own, or that which elements beyond the coloured ones have; -1: no colour.
  int get_element_colour(int e) const { return colours_ == nullptr ? NO_COLOUR : colours_->get_colour(e); }
  int default_colour() const { return colours_ == nullptr ? NO_COLOUR : colours_->default_colour(); }
  /// Valid after compute_node_normals.
  const giVector3& node_normal(int i) const { return normals_->at(i); }

 protected:
  bool has_node(int i) const { return static_cast<unsigned>(i) < static_cast<unsigned>(node_count()); }

  // Handles on the pool's data and, beside them, the typed pointers: an access costs no look-up.
  giNormArrcoFeature normals_feature_;
  trNodeDataBlockcoFeature node_data_feature_;
  trNodeArrCopycoFeature nodes_feature_;
  giTriArrcoFeature elements_feature_;
  trTriDataBlockcoFeature colours_feature_;
  giNodeXYZ points_feature_;
  trNodecoPageArr* nodes_ = nullptr;
  giTrianglecoPageArr* elements_ = nullptr;
  giPoint3coPageArr* points_ = nullptr;
  giVector3coPageArr* normals_ = nullptr;
  trNodeDataBlock* node_data_ = nullptr;
  trTriDataBlock* colours_ = nullptr;
};
