#pragma once

#include <cstdio>

#include "platform/utilities/export.h"
#include "platform/utilities/ut_string.h"
#include "undo/containers.h"
#include "undo/undo_element.h"
#include "undo/undo_node.h"

class trTriBlock;
class trUndoHist;

/// The record of one operation: what each node and element that it touched was like before.
///
/// While the record is attached to a block, every primitive edit stores here what it is about to change, create or
/// delete, each time it does: an entity touched twice is stored twice, and its first entry is the one that counts.
/// Applying the record exchanges those entries with the mesh, so that it then holds what the operation made of them,
/// and applying it again is the redo.
class MENDEX_EXPORT trUndo {
 public:
  trUndo(trUndoHist* history, const utString& operation);
  trUndo(const trUndo&) = delete;
  trUndo& operator=(const trUndo&) = delete;

  /// Opens the record anew for another operation on the block as it is now. An empty name leaves the old one.
  void reset(const utString& operation);

  /// Stores the present state of a node or element. One at or beyond the count that the block had when the record was
  /// opened is stored as absent: it is about to be made.
  void store_node(int n);
  void store_element(int e);

  /// Takes the operation back, or does it again: exchanges the first entry of each number with the mesh and sets both
  /// arrays to their counts on that side. Numbers beyond the counts are left as if they had never been used. Element
  /// lists, edges, normals and box are rebuilt on their next use. Never polls for interruption. Cost: O(entries +
  /// difference of the counts).
  /// @return 1; 0, and nothing is changed, when there is no memory
  int apply();

  /// Prints the record's line of the listing: name, and in column 36 or one blank behind a longer name the numbers of
  /// entries; with a file also writes `print()` there, which has no line end.
  void print(std::FILE* f) const;
  /// The record's line as files have it: the name, cut or filled up to 29 characters, and the numbers of entries.
  utString print() const;

  trUndoHist* hist;                 ///< the owner
  trUndoNodecoPageArr nodes;        ///< in the order stored
  trUndoElementcoPageArr elements;  ///< in the order stored
  int node_count = 0;               ///< of the block when the record was opened; after `apply`, before that
  int element_count = 0;            ///< the same for elements
  int applied = 0;                  ///< 1 after an undo, 0 when the mesh is in the state after the operation
  utString name;

 private:
  friend class trUndoHist;

  [[gnu::noinline]] void store_node_in_new_page(int n);
  [[gnu::noinline]] void store_element_in_new_page(int e);
  [[gnu::noinline]] void save_data(trUndoNode& entry);
  bool reserve_marks() const;
  void use_full_pages();
  void trim_pages();
  void swap_nodes();
  void swap_elements();
  static void grow_nodes(trTriBlock& block, int count);
  static void cut_nodes(trTriBlock& block, int count);
  static void grow_elements(trTriBlock& block, int count);
  static void cut_elements(trTriBlock& block, int count);

  int saved_data_end_ = 0;  // the tuples of this record lie before this place in the history's store
};
