#pragma once

#include <mendexlib.h>

/// Turns triangles over, shell by shell, and never more of a shell than it must. Edits go to the open undo record.
class MeshOrienter {
 public:
  explicit MeshOrienter(trControl& control) : control_(control), mesh_(control.triblock()) {}

  /// Makes neighbours agree. In each shell the side that most triangles had stays; a shell that was consistent stays as it is.
  /// Returns how many triangles were turned over.
  int make_consistent();
  /// Turns closed shells outward that face inward and are no cavity. Returns how many shells.
  int make_outward();

 private:
  template <class IsTurned>
  void turn(IsTurned is_turned);

  trControl& control_;
  trTriBlock& mesh_;
};
