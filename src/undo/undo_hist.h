#pragma once

#include <cstdio>

#include "mesh/node_data.h"
#include "platform/utilities/export.h"
#include "platform/utilities/ut_string.h"
#include "undo/containers.h"
#include "undo/undo.h"

class trTriBlock;

/// The operations on one block that can be taken back or done again, in order, and the file that the mesh came from.
///
/// An operation runs between `start`, which attaches a record to the block, and `finish`, which detaches it. `undo` and
/// `redo` move the current position over the records. Starting an operation drops what could have been redone; records
/// that are no longer needed are kept and used again.
/// Invariant: -1 <= current <= last < number of records.
/// The block must outlive the history.
class MENDEX_EXPORT trUndoHist {
 public:
  explicit trUndoHist(trTriBlock* block);
  trUndoHist(const trUndoHist&) = delete;
  trUndoHist& operator=(const trUndoHist&) = delete;
  /// Detaches a record that is still open.
  ~trUndoHist();

  /// Opens a record. Without full history everything before it is forgotten first, as `reset` does. Without memory none is opened,
  /// and the block's `undo` stays null.
  void start(const utString& name);
  /// Closes the record. One that holds nothing is dropped, with a message.
  /// @return 1 if the record holds anything; 0 if not, or, without any message, if none is open
  int finish();
  /// Opens the record at the current position once more, for an operation that goes on; nothing when there is none.
  void resume();

  /// Takes back the operation at the current position; a message when there is none.
  void undo();
  /// Does the one after it again; a message when there is none.
  void redo();

  /// Forgets all operations, with a message when a file name is held, and takes the new file name unless it is empty.
  void reset(const utString& file);
  /// Switches between full history and one operation only, and forgets all operations.
  void toggle_undo();

  /// Adds a tuple of zeros to the store of saved attributes and returns its place; -1 when there is no memory.
  int allocate_data();

  /// Prints the file and the operations; "-> " stands before the first that could be redone. With a file, writes the
  /// same there, in which the lines of the operations run on; the file stays open.
  void print(std::FILE* f) const;
  /// Number and line of record i, counted from 0; empty when there is no such record.
  utString print_line(int i) const;

  /// The file that the mesh was read from; empty before that.
  utString filename() const { return file_name; }
  /// The record that the next undo takes back; -1 when there is none.
  int current() const { return current_; }
  /// The last record that can be redone, or `current()` when there is none to redo.
  int last() const { return last_; }
  int full_history() const { return full_history_; }

  trTriBlock* triblock;                    ///< not owned
  trUndocoDynArrPrgcoPrgcoDynArr records;  ///< beyond `last()`: kept for later operations
  trNodeDataBlock saved_data;              ///< attributes that records have saved, by `trUndoNode::data_index`
  utString file_name;

 private:
  friend class trControl;
  friend class trUndo;

  void attach(trUndo& record);
  void forget_tuples_of(const trUndo& record, int place);
  void print_file_name(std::FILE* f) const;

  int last_ = -1;
  int current_ = -1;
  int full_history_ = 1;
  trUndoNodecoPageArr spare_nodes_;        // a page, or none, that lies ready for the next record
  trUndoElementcoPageArr spare_elements_;  // the same for its elements
  const trUndo* open_ = nullptr;  // attached by this history and not closed since
};
