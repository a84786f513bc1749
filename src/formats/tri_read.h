#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

#include "platform/containers/number_arrays.h"
#include "platform/utilities/export.h"

class MeshFileReader;
class NumberLimit;
class trBinRead;
class trTriBlock;

/// Reads one file into a triangle block: built around an open stream, used for one read, and gone.
///
/// Nodes and elements are numbered on from the ends of the block's arrays, after clearing it unless the reader appends. No reader
/// merges coincident corners. Every reader reports progress and polls for interruption for each record; interrupted, it returns 0
/// at once and what was stored stays. Streams are read as bytes: open them in binary mode.
class MENDEX_EXPORT trTriRead {
 public:
  /// @param mesh            the block to fill; not owned
  /// @param stream          owned from here on: closed with the reader, whatever the outcome
  /// @param append          non-zero: add to the block instead of replacing it
  /// @param read_node_data  non-zero: keep node attributes found in the file, when not appending
  trTriRead(trTriBlock* mesh, std::FILE* stream, int append, int read_node_data);
  ~trTriRead();
  trTriRead(const trTriRead&) = delete;
  trTriRead& operator=(const trTriRead&) = delete;

  /// Reads binary STL: three new nodes and one element for each facet; normals and attribute words are dropped.
  ///
  /// Keeps facets `start` (from 1) to `stop` (0: to the end); later ones are not read. A stop below start keeps nothing. At a facet
  /// that the file cuts short, reading ends with "** Error reading element i **"; its complete corners stay as loose nodes.
  /// @return 1 for success, 0 on failure or interruption
  /// Cost: O(n); memory in proportion to the bytes that are there, whatever count the file declares.
  int read_stl(int start, int stop);

  /// Reads ASCII STL: keywords in any case, white space as it comes, any number of solids. The words facet, vertex and endfacet are
  /// keywords wherever they stand, in names too. Coordinates are read as doubles, whatever the locale.
  ///
  /// Keeps facets `start` to `stop`; a stop below start means no limit. Reading ends at the first facet that fails, which stores
  /// nothing.
  /// @return 1 for success, 0 on failure or interruption
  int read_ast(int start, int stop);

  /// Reads the native format: nodes and elements under their own numbers, gaps included (when appending, under the next free ones), node
  /// attributes and colours. Numbers in attribute and colour lists are taken as they stand, also when appending.
  ///
  /// Elements that repeat a node or name one that is not there are dropped silently. A file that breaks off or is damaged behind its
  /// elements is read up to there, with " WARNING: File is corrupt. ..." and what is wrong.
  /// @return 1, or 0 when interrupted or when the header cannot be read
  int read_native();

  /// Reads triangle files of any number of blocks, numbering on from the ends of the mesh's arrays; five attributes a node: normal and
  /// surface parameters. Lines that are missing or malformed repeat what stands before them. A triangle that repeats a vertex, or names
  /// one that the block does not have, uses up its number.
  /// @return 1, or 0 when interrupted
  int read_tri();

  /// Reads mesh files: nodes and elements under their own numbers (when appending, under the next free ones), up to four attributes a
  /// node, the colours of element groups. Malformed lines, elements of other types and those of negative colours are passed over.
  /// @return 1, or 0 when interrupted
  int read_mes();

  /// Reads KVX files. A triangle that repeats a node, or names one that its block does not have, uses up its number.
  /// @return 1 for success, 0 when interrupted or when the file is damaged or cut short: what was read stays
  int read_kvx();

  /// How many bytes of the stream the last read took in. Of a file that is damaged, those before lie before the damage or are part of it.
  std::int64_t bytes_read() const { return bytes_read_; }

 protected:
  /// Reconciles the block's node attributes with the n attributes a node that the file carries, saying what becomes of them.
  /// Returns the block's attributes a node afterwards.
  int reset_node_data_size(int n);

  /// Read one record of the native format; `map` leads from the file's node numbers to the block's. An element record that repeats a node
  /// returns 1 when the block is verbose; every other, stored or dropped, 0.
  void read_native_node(trBinRead& in, intcoPageArr& map);
  int read_native_element(trBinRead& in, const intcoPageArr& map);

  trTriBlock* mesh;
  std::FILE* file;
  std::int32_t append;
  std::int32_t read_node_data;

 private:
  friend class MeshFileReader;

  void reconcile_appended_data(int n);
  void begin_reading();
  void leave_lists_for_later();
  int read_facets(int start, std::uint32_t facets, std::uint32_t& failed);
  int read_native_records(trBinRead& in);

  std::int64_t bytes_read_ = 0;
  std::unique_ptr<NumberLimit> number_limit_;  // of the numbers that the file gives its entities
};
