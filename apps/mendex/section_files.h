#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "section_lines.h"

/// What a file of outlines is about.
struct SectionDrawing {
  std::string model;  // the file that was cut
  char axis;
  std::vector<SectionAt> cuts;
};

/// An SVG picture: a group for each height in a colour of its own, a path for each outline.
///
/// Across x the picture shows y to the right and z up, across y it shows x and z, across z x and y. Coordinates are those of the model,
/// with the upward ones negated, since pictures count downward; of a model that lies very far from the origin for its size they count
/// from a corner, which the description names.
void write_svg(std::FILE* file, const SectionDrawing& drawing);

/// One JSON object: for each height its outlines, each with its points. A closed one does not name its first point again.
void write_json(std::FILE* file, const SectionDrawing& drawing);
