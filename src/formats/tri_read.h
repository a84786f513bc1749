#pragma once

#include <cstdio>

#include "platform/utilities/export.h"

class trTriBlock;

/// Fills a mesh from a file. An object serves one read: it is built around an open stream, one member is called, and its destructor
/// closes the stream whatever came of the call.
///
/// A plain read replaces the mesh, an appending one adds to it, numbering new nodes and elements on from the ends of its arrays and
/// joining nothing to what is there. Every facet brings three nodes of its own; no reader merges corners.
///
/// `start` is the number, from 1, of the first facet to keep, `stop` that of the last, 0 meaning all that follow. Facets before
/// `start` are read and dropped, those after `stop` are not read. The two formats differ where the range is odd; see each.
///
/// Messages go to `tr_out()`. The host is asked at every facet whether to stop; a reader then returns 0 at once and leaves the facets
/// stored so far. Results: 1 when the file was read to its end or to `stop`, 0 after a failure or an interruption.
class MENDEX_EXPORT trTriRead {
 public:
  /// @param append          non-zero adds to the mesh instead of replacing it
  /// @param read_node_data  non-zero keeps node attributes that the file carries, when the mesh is replaced
  trTriRead(trTriBlock* mesh, std::FILE* file, int append, int read_node_data);
  ~trTriRead();
  trTriRead(const trTriRead&) = delete;
  trTriRead& operator=(const trTriRead&) = delete;

  /// Reads binary STL. Normals and attribute words are ignored.
  ///
  /// A `stop` below 1 stands for no limit. With `stop` below `start` the facets up to `stop` are read and none is kept. A file shorter
  /// than its facet count yields the facets that are there, and as nodes without an element the corners of the one that is cut off.
  /// A failure within the first 84 bytes leaves nodes and elements as they were; attributes of a mesh that is appended to are gone by
  /// then. Node numbers end at a quarter of the largest int; the facet that would pass it counts as unreadable.
  /// Cost: O(facets); memory in proportion to the facets that are there, whatever the count claims.
  int read_stl(int start, int stop);

  /// Reads ASCII STL, keywords in any case, independently of the locale.
  ///
  /// Only the words "facet", "vertex" and "endfacet" count, in this order; all others are skipped, normals included. A `stop` below
  /// `start` stands for no limit; with a `start` below 1 nothing is kept. Reading ends at the first facet that is malformed; it stores
  /// nothing. Coordinates are what `scanf` takes for "%lf", of any length and correctly rounded.
  /// Cost: O(bytes); 64 KB beside the mesh, however long a line or number is.
  int read_ast(int start, int stop);

 protected:
  /// Reconciles the mesh's attributes per node with the n that the file carries, says what becomes of them, and returns how many the
  /// mesh has now. An appending read keeps the lower number, dropping the attributes when that is 0; a replacing read takes over n
  /// when attributes are wanted.
  int reset_node_data_size(int n);

  trTriBlock* mesh;
  std::FILE* file;
  int append;
  int read_node_data;

 private:
  void begin_replacing_or_appending();
};
