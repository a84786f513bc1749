#pragma once

#include <cstdio>

#include "platform/utilities/export.h"

class giVector3;
class trBinWrite;
class trTriBlock;

/// Writes a triangle block to one file: built around an open stream, used for one write, and gone.
///
/// Progress is reported and interruption polled for each element; interrupted, a writer returns 0 at once and leaves the file cut
/// short. Deleted elements are skipped. Open streams in binary mode.
class MENDEX_EXPORT trTriWrite {
 public:
  /// @param mesh    not owned; must not be an object defined const, since its caches are filled
  /// @param stream  owned from here on: closed with the writer, whatever the outcome
  /// @param scale   factor for every written coordinate
  trTriWrite(const trTriBlock* mesh, std::FILE* stream, double scale);
  ~trTriWrite();
  trTriWrite(const trTriWrite&) = delete;
  trTriWrite& operator=(const trTriWrite&) = delete;

  /// Writes binary STL. The colour of element 1 decides for the whole file whether attribute words carry colours (their low 16 bits)
  /// or zeros. Coordinates are scaled in single precision.
  /// @param positive  non-zero: move the model into the positive octant by round amounts (1, 2 or 5 times a power of ten)
  /// @return 1 for success, 0 on failure or interruption
  int write_stl(int positive);

  /// Writes ASCII STL, six decimals with exponent, whatever the locale. Colours are not written, and errors of the stream are not
  /// reported.
  int write_ast(int positive);

  /// Writes the native format: numbers, attributes and colours. With `rwrite` nodes and elements are numbered anew from 1, without gaps;
  /// colour lists still go by the mesh's own numbers. Errors of the stream beyond the header are not reported.
  int write_native(int rwrite);

 protected:
  const trTriBlock* mesh;
  std::FILE* file;
  double scale;

 private:
  int write_facets(trBinWrite& out, const giVector3& offset, bool coloured);
};
