#pragma once

#include <mendexlib.h>

#include <vector>

#include "holes.h"
#include "shells.h"

/// What lies round a hole.
struct HoleSurroundings {
  int shell = -1;               // place of its shell in the survey
  double spanned_area = 0.0;    // of the loop, seen along its mean normal
  double unevenness = 0.0;      // how far its nodes lie off their mean plane, as a share of its size
  double bend_deg = 0.0;        // median angle between the plane, as a patch would face, and the triangles along the hole
  bool is_sheet_rim = false;    // the outer rim of a surface that is not meant to be closed
};

/// Looks round holes. A rim belongs to a sheet when it is its shell's longest, at least 1.9 times as long as the diagonal of the shell's
/// box, and spans at least 0.6 of the shell's area: the rim of a flat piece is at least twice its diagonal and spans all of it.
class HoleSurvey {
 public:
  /// `shells`: the survey of the mesh as it is.
  HoleSurvey(const trTriBlock& mesh, const std::vector<FoundBoundary>& boundaries, const ShellSurvey& shells);

  const HoleSurroundings& at(std::size_t boundary) const { return surroundings_[boundary]; }

 private:
  void look_along_rims(const std::vector<FoundBoundary>& boundaries);
  void find_sheets(const std::vector<FoundBoundary>& boundaries);

  const trTriBlock& mesh_;
  const ShellSurvey& shells_;
  std::vector<HoleSurroundings> surroundings_;
};

enum class HoleShape { small, flat, curved };

/// What kind of hole it is: small with at most so many edges; flat where the mesh goes on in its plane or stands on it steeply; else
/// curved.
HoleShape shape_of(const FoundBoundary& hole, const HoleSurroundings& around, int small_hole);
