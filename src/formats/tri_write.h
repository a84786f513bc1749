#pragma once

#include <cstdio>

#include "platform/geometry/vector3.h"
#include "platform/utilities/export.h"

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

  /// Write a triangle file, five decimals: flat, three vertices a triangle with its normal, or smooth, one vertex a node with the node's
  /// normal. The first two of exactly two node attributes, or the last two of five, are written as surface parameters.
  /// @return 1 for success, 0 when interrupted or when the stream does not take the header
  int write_tri();
  int write_smooth_tri();

  /// Writes a mesh file: nodes with up to four attributes (three of more), four decimals; elements in groups of one colour, in number
  /// order. With `rwrite` all is numbered anew from 1, and each colour has one group, in the order in which elements first have them.
  /// @return 1, or 0 when interrupted
  int write_mes(int rwrite);

  /// Writes a KVX file: three nodes a triangle, to the bit, without normals.
  /// @return 1 for success, 0 when interrupted or when the stream takes no more
  int write_kvx();

 protected:
  /// The normal of a node, averaged over its elements.
  giVector3 average_normal(int node) const;

  const trTriBlock* mesh;
  std::FILE* file;
  double scale;

 private:
  int write_facets(trBinWrite& out, const giVector3& offset, bool coloured);
};
