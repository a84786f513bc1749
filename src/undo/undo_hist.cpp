#include "undo/undo_hist.h"

#include <algorithm>
#include <ostream>

#include "mesh/memory_guard.h"
#include "mesh/tri_block.h"
#include "progress/message.h"

trUndoHist::trUndoHist(trTriBlock* block) : triblock(block) {}

trUndoHist::~trUndoHist() {
  if (open_ != nullptr && triblock->undo == open_) triblock->undo = nullptr;
}

void trUndoHist::attach(trUndo& record) {
  open_ = &record;
  triblock->undo = &record;
}

void trUndoHist::start(const utString& name) {
  if (!coMemoryScope::is_open()) return tr_guarded(triblock, [&] { start(name); });
  if (!full_history_) reset(utString());
  const int next = current_ + 1;
  if (next < records.count()) {
    trUndo& record = *records[next];
    forget_tuples_of(record, next);
    record.reset(name);
  } else {
    trUndocoDynArrPrgcoPrg record(new trUndo(this, name));
    records.append(record);
  }
  last_ = current_ = next;
  attach(*records[current_]);
}

// Tuples that only dropped records named, this one among them, make room for new ones.
void trUndoHist::forget_tuples_of(const trUndo& record, int place) {
  if (record.saved_data_end_ == 0) return;
  int end = 0;
  for (int i = 0; i < place; ++i) end = std::max(end, records[i]->saved_data_end_);
  saved_data.tuples.shrink(end, 0);
}

int trUndoHist::finish() {
  if (triblock->undo == nullptr) return 0;
  triblock->undo = nullptr;
  open_ = nullptr;
  if (current_ < 0) return 0;
  trUndo& record = *records[current_];
  if (record.nodes.count() > 0 || record.elements.count() > 0) {
    record.trim_pages();
    return 1;
  }
  last_ = --current_;
  tr_out() << '\n';
  MessageLine().text("! ").text("Operation had no effect. No undo information stored.").text(" !");
  return 0;
}

void trUndoHist::resume() {
  if (current_ < 0) return;
  records[current_]->use_full_pages();
  attach(*records[current_]);
}

void trUndoHist::undo() {
  if (current_ < 0) return print_message("Nothing to undo.");
  if (!records[current_]->apply()) return tr_end_without_memory(nullptr);
  --current_;
}

void trUndoHist::redo() {
  if (current_ == last_) return print_message("Nothing to redo.");
  if (!records[current_ + 1]->apply()) return tr_end_without_memory(nullptr);
  ++current_;
}

void trUndoHist::reset(const utString& file) {
  if (!file_name.empty()) {
    MessageLine().text("Undo information for '").raw(file_name.c_str()).text("' has been cancelled.");
  }
  last_ = -1;
  current_ = -1;
  saved_data.tuples.clear(1);
  if (!file.empty()) tr_guarded(nullptr, [&] { file_name = file; });
}

void trUndoHist::toggle_undo() {
  full_history_ = !full_history_;
  reset(utString());
}

int trUndoHist::allocate_data() {
  const int i = saved_data.tuples.count();
  if (!saved_data.tuples.get_block(i >> saved_data.tuples.page_shift())) return -1;
  trNodeDataTuple& tuple = saved_data.data(i);
  tuple = trNodeDataTuple();
  tuple.weight = 0;
  return i;
}

void trUndoHist::print_file_name(std::FILE* f) const {
  if (file_name.empty()) {
    print_message("Data not yet read from file.");
    if (f != nullptr) write_text(f, "%s", tr_brnknls("Data not yet read from file.\n"));
    return;
  }
  MessageLine().text("FILE: ").raw(file_name.c_str());
  if (f != nullptr) write_text(f, tr_brnknls("FILE: %s\n"), file_name.c_str());
}

void trUndoHist::print(std::FILE* f) const {
  print_file_name(f);
  if (last_ < 0) {
    print_message("There is no undo information.");
    if (f != nullptr) write_text(f, "%s", tr_brnknls("There is no undo information.\n"));
    return;
  }
  for (int i = 0; i <= last_; ++i) {
    const std::string marker = tr_brnknls(i == current_ + 1 ? "-> " : "   ");
    tr_out() << marker << format_text("%3d", i + 1) << tr_brnknls("  ");
    if (f != nullptr) write_text(f, tr_brnknls("%s%3d  "), marker.c_str(), i + 1);
    records[i]->print(f);
  }
}

utString trUndoHist::print_line(int i) const {
  if (i < 0 || i > last_) return utString();
  const utString line = records[i]->print();
  return format_text(tr_brnknls("%d) "), i + 1) + line;
}
