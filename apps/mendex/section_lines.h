#pragma once

#include <mendexlib.h>

#include <vector>

/// One outline of a cut. A closed one does not name its first point again.
struct SectionLine {
  std::vector<giPoint3> points;
  bool is_closed = false;
  double length = 0.0;
};

/// The cut at one height.
struct SectionAt {
  double at = 0.0;
  std::vector<SectionLine> lines;

  int closed() const;
  double length() const;
};

/// Cuts, and takes the outlines over.
SectionAt section_at(const trTriBlock& mesh, gi_Axis axis, double at);
