#pragma once

#include <memory>

#include "analysis/orient_status.h"
#include "mesh/tri_block.h"

class EdgeLinks;

/// The state of every element of a mesh that is being oriented, group by group (see trOrientGroup).
///
/// Between construction and the last group the mesh may be edited only through `trOrientGroup::do_reversals`: which elements meet at
/// an edge is found once, when the first group grows.
class MENDEX_EXPORT trOrienter {
 public:
  /// Elements are unset, deleted ones ignored. The block is not owned.
  explicit trOrienter(trTriBlock* block);
  trOrienter(const trOrienter&) = delete;
  trOrienter& operator=(const trOrienter&) = delete;
  ~trOrienter();

  trTriBlock* triblock;
  int group_counter = 0;  ///< the index that the next group takes

  trOrientStatus status(int e) const { return static_cast<trOrientStatus>(status_.at(e)); }
  void set_status(int e, trOrientStatus s) {
    status_.at(e) = s;
    if (s == tr_orient_unset && e < first_unset_) first_unset_ = e;
  }
  /// The count of the element array.
  int num_elements() const { return triblock->element_count(); }
  trNode& node(int i) { return triblock->node(i); }
  trElement& element(int e) { return triblock->element(e); }
  void reverse_element(int e) { triblock->reverse_element(e); }
  /// Walks the elements of a node.
  trIntListIT liste_iter(int i) { return triblock->node_elements(i); }
  int verbose_flag() const { return triblock->verbose; }

 private:
  friend class trOrientGroup;

  // The lowest unset element; -1 when there is none. All searches together cost O(n).
  int next_unset();
  // Which elements meet at the sides of each; null when interrupted before all are known, or without memory.
  EdgeLinks* links();

  intcoPageArr status_{12, 5, 10};
  int first_unset_ = 0;  // no lower element is unset
  std::unique_ptr<EdgeLinks> links_;
};
