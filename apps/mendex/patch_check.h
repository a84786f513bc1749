#pragma once

#include <mendexlib.h>

#include <vector>

/// Looks at what new triangles do to the mesh round them: whether they cut through it, fold back onto it, or share an edge with two
/// others already. The mesh is not touched.
///
/// Only the triangles near the new ones are searched, by the library's own searches, in a copy that is moved to the origin and scaled,
/// since those searches take lengths up to 1e-5 for zero. Cost: O(n) for finding them, and n log n of what lies near.
class PatchCheck {
 public:
  /// @param first_new  the number from which on elements are new
  PatchCheck(const trTriBlock& mesh, int first_new);

  struct Harm {
    std::vector<int> elements;        // new elements that fold back or make such edges, ascending
    std::vector<int> cutting;         // new elements that cut, ascending
    std::vector<int> cut_before;      // nodes of old elements that cut others already, ascending
  };
  Harm find_harm() const;

 private:
  void find_near();
  void copy_near(trTriBlock& copy, bool with_new) const;

  const trTriBlock& mesh_;
  int first_new_;
  giBox3 box_;             // of the new ones
  std::vector<int> near_;  // elements, new ones included, ascending
};
