#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "support/shapes.h"

/// How a model is broken.
enum class Breakage {
  holes,       // from one triangle to 1.5 % of all missing in one place
  patches,     // cut out, moved a little along the cut, and the cut split on one side or the other
  flipped,     // triangles that face inward
  repeated,    // triangles that are there two to four times
  fins,        // flaps of one or two triangles on an edge, single or back to back
  degenerate,  // triangles with two corners in one place, and needles without area that close a split edge
  several      // some of each
};

constexpr Breakage all_breakages[] = {Breakage::holes, Breakage::patches,    Breakage::flipped, Breakage::repeated,
                                      Breakage::fins,  Breakage::degenerate, Breakage::several};

const char* name_of(Breakage kind);

/// The corners of a triangle, counter-clockwise as seen from outside.
using Corners = std::array<giPoint3, 3>;

/// A closed model that faces outward, and the same with defects. All coordinates are single precision numbers.
struct BrokenModel {
  std::string name;  // "torus 12, fins"
  Breakage kind;
  Shape original;
  double volume = 0.0;  // of the original
  Shape broken;         // its triangles in random order, each with points of its own, as in an STL file
  int defects = 0;      // how many places were broken, no two of which are neighbours
  double gap = 0.0;     // how far points were moved at most
  /// The triangles of the original that have no corner on a broken place, in the order of the original. Each is in the broken model just
  /// once and with the same neighbours.
  std::vector<Corners> untouched;
};

/// A box of unit cubes whose faces are their faces: 12 n^2 triangles.
Shape fine_box(int n);

/// The model of that number: kinds of breakage take turns, then the shapes: sphere, torus, box, bumpy sphere; sizes (200 to some 4,000
/// triangles, scale, place) and the places of defects are random by seed and number.
BrokenModel broken_model(int number, std::uint64_t seed);

/// The volume that a closed shape encloses.
double volume_of(const Shape& shape);
