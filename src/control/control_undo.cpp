// Brackets round edits, and taking them back.

#include <algorithm>
#include <ostream>

#include "control/control.h"
#include "mesh/memory_guard.h"
#include "progress/message.h"

void trControl::start_undo(const utString& name) { undo_hist_.start(name); }

void trControl::finish_undo(int success) {
  const int is_changed = undo_hist_.finish();
  if (success) {
    if (is_changed) triblock_changed_ = 1;
    return;
  }
  if (!is_changed) {
    print_message(" NOTHING TO UNDO");
    return;
  }
  print_message(" AUTO UNDOING ...");
  undo_hist_.undo();
  undo_hist_.last_ = undo_hist_.current_;
}

int trControl::repeat_step(Step step, int count) {
  if (count < 1) {
    print_text(tr_brnknls(" Error: it does not make sense to undo %d times!"), count);
    tr_out() << '\n';
  }
  // One step more than there are records: the history then says that there is no more.
  const bool is_undo = step == Step::undo;
  const int possible = is_undo ? undo_hist_.current() + 1 : undo_hist_.last() - undo_hist_.current();
  const int steps = std::min(count, possible + 1);
  for (int k = 0; k < steps; ++k) is_undo ? undo_hist_.undo() : undo_hist_.redo();
  return possible > 0;
}

void trControl::action_undo(int count) {
  cycles_.clear_selection_list();
  if (repeat_step(Step::undo, count)) triangle_update(1);
}

void trControl::action_redo(int count) {
  cycles_.clear_selection_list();
  if (repeat_step(Step::redo, count)) triangle_update(1);
}

void trControl::action_history(std::FILE* file) {
  tr_guarded(nullptr, [&] { undo_hist_.print(file); });
  if (file != nullptr) std::fclose(file);
}
