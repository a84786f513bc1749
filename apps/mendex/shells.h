#pragma once

#include <mendexlib.h>

#include <vector>

/// A set of triangles that hang together by their edges.
struct Shell {
  int first_element = 0;  // the lowest number
  int elements = 0;
  bool is_closed = true;  // every edge has exactly two triangles, which run it in opposite directions
  double volume = 0.0;    // enclosed, of a closed shell; negative when it faces inward
  giBox3 box;
};


/// The shells of a mesh, by their lowest triangle. Cost: O(n log n) time, 16 bytes an edge use.
std::vector<Shell> find_shells(const trTriBlock& mesh);

/// How many closed shells face inward without being a cavity: without lying within the box of a shell that faces outward. Of these the
/// thousand largest are looked at.
int count_inside_out(const std::vector<Shell>& shells);

/// The middle of an element's corners.
giPoint3 middle_of(const trTriBlock& mesh, int element);
