#pragma once

#include <mendexlib.h>

/// A place in the history to which edits can be taken back.
class UndoMark {
 public:
  explicit UndoMark(trControl& control) : control_(control), at_(control.undo_hist().current()) {}

  /// The number of operations kept since.
  int operations() const { return control_.undo_hist().current() - at_; }
  /// Takes them back; they can be redone until something else is done. Returns how many.
  int take_back() {
    const int count = operations();
    if (count > 0) control_.action_undo(count);
    return count;
  }

 private:
  trControl& control_;
  int at_;
};
