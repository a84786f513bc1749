#pragma once

#include <mendexlib.h>

#include <vector>

/// How edges are used by the triangles along them. An edge of two triangles that run it in opposite directions is none of these.
struct EdgeCensus {
  int open = 0;     // one triangle
  int opposed = 0;  // two that run it in the same direction
  int sick = 0;     // more than two

  bool is_clear() const { return open == 0 && opposed == 0 && sick == 0; }
};

/// A set of triangles that hang together by their edges.
struct Shell {
  int first_element = 0;  // the lowest number
  int elements = 0;
  EdgeCensus edges;
  bool is_closed = true;  // every edge has exactly two triangles, which run it in opposite directions
  double area = 0.0;
  double volume = 0.0;    // enclosed, of a closed shell; negative when it faces inward
  giBox3 box;

  /// Whether neighbours agree on which side is which.
  bool is_consistent() const { return edges.opposed == 0 && edges.sick == 0; }
};

/// The shells of a mesh, by their lowest triangle, and which of them each triangle belongs to.
struct ShellSurvey {
  std::vector<Shell> shells;
  std::vector<int> shell_of;  // by element number; -1 for deleted ones
  EdgeCensus edges;           // of all
};

/// Cost: O(n) time where few triangles meet in a node, 24 bytes a triangle.
ShellSurvey survey_shells(const trTriBlock& mesh);

inline std::vector<Shell> find_shells(const trTriBlock& mesh) { return survey_shells(mesh).shells; }

/// The closed shells that face inward without being a cavity: without lying within the box of a shell that faces outward. Of these the
/// thousand largest are looked at. Ascending places in the list.
std::vector<int> inside_out_shells(const std::vector<Shell>& shells);

double area_of(const trTriBlock& mesh, int element);

/// The middle of an element's corners.
giPoint3 middle_of(const trTriBlock& mesh, int element);
