#pragma once

#include <mendexlib.h>

#include <optional>
#include <vector>

#include "holes.h"
#include "report.h"
#include "shells.h"

/// What counts as a defect, and how the mesh is prepared.
struct CheckLimits {
  std::optional<double> weld = exact_copies;  // merge nodes up to this far apart first; none: leave the triangles loose
  double small = 0.0001;                      // height over the longest edge, model units
  double thin = 0.0001;                       // height over longest edge, as a ratio
  double overlap_deg = 2.5;                   // angle between neighbours
  giUnitVec3 up;                              // triangles that face away from it overhang
};

/// An edge with more than two triangles.
struct FoundSickEdge {
  int nodes[2] = {0, 0};
  std::vector<int> elements;
  giPoint3 at;  // its midpoint
};

/// All that was found wrong with a mesh. Lists hold element numbers, ascending; a number is the triangle's place in the file.
struct MeshCheck {
  MeshStatistics mesh;        // as welded
  int nodes_merged = 0;       // by welding
  std::vector<int> collapsed; // triangles that welding made vanish
  int free_edges = 0;
  std::vector<FoundBoundary> boundaries;
  std::vector<FoundSickEdge> sick_edges;
  std::vector<int> sick;
  std::vector<int> small;
  double least_height = 0.0;
  std::vector<int> thin;
  double least_aspect = 0.0;
  std::vector<int> overlapping;
  double sharpest_deg = 180.0;
  std::vector<int> intersecting;
  std::vector<int> overhanging;  // no defect, but of interest to who prints
  std::vector<int> misoriented;  // to be turned over for each piece to be consistent
  std::vector<int> repeated;     // copies beyond the first of triangles with the same corners and orientation
  std::vector<int> cancelling;   // triangles back to back with another
  std::vector<Shell> shells;

  int inside_out = 0;  // closed shells that face inward and are no cavity

  int closed_shells() const;
  bool has_defects() const;
};

/// Searches the session's mesh, which is welded for it and otherwise left as it was. Throws on interruption.
MeshCheck check_mesh(Session& session, const CheckLimits& limits);
