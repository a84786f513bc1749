#pragma once

#include <cstdio>

#include "platform/utilities/export.h"

class trTriBlock;

/// Writes a mesh to a file. An object serves one write: it is built around an open stream, one member is called, and its destructor
/// closes the stream whatever came of the call.
///
/// Valid elements are written in ascending order. With `positive`, the model is first moved into the positive octant: along each axis
/// on which its box begins below 0, by the amount of that minimum rounded up to 1, 2 or 5 times a power of ten (an amount that is
/// itself 2 or 5 times a power of ten goes to the next step).
///
/// The host is asked at every element whether to stop; a writer then returns 0 at once and leaves a truncated file.
class MENDEX_EXPORT trTriWrite {
 public:
  /// @param scale  factor on every written coordinate
  trTriWrite(const trTriBlock* mesh, std::FILE* file, double scale);
  ~trTriWrite();
  trTriWrite(const trTriWrite&) = delete;
  trTriWrite& operator=(const trTriWrite&) = delete;

  /// Writes binary STL: 1 when all was written, 0 after a failure, which is told on the standard error stream, or an interruption.
  ///
  /// Coordinates are single-precision products of scale and coordinate. When element 1 has a colour, the attribute word of every
  /// facet holds the low 16 bits of its colour, blue and alpha; otherwise all are 0. The normal of a triangle whose doubled area is
  /// at most 1e-5 is its raw cross product.
  int write_stl(int positive);

  /// Writes ASCII STL, independently of the locale: 1, or 0 after an interruption. Failures of the stream are not noticed; ask the
  /// stream itself. Colours are not written.
  int write_ast(int positive);

 protected:
  const trTriBlock* mesh;
  std::FILE* file;
  double scale;
};
