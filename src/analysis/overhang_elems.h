#pragma once

#include "analysis/element_list.h"
#include "platform/geometry/unit_vec3.h"

/// Triangles that face against the up direction.
class MENDEX_EXPORT trOverhangElems : public trElementList {
 public:
  explicit trOverhangElems(trTriBlock* block) : trElementList(block) {}
  ~trOverhangElems() override;

  /// Prints a line with the count; does not search.
  void print() const;

  /// Along the z axis at first.
  const giUnitVec3& up_vector() const { return up_vector_; }
  /// Takes over a direction; one that differs at all invalidates the list.
  void set_up_vector(const giUnitVec3& v);

 protected:
  void find_elements() override;

 private:
  giUnitVec3 up_vector_{gi_z_axis};
};
